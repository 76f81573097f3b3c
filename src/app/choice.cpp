#include "app/choice.h"

namespace tarnel {

namespace {

ExtractChoice ChoiceOfRow(const FileListRow& row) {
  if (row.kind == FileListRow::Kind::File)
    return {.kind = ExtractChoice::Kind::File, .row = row.relativeIndex, .itemFolder = {}};
  return {.kind = ExtractChoice::Kind::Folder, .row = 0, .itemFolder = row.itemFolder};
}

std::vector<ExtractChoice> ChosenRows(const Session& session) {
  std::vector<ExtractChoice> chosen;
  const auto& rows = session.fileList.Rows();
  if (session.ActiveListHwnd == Attention::DirView) {
    for (const FileListRow& row : rows)
      chosen.push_back(ChoiceOfRow(row));
    return chosen;
  }
  for (const std::size_t index : session.rowSelection.rows)
    if (index < rows.size()) chosen.push_back(ChoiceOfRow(rows[index]));
  return chosen;
}

}  // namespace

Choice ChoiceOf(const Session& session) {
  Choice choice;
  choice.carrier = session.current.CurrentCarrierPath;
  choice.rows = ChosenRows(session);
  if (const TreeNode* const node = session.SelectedNode(); node != nullptr && !node->IsRoot()) {
    choice.nodeItemFolder.assign(*node->itemFolder);
    choice.nodePath.assign(node->FolderPath());
  }
  if (session.IsFileRowSelected())
    choice.file = session.fileList.Rows()[*session.rowSelection.current].relativeIndex;
  return choice;
}

}  // namespace tarnel
