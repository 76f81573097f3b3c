#include "hiding/hide_wizard.h"

#include "base/formats.h"

namespace tarnel {

namespace {

void CollectRow(const ExplorerRow& row, const HideSource& source, Selection& selection) {
  if (row.IsFolder()) {
    const Path folder = row.FolderPath();
    return selection.WalkFolder(folder, source.IsMyComputer() ? folder.native() : source.treePath.native());
  }
  if (!source.IsMyComputer()) selection.AddFile(source.treePath / row.text, source.treePath.native());
}

}  // namespace

void Collect(const HideSource& source, Selection& selection, const Dialogue& dialogue) {
  if (source.LastFocusHwnd == LastFocus::Tree) return selection.AddWholeFolder(source.treePath);
  if (source.LastFocusHwnd != LastFocus::ExplorerFile) return;
  for (const std::size_t row : source.selected) {
    if (dialogue.CancelRequested()) return;
    CollectRow(source.rows.at(row), source, selection);
  }
}

std::vector<Path> ChosenBy(const HideSource& source) {
  std::vector<Path> chosen;
  const auto add = [&](const ExplorerRow& row) {
    chosen.push_back(source.IsMyComputer() ? row.key : source.treePath / row.text);
  };
  if (source.LastFocusHwnd == LastFocus::Tree)
    for (const ExplorerRow& row : source.rows)
      add(row);
  if (source.LastFocusHwnd == LastFocus::ExplorerFile)
    for (const std::size_t row : source.selected)
      add(source.rows.at(row));
  return chosen;
}

HideWizard::Controls HideWizard::CanPress(std::size_t explorerRows, bool isFilling, bool isMyComputer) const {
  const bool isChoosing = m_step == Step::Explorer, hasFiles = m_step == Step::Files;
  return {.Cmd_Hide = isChoosing && !isFilling && explorerRows > 0 && !isMyComputer,
          .Cmd_Cancel1 = isChoosing,
          .Cmd_StopSearch = m_step == Step::Collecting,
          .Cmd_Addmore = hasFiles,
          .Cmd_Back = hasFiles,
          .Cmd_Next = hasFiles,
          .Cmd_Cancel = !isChoosing && !m_isLoading};
}

void HideWizard::BeginCollecting() {
  m_step = Step::Collecting;
  m_mustStop = false;
}

void HideWizard::PressStop() {
  if (m_step == Step::Collecting) m_mustStop = true;
}

void HideWizard::EndCollecting() {
  m_step = Step::Files;
}

void HideWizard::PressAddmore() {
  m_isAddingMore = true;
  m_step = Step::Explorer;
}

void HideWizard::PressBack() {
  m_isAddingMore = false;
  m_step = Step::Explorer;
}

void HideWizard::BeginHiding() {
  m_step = Step::Hiding;
  m_isLoading = false;
}

SelectionPanels PanelsOf(std::size_t rows, long foldersCounted, Length totalBytes) {
  return {"Files: " + std::to_string(rows), "Subfolders: " + std::to_string(foldersCounted),
          "Total Size: " + GroupedKilobytes(static_cast<double>(totalBytes)) + " KB"};
}

}  // namespace tarnel
