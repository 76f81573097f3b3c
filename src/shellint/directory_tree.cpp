#include "shellint/directory_tree.h"

#include "base/printable.h"

namespace tarnel {

DirectoryTree::DirectoryTree(const DirectoryTreePorts& ports)
    : m_files(ports.files),
      m_places(ports.places),
      m_watch(ports.watch),
      m_dialogue(ports.dialogue),
      m_rows(ports.rows),
      m_events(ports.events),
      m_nodes(ports.rows, [this](DirectoryNode& node, DirectoryNode& survivor) { Leave(node, survivor); }) {}

void DirectoryTree::Initialize() {
  if (m_isInitialized) throw Error(NumberOf(TreeFault::AlreadyInitialized), "Tree already initialized.");
  Clear();
  const bool hasDrives = ShowRoots();
  m_isInitialized = true;
  if (!hasDrives) throw Error(NumberOf(TreeFault::NoDriveList), "Couldn't retrieve drive list");
  if (m_watch.Handle() < 0)
    throw Error(NumberOf(TreeFault::CantWatch), "Couldn't register for shell change events");
}

void DirectoryTree::Clear() {
  m_nodes.RemoveChildren(m_nodes.Top());
  m_drives.clear();
  m_changes.clear();
  m_reread.clear();
  m_isInitialized = false;
  SettleSelection();
}

Path DirectoryTree::Path() const {
  return m_selected == nullptr ? tarnel::Path() : tarnel::Path(m_selected->FullPath());
}

void DirectoryTree::SetPath(const tarnel::Path& path) {
  const bool exists = path.is_absolute() && IsFolder(path.native());
  DirectoryNode* const node = CreateDirNode(exists ? path.native() : m_desktop, Expand::Yes, Missing::Refuse);
  if (node == nullptr) return;
  const std::string shown = node->FullPath();
  Select(node);
  m_events.OnDirClick(shown, exists);
}

DirectoryNode* DirectoryTree::CreateDirNode(const tarnel::Path& path, Expand expand, Missing missing) {
  if (path.native().find('/') == std::string::npos) return nullptr;
  const std::string whole = WithSeparator(path.lexically_normal().native());
  const std::vector<DirectoryNode*> roots = m_nodes.RootsAbove(whole);
  if (roots.empty())
    throw Error(NumberOf(TreeFault::NoSuchDrive), "Specified drive doesn't exist in the tree.", path);
  DirectoryNode* node = roots.front();
  ListIfEmpty(*node);
  for (std::size_t from = node->name.size(); from < whole.size();) {
    const std::size_t end = whole.find('/', from);
    const std::string part = whole.substr(0, end);
    if (!IsFolder(part))
      throw Error(NumberOf(TreeFault::NoSuchFolder),
                  "Specified folder: \"" + Printable(part) + "\" doesn't exist.", part);
    const std::string name = whole.substr(from, end - from);
    if (missing == Missing::Refuse && m_nodes.Child(*node, name) == nullptr)
      throw Error(NumberOf(TreeFault::NoSuchFolder),
                  "Directory not loaded in tree: \"" + Printable(part) + "\".", part);
    node = &m_nodes.Add(*node, name);
    ListIfEmpty(*node);
    from = end + 1;
  }
  if (expand == Expand::No) return node;
  ExpandWayTo(whole);
  const std::vector<DirectoryNode*> nodes = m_nodes.At(whole);
  return nodes.empty() ? nullptr : nodes.front();
}

void DirectoryTree::ExpandWayTo(const std::string& path) {
  const std::size_t root = m_nodes.RootsAbove(path).front()->name.size();
  for (std::size_t end = root - 1; end != std::string::npos; end = path.find('/', end + 1)) {
    const std::vector<DirectoryNode*> nodes = m_nodes.At(path.substr(0, end + 1));
    if (!nodes.empty()) m_events.ShowExpanded(*nodes.front());
  }
}

void DirectoryTree::Select(DirectoryNode* node) {
  m_selected = node;
  m_selectionMoved = true;
  SettleSelection();
}

void DirectoryTree::SettleSelection() {
  if (!m_selectionMoved) return;
  m_selectionMoved = false;
  m_events.SelectionMoved();
}

void DirectoryTree::TreeView_NodeClick(DirectoryNode& node) {
  const std::string path = node.FullPath();
  Select(&node);
  m_events.OnDirClick(path, true);
}

void DirectoryTree::DoubleClick(DirectoryNode& node) {
  if (!node.children.empty()) return;
  const std::string path = node.FullPath();
  if (!Open(node)) return;
  m_events.ShowExpanded(node);
  m_events.OnDirDblClick(path);
}

bool DirectoryTree::NodeExpanded(DirectoryNode& node) {
  node.isExpanded = true;
  if (!Open(node)) return false;
  LoadAhead(node);
  return true;
}

bool DirectoryTree::SelectDir(const tarnel::Path& path) {
  const std::vector<DirectoryNode*> nodes = m_nodes.At(path.native());
  if (nodes.empty()) return false;
  DirectoryNode* chosen = nodes.front();
  for (DirectoryNode* node : nodes)
    if (node->parent == m_selected) chosen = node;
  Select(chosen);
  m_events.ShowExpanded(*chosen);
  RefreshDir();
  return true;
}

void DirectoryTree::RefreshDir() {
  if (m_selected != nullptr) TreeView_NodeClick(*m_selected);
}

DirectoryNode* DirectoryTree::NodeOfIndex(std::size_t index) {
  DirectoryNode* found = nullptr;
  std::size_t number = 0;  // of the top, which has none
  DirectoryNodes::ForEach(m_nodes.Top(), [&](DirectoryNode& node) {
    if (number++ == index && index > 0) found = &node;
    return found == nullptr;
  });
  return found;
}

bool DirectoryTree::ClickNodeIndex(std::size_t index) {
  DirectoryNode* const node = NodeOfIndex(index);
  if (node != nullptr) TreeView_NodeClick(*node);
  return node != nullptr;
}

bool DirectoryTree::SelectNode(std::size_t index) {
  DirectoryNode* const node = NodeOfIndex(index);
  if (node != nullptr) Select(node);
  return node != nullptr;
}

std::vector<FolderRow> DirectoryTree::ListChildren() {
  std::vector<FolderRow> rows;
  if (m_selected == nullptr) return rows;
  const bool isCurrent = m_selected->listing == DirectoryNode::Listing::Listed && m_selected->watch;
  if (m_selected->kind != NodeKind::Virtual && !isCurrent) ListQuietly(*m_selected);
  for (const auto& child : m_selected->children) {
    const std::string path = child->FullPath();
    rows.push_back({child->Text(), child->image, path, std::string(kFolderTag) + path});
  }
  return rows;
}

bool DirectoryTree::IsPlace(const std::string& path) const {
  return path == m_desktop || path == m_documents;
}

}  // namespace tarnel
