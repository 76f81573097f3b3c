#include <algorithm>

#include "base/printable.h"
#include "shellint/directory_tree.h"
#include "shellint/questions.h"

namespace tarnel {

using Listing = DirectoryNode::Listing;

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kSlice = std::chrono::milliseconds(8);

/// The platform's limit of watches is one for all programs of the user; what only might be looked at takes no
/// more than this part of it.
constexpr std::size_t kCheapWatches = 4096;

/// Nobody opened the folder, so that it is closed to us, or gone, is nobody's news.
bool IsNoNews(const Error& error) {
  const ErrorNumber number = error.Number();
  return number == ErrorNumber::PermissionDenied || number == ErrorNumber::FileNotFound ||
         number == ErrorNumber::PathNotFound || number == ErrorNumber::BadFileName;
}

}  // namespace

bool DirectoryTree::IsFolder(const std::string& path) {
  try {
    const std::optional<FileStat> stat = m_files.Stat(path);
    return stat && stat->kind == FileKind::Folder;
  } catch (const Error&) {
    return false;
  }
}

/// Symbolic links to folders are folders here.
std::vector<std::string> DirectoryTree::Subfolders(const std::string& path) {
  std::vector<std::string> names;
  for (FolderEntry& entry : m_files.List(path)) {
    const bool isFolder = entry.kind == FileKind::Folder ||
                          (entry.kind == FileKind::SymbolicLink && IsFolder(path + entry.name));
    if (isFolder) names.push_back(std::move(entry.name));
  }
  return names;
}

/// Watches before it reads, so that nothing falls in between.
DirectoryNodes::Difference DirectoryTree::List(DirectoryNode& node, Watching watching) {
  if (watching == Watching::Always || m_watched.size() < kCheapWatches) EnsureWatched(node);
  std::vector<std::string> names = Subfolders(node.FullPath());
  node.listing = Listing::Listed;
  const DirectoryNodes::Difference difference = m_nodes.SetChildren(node, std::move(names));
  if (node.IsReadOnlyWhenOpened()) m_rows.RowChanged(node);
  if (node.isExpanded) LoadAhead(node);
  return difference;
}

void DirectoryTree::ListQuietly(DirectoryNode& node) {
  try {
    List(node, Watching::Always);
  } catch (const Error&) {
    MarkFailed(node);
  }
}

void DirectoryTree::ListIfEmpty(DirectoryNode& node) {
  if (!node.children.empty()) return;
  try {
    List(node, Watching::Always);
  } catch (const Error&) {
    const std::string path = node.FullPath();
    MarkFailed(node);
    throw Error(NumberOf(TreeFault::CantList), "Failed to open search handle to: " + Printable(path), path);
  }
}

void DirectoryTree::MarkFailed(DirectoryNode& node) {
  node.listing = Listing::Failed;
  node.isExpanded = false;
  Unwatch(node);
  m_nodes.RemoveChildren(node);
  m_rows.RowChanged(node);
}

bool DirectoryTree::Open(DirectoryNode& node) {
  if (node.kind == NodeKind::Virtual || (node.listing == Listing::Listed && node.watch)) return true;
  try {
    List(node, Watching::Always);
    return true;
  } catch (const Error&) {
    const std::string path = node.FullPath();
    MarkFailed(node);
    SettleSelection();
    m_dialogue.Ask(NotReadyQuestion(path));
    return false;
  }
}

void DirectoryTree::LoadAhead(DirectoryNode& node) {
  std::erase_if(m_ahead, [&](const Ahead& ahead) { return ahead.parent == &node; });
  m_ahead.push_back({.parent = &node});
}

void DirectoryTree::WorkAhead() {
  Ahead& ahead = m_ahead.back();
  const auto& children = ahead.parent->children;
  while (ahead.next < children.size()) {
    DirectoryNode& child = *children[ahead.next++];
    if (child.listing == Listing::NotYet && !WaitsWhenRead(child)) return ReadAhead(child);
  }
  m_ahead.pop_back();
}

void DirectoryTree::ReadAhead(DirectoryNode& node) {
  try {
    List(node, Watching::WhileCheap);
  } catch (const Error& error) {
    const std::string path = node.FullPath();
    MarkFailed(node);
    if (IsNoNews(error)) return;
    m_ahead.pop_back();
    m_dialogue.Ask(NotReadyQuestion(path));
  }
}

bool DirectoryTree::WaitsWhenRead(const DirectoryNode& node) const {
  return node.IsReadOnlyWhenOpened() ||
         (!m_waitingRoots.empty() &&
          std::binary_search(m_waitingRoots.begin(), m_waitingRoots.end(), node.FullPath()));
}

void DirectoryTree::EnsureWatched(DirectoryNode& node) {
  if (node.watch) return;
  node.watch = m_watch.Watch(node.FullPath());
  if (node.watch) m_watched[*node.watch].push_back(&node);
}

void DirectoryTree::Unwatch(DirectoryNode& node) {
  if (!node.watch) return;
  const WatchId id = *node.watch;
  node.watch.reset();
  std::vector<DirectoryNode*>& nodes = m_watched.at(id);
  std::erase(nodes, &node);
  if (!nodes.empty()) return;
  m_watch.Unwatch(id);
  m_watched.erase(id);
}

void DirectoryTree::Leave(DirectoryNode& node, DirectoryNode& survivor) {
  Unwatch(node);
  std::erase_if(m_ahead, [&](const Ahead& ahead) { return ahead.parent == &node; });
  for (Ahead& ahead : m_ahead)
    if (ahead.parent == &survivor) ahead.next = 0;
  if (m_computer == &node) m_computer = nullptr;
  if (m_selected != &node) return;
  m_selected = &survivor == &m_nodes.Top() ? nullptr : &survivor;
  m_selectionMoved = true;
}

void DirectoryTree::TakeChanges() {
  for (FolderChange& change : m_watch.Take())
    m_changes.push_back(std::move(change));
}

bool DirectoryTree::Continue() {
  const Clock::time_point end = Clock::now() + kSlice;
  while (HasWork() && Clock::now() < end) {
    if (!m_changes.empty()) {
      const FolderChange change = std::move(m_changes.front());
      m_changes.pop_front();
      ShellNotifyMsg(change);
    } else if (!m_reread.empty()) {
      const std::string path = std::move(m_reread.front());
      m_reread.pop_front();
      Reread(path);
    } else {
      WorkAhead();
    }
    SettleSelection();
  }
  return HasWork();
}

}  // namespace tarnel
