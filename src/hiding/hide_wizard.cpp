#include "hiding/hide_wizard.h"

#include "base/formats.h"
#include "base/printable.h"

namespace tarnel {

namespace {

Question Report(const char* id, std::string text, Icon icon) {
  return {.id = id, .title = "Tarnel", .text = std::move(text), .icon = icon};
}

void AddPaths(Question& report, const char* what, const std::vector<Path>& paths) {
  for (const Path& path : paths)
    report.list.push_back(what + Printable(path.native()));
}

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

SelectionPanels PanelsOf(std::size_t rows, long foldersCounted, double totalBytes) {
  return {"Files: " + std::to_string(rows), "Subfolders: " + std::to_string(foldersCounted),
          "Total Size: " + GroupedKilobytes(totalBytes) + " KB"};
}

std::optional<Question> HideReport(const HideResult& result, const Path& carrier) {
  const std::string name = Printable(carrier.filename().native());
  Question report = Report("hide.report", "Not everything was done as it was asked for:", Icon::Information);
  if (result.ending == HideEnding::NoSpace)
    report = Report("hide.report",
                    "The disk is full. " + std::to_string(result.hidden) + " files are hidden in " + name +
                        "; all originals are in place.",
                    Icon::Critical);
  if (result.ending == HideEnding::Aborted)
    report = Report(
        "hide.report",
        result.isComplete
            ? "The files are hidden in " + name + ", but what was to follow was aborted."
            : "Hiding was aborted." + (result.backup.empty() ? " " + name + " is as it was." : std::string()),
        Icon::Critical);
  if (!result.backup.empty()) {
    report.text += " " + name + " may be damaged. The file as it was before is intact:";
    report.list.push_back(Printable(result.backup.native()));
  }
  AddPaths(report, "not hidden: ", result.leftOut);
  AddPaths(report, "original still there: ", result.originalsLeft);
  if (!result.needlessBackup.empty())
    report.list.push_back("backup that is needed no more: " + Printable(result.needlessBackup.native()));
  const bool isQuiet = result.ending != HideEnding::NoSpace && result.ending != HideEnding::Aborted;
  if (isQuiet && report.list.empty()) return std::nullopt;
  return report;
}

std::optional<Question> PassedOverReport(const std::vector<PassedOver>& passed) {
  if (passed.empty()) return std::nullopt;
  Question report =
      Report("hide.passed-over", "This can't be hidden and was passed over:", Icon::Information);
  for (const PassedOver& each : passed)
    report.list.push_back(Printable(each.path.native()) + " " + each.reason);
  return report;
}

}  // namespace tarnel
