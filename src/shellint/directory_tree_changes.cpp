#include <algorithm>

#include "shellint/directory_tree.h"

namespace tarnel {

using Listing = DirectoryNode::Listing;

void DirectoryTree::ShellNotifyMsg(const FolderChange& change) {
  using Kind = FolderChange::Kind;
  if (change.kind == Kind::Overflow) return RereadAll();
  if (change.kind == Kind::Gone) return FolderGone(change.folder);
  if (change.kind == Kind::Renamed) return EntryRenamed(change);
  for (const std::string& folder : PathsOf(change.folder)) {
    if (change.kind == Kind::Created)
      EntryCreated(change, folder + change.name);
    else
      EntryRemoved(change, folder + change.name);
  }
}

std::vector<std::string> DirectoryTree::PathsOf(WatchId folder) const {
  std::vector<std::string> paths;
  const auto watched = m_watched.find(folder);
  if (watched == m_watched.end()) return paths;
  for (const DirectoryNode* node : watched->second)
    paths.push_back(node->FullPath());
  std::sort(paths.begin(), paths.end());
  paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
  return paths;
}

/// A folder that has another name by now is added when that is told.
void DirectoryTree::EntryCreated(const FolderChange& change, const std::string& path) {
  if (IsFolder(path))
    FolderCreated(path);
  else if (!change.isFolder)
    m_events.OnFileCreate(path);
}

void DirectoryTree::EntryRemoved(const FolderChange& change, const std::string& path) {
  if (change.isFolder || !m_nodes.At(path).empty())
    FolderRemoved(path);
  else
    m_events.OnFileRemove(path);
}

/// Both folders may be known by several paths; the same ones go together.
void DirectoryTree::EntryRenamed(const FolderChange& change) {
  const std::vector<std::string> from = PathsOf(change.folder), to = PathsOf(change.newFolder);
  for (std::size_t i = 0; i < from.size() && !to.empty(); ++i) {
    const std::string oldPath = from[i] + change.name;
    const std::string newPath = to[std::min(i, to.size() - 1)] + change.newName;
    const bool isKnown = !m_nodes.At(oldPath).empty();
    if (!change.isFolder && !isKnown) {
      m_events.OnFileRename(oldPath, newPath);
      continue;
    }
    if (isKnown)
      DirectoryRenamed(oldPath, newPath);
    else if (IsFolder(newPath))
      AddEverywhere(newPath);
    m_events.OnDirRename(WithSeparator(oldPath), WithSeparator(newPath));
  }
}

/// Below each node of its parent that has been read.
void DirectoryTree::AddEverywhere(const std::string& path) {
  for (DirectoryNode* parent : m_nodes.At(ParentOf(path))) {
    if (parent->listing != Listing::Listed) continue;
    m_nodes.Add(*parent, LastComponent(path));
    LoadAhead(*parent);
  }
}

void DirectoryTree::FolderCreated(const std::string& path) {
  AddEverywhere(path);
  m_events.OnDirCreate(WithSeparator(path));
}

void DirectoryTree::FolderRemoved(const std::string& path) {
  for (DirectoryNode* node : m_nodes.At(path)) {
    if (node->isRoot)
      ListQuietly(*node);
    else
      m_nodes.Remove(*node);
  }
  SettleSelection();
  m_events.OnDirRemove(WithSeparator(path));
}

/// Deleted, or its volume went; in the latter case something else is in its place now.
void DirectoryTree::FolderGone(WatchId folder) {
  const auto watched = m_watched.find(folder);
  if (watched == m_watched.end()) return;
  const std::vector<std::string> paths = PathsOf(folder);
  for (DirectoryNode* node : watched->second)
    node->watch.reset();
  m_watched.erase(watched);
  for (const std::string& path : paths)
    for (DirectoryNode* node : m_nodes.At(path))
      if (!node->watch) ListQuietly(*node);
  SettleSelection();
}

void DirectoryTree::DirectoryRenamed(const tarnel::Path& oldPath, const tarnel::Path& newPath) {
  const std::string from = WithSeparator(oldPath.native()), to = WithSeparator(newPath.native());
  const bool hasMoved = ParentOf(from) != ParentOf(to);
  bool isKnown = false;
  for (DirectoryNode* node : m_nodes.At(from)) {
    if (node->isRoot) continue;
    isKnown = true;
    if (hasMoved)
      m_nodes.Remove(*node);
    else
      m_nodes.Rename(*node, LastComponent(to));
  }
  if (isKnown && hasMoved) AddEverywhere(to);
  SettleSelection();
}

void DirectoryTree::RereadAll() {
  m_reread.clear();
  DirectoryNodes::ForEach(m_nodes.Top(), [&](DirectoryNode& node) {
    const bool isRead = node.kind != NodeKind::Virtual && node.listing == Listing::Listed;
    if (isRead) m_reread.push_back(node.FullPath());
    return true;
  });
}

void DirectoryTree::Reread(const std::string& path) {
  DirectoryNodes::Difference difference;
  for (DirectoryNode* node : m_nodes.At(path)) {
    try {
      difference = List(*node, Watching::WhileCheap);
    } catch (const Error&) {
      MarkFailed(*node);
    }
  }
  SettleSelection();
  for (const std::string& name : difference.gone)
    m_events.OnDirRemove(WithSeparator(path + name));
  for (const std::string& name : difference.come)
    m_events.OnDirCreate(WithSeparator(path + name));
}

}  // namespace tarnel
