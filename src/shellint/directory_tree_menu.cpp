#include <algorithm>

#include "base/destruction.h"
#include "base/printable.h"
#include "shellint/directory_tree.h"
#include "shellint/questions.h"

namespace tarnel {

namespace {

/// Without the "/" at its end, which would lead through a symbolic link.
std::string Plain(std::string path) {
  path.pop_back();
  return path;
}

}  // namespace

MenuItems DirectoryTree::MenuFor(const DirectoryNode* node, MenuRoad road) const {
  if (node == nullptr || node->kind == NodeKind::Virtual) return {};
  if (node->kind == NodeKind::Drive) return {.mnuCreate = road == MenuRoad::PopupM};
  const bool isOrdinary = !IsPlace(node->FullPath());
  return {.mnuCreate = true, .mnuRename = isOrdinary, .mnuDelete = isOrdinary};
}

void DirectoryTree::CreateFolder(DirectoryNode& node) {
  std::string path;
  try {
    path = MakeFolderIn(node);
  } catch (const Error& error) {
    m_dialogue.Ask(TreeErrorQuestion(error));
    return;
  }
  DirectoryNode& child = m_nodes.Add(node, LastComponent(path));
  Select(&child);
  m_events.EditLabel(child);
  m_events.OnDirCreate(WithSeparator(path));
}

std::string DirectoryTree::MakeFolderIn(DirectoryNode& node) {
  if (node.listing != DirectoryNode::Listing::Listed) ListIfEmpty(node);
  const std::string folder = node.FullPath();
  const std::string name = FreeName(folder);
  m_files.OpenFolder(folder)->Enter(name, Folder::IfMissing::Create);
  AddEverywhere(folder + name);
  return folder + name;
}

std::string DirectoryTree::FreeName(const std::string& folder) {
  std::string name = "New Folder";
  for (int number = 0; Exists(folder + name); ++number)
    name = "New Folder (" + std::to_string(number) + ")";
  return name;
}

bool DirectoryTree::Exists(const std::string& path) {
  return m_files.Stat(path, Files::Links::DontFollow).has_value();
}

void DirectoryTree::Rename(DirectoryNode& node, const std::string& name) {
  if (name.empty() || name == node.name || !CanRename(node)) return;
  if (name.find_first_of(kRefusedInDirectoryNames) != std::string::npos) {
    m_dialogue.Ask(BadDirectoryNameQuestion());
    return;
  }
  const std::string oldPath = node.FullPath();
  const std::string newPath = WithSeparator(ParentOf(oldPath) + name);
  try {
    m_files.RenameNoReplace(Plain(oldPath), Plain(newPath));
  } catch (const Error& error) {
    m_dialogue.Ask(TreeErrorQuestion(error));
    return;
  }
  DirectoryRenamed(oldPath, newPath);
  m_events.OnDirRename(oldPath, newPath);
}

void DirectoryTree::Delete(DirectoryNode& node) {
  if (!MenuFor(&node, MenuRoad::Tree).mnuDelete) return;
  const std::string path = node.FullPath();
  bool isGone = false;
  try {
    MustHoldNoVolume(path);
    isGone = DeleteFromDisk(Plain(path));
  } catch (const Error& error) {
    m_dialogue.Ask(TreeErrorQuestion(error));
  }
  if (isGone) FolderRemoved(path);
}

void DirectoryTree::MustHoldNoVolume(const std::string& path) const {
  const auto held = std::find_if(m_mountPoints.begin(), m_mountPoints.end(), [&](const tarnel::Path& point) {
    return WithSeparator(point.native()).starts_with(path);
  });
  if (held == m_mountPoints.end()) return;
  throw Error(
      ErrorNumber::PathFileAccess,
      "cannot delete " + Printable(Plain(path)) + ": a volume is mounted at " + Printable(held->native()),
      path);
}

bool DirectoryTree::DeleteFromDisk(const std::string& path) {
  if (!HardDelete)
    ShellDelete({path}, m_dialogue, m_files);
  else if (m_dialogue.Ask(ConfirmDeleteQuestion(path)) == Answer::Yes)
    RemovePath(path, m_dialogue, m_files);
  return !Exists(path);
}

}  // namespace tarnel
