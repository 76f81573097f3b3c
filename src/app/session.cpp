#include "app/session.h"

#include <utility>

namespace tarnel {

namespace {

/// The first node at or below `node`, in the order of the tree, that `fits`.
template <class Predicate>
TreeNode* FindNode(TreeNode& node, const Predicate& fits) {
  if (fits(node)) return &node;
  for (const auto& child : node.children) {
    if (TreeNode* found = FindNode(*child, fits)) return found;
  }
  return nullptr;
}

template <class Predicate>
TreeNode* FindNode(const Catalogue& catalogue, const Predicate& fits) {
  for (const auto& root : catalogue.Roots()) {
    if (TreeNode* found = FindNode(*root, fits)) return found;
  }
  return nullptr;
}

Algorithm IdOf(std::string name) {
  return AlgorithmId(name);
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
  current.CurrentCarrierPath = key.carrier;
  current.CurrentCarrierName = key.carrierName;
  current.CurrentAlgorithmId = IdOf(key.algorithmName);
  current.CurrentPassword = key.password;
  current.CurrentHideoutTitle = key.title;
  m_selected = &node;
  fileList.Show(node, catalogue);
  filesPanel = std::to_string(FilesOf(key.carrier)) + " File(s) ";
  algorithmPanel = " " + AlgorithmName(current.CurrentAlgorithmId);
  TellList();
}

void Session::HideoutLoaded(TreeNode& root, std::size_t fileCount) {
  Select(&root);
  DirView_NodeClick(root);
  filesPanel = std::to_string(fileCount) + " File(s) ";
}

void Session::HideoutGone() {
  ShowNothing();
  SettleTree();
  if (!catalogue.Roots().empty()) {
    Select(catalogue.Roots().front().get());
    DirView_NodeClick(*m_selected);
  }
}

void Session::HideoutCreated(TreeNode& root, std::string_view algorithmName) {
  filesPanel = " 0 File(s) ";
  algorithmPanel = " " + std::string(algorithmName);
  Select(&root);
  ShowNothing();
}

void Session::SettleTree() {
  if (FindNode(catalogue, [this](const TreeNode& node) { return &node == m_selected; }) == nullptr) {
    m_selected = nullptr;
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
  if (m_selected == nullptr) Select(catalogue.Roots().front().get());
  DirView_NodeClick(*m_selected);
}

TreeNode* Session::NodeOfFolderRow(const FileListRow& row) const {
  return FindNode(catalogue, [&row](const TreeNode& node) {
    return std::string_view(node.text) == row.texts[0] && node.hideout->carrier == row.carrier;
  });
}

void Session::ColumnClick(Column column) {
  fileList.ColumnClick(column, m_selected, catalogue);
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
  fileList.ApplyColumns(settings);
  TellList();
}

RefreshResult Session::RefreshNow() const {
  return Refresh({.ReadingBusy = guards.ReadingBusy,
                  .hasNodes = !catalogue.Roots().empty(),
                  .hasRows = !fileList.Rows().empty(),
                  .listHasAttention = ActiveListHwnd == Attention::FileList,
                  .isFileRowSelected = isFileRowSelected});
}

void Session::Select(TreeNode* node) {
  m_selected = node;
  TellTree();
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
