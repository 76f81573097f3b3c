#include "app/session.h"

#include <algorithm>
#include <utility>

namespace tarnel {

namespace {

/// The first node in the order of the tree that `fits`. Hostile folder texts nest deeper than a stack goes.
template <class Predicate>
TreeNode* FindNode(const Catalogue& catalogue, const Predicate& fits) {
  std::vector<TreeNode*> waiting;
  const auto add = [&waiting](const auto& nodes) {
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node)
      waiting.push_back(node->get());
  };
  add(catalogue.Roots());
  while (!waiting.empty()) {
    TreeNode* const node = waiting.back();
    waiting.pop_back();
    if (fits(*node)) return node;
    add(node->children);
  }
  return nullptr;
}

}  // namespace

Session::Session(Files& filesPort, SettingsFile& file,
                 std::function<std::string(const std::string&)> typeTextOf)
    : files(filesPort), settingsFile(file), types(std::move(typeTextOf)) {
  ReloadSettings();
}

void Session::DirView_NodeClick(TreeNode& node) {
  if (guards.TreeClickBlocked) return;
  ActiveListHwnd = Attention::DirView;
  const HideoutKey& key = *node.hideout;
  current = CurrentOf(key);
  KeepAsSelected(node);
  fileList.Show(node, catalogue);
  filesPanel = std::to_string(FilesOf(key.carrier)) + " File(s) ";
  algorithmPanel = " " + AlgorithmName(current.CurrentAlgorithmId);
  TellList();
}

void Session::HideoutLoaded(TreeNode& root, std::size_t fileCount) {
  Select(root);
  DirView_NodeClick(root);
  filesPanel = std::to_string(fileCount) + " File(s) ";
}

void Session::HideoutGone() {
  ShowNothing();
  SettleTree();
  if (!catalogue.Roots().empty()) {
    TreeNode& first = *catalogue.Roots().front();
    Select(first);
    DirView_NodeClick(first);
  }
}

void Session::HideoutCreated(TreeNode& root, std::string_view algorithmName) {
  filesPanel = " 0 File(s) ";
  algorithmPanel = " " + std::string(algorithmName);
  Select(root);
  ShowNothing();
}

void Session::HideoutEmptied() {
  filesPanel = "0 File(s) ";
  ShowNothing();
  if (const TreeNode* const root = catalogue.FindRoot(current.CurrentCarrierPath)) KeepAsSelected(*root);
  SettleTree();
}

void Session::CarrierKeptItsBytes() {
  const Path& carrier = current.CurrentCarrierPath;
  const std::optional<FileStat> read = catalogue.ReadAs(carrier);
  if (!read) return;
  try {
    const std::optional<FileStat> now = files.Stat(carrier);
    if (now && now->IsSameFile(*read) && now->size == read->size &&
        now->modifiedNanoseconds == read->modifiedNanoseconds)
      catalogue.NoteRead(carrier, *now);
  } catch (const Error&) {  // who looks next says so
  }
}

void Session::SettleTree() {
  const TreeNode* const node = SelectedNode();
  if (node == nullptr) {
    m_selectedHideout.reset();
    ShowNothing();
  } else if (!fileList.Shows(*node, catalogue)) {
    fileList.Show(*node, catalogue);
    TellList();
  }
  TellTree();
}

void Session::CloseCarrier() {
  if (catalogue.FindRoot(current.CurrentCarrierPath) != nullptr) {
    catalogue.RemoveCarrier(current.CurrentCarrierPath);
    ShowNothing();
    SettleTree();
  }
  if (catalogue.Roots().empty()) {
    filesPanel.clear();
    algorithmPanel.clear();
    return;
  }
  if (SelectedNode() == nullptr) Select(*catalogue.Roots().front());
  DirView_NodeClick(*SelectedNode());
}

TreeNode* Session::SelectedNode() const {
  for (const auto& root : catalogue.Roots()) {
    if (m_selectedHideout == nullptr || root->hideout != m_selectedHideout) continue;
    TreeNode* node = root.get();
    for (const WipedText& text : m_selectedFolder) {
      const auto child = node->childByText.find(text);
      if (child == node->childByText.end()) return nullptr;
      node = child->second;
    }
    return node;
  }
  return nullptr;
}

TreeNode* Session::NodeOfFolderRow(const FileListRow& row) const {
  return FindNode(catalogue, [&row](const TreeNode& node) {
    return std::string_view(node.text) == row.texts[0] && node.hideout->carrier == row.carrier;
  });
}

void Session::ColumnClick(Column column) {
  fileList.ColumnClick(column, SelectedNode(), catalogue);
  TellList();
}

void Session::Remember(std::string_view sectionName, std::string_view key, std::string value) {
  settingsFile.Set(sectionName, key, std::move(value));
  try {
    settingsFile.Save();
  } catch (const Error&) {  // as the header says
  }
}

void Session::ReloadSettings() {
  LoadSettings(settingsFile, settings);
  const std::vector<Column> before = fileList.Columns();
  fileList.ApplyColumns(settings);
  if (fileList.Columns() != before) TellList();
  if (m_view != nullptr) m_view->SettingsChanged();
}

RefreshResult Session::RefreshNow() const {
  return Refresh({.ReadingBusy = guards.ReadingBusy,
                  .hasNodes = !catalogue.Roots().empty(),
                  .hasRows = !fileList.Rows().empty(),
                  .listHasAttention = ActiveListHwnd == Attention::FileList,
                  .isFileRowSelected = IsFileRowSelected()});
}

bool Session::IsFileRowSelected() const {
  const auto& rows = fileList.Rows();
  const auto& row = rowSelection.current;
  return row && *row < rows.size() && rows[*row].kind == FileListRow::Kind::File;
}

void Session::Select(const TreeNode& node) {
  KeepAsSelected(node);
  TellTree();
}

void Session::KeepAsSelected(const TreeNode& node) {
  m_selectedHideout = node.hideout;
  m_selectedFolder.clear();
  for (const TreeNode* each = &node; !each->IsRoot(); each = each->parent)
    m_selectedFolder.push_back(each->text);
  std::reverse(m_selectedFolder.begin(), m_selectedFolder.end());
}

void Session::ShowNothing() {
  fileList.Clear();
  TellList();
}

void Session::TellTree() {
  if (m_view != nullptr) m_view->TreeChanged();
}

void Session::TellList() {
  if (m_view != nullptr) m_view->FileListChanged();
}

}  // namespace tarnel
