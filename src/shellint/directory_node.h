#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shellint/folder_watch.h"

namespace tarnel {

/// The first character of a node's key.
enum class NodeKind : char { Virtual = 'V', Drive = 'D', Folder = 'F' };

enum class NodeImage {
  Desktop,
  MyDocuments,
  MyComputer,
  Removable,
  Fixed,
  Remote,
  CdRom,
  RamDisk,
  Unknown,
  Folder,
};

/// A node of the directory tree. What it is called on the disk is bytes; only who shows it decodes them.
struct DirectoryNode {
  enum class Listing { NotYet, Listed, Failed };

  NodeKind kind = NodeKind::Folder;
  NodeImage image = NodeImage::Folder;
  bool isRoot = false;  ///< Desktop, My Documents, My Computer or a drive
  std::string name;     ///< a root: its path, ending in "/", or "MyComputer"; else one component
  std::string caption;  ///< a root: what it is called on the screen

  DirectoryNode* parent = nullptr;
  std::vector<std::unique_ptr<DirectoryNode>> children;  ///< those of a folder sorted by IsNameBefore

  Listing listing = Listing::NotYet;  ///< of the subfolders
  bool isExpanded = false;
  std::optional<WatchId> watch;  ///< set while changes of the folder are told

  /// The path with "/" at its end, or "MyComputer".
  std::string FullPath() const;
  std::string Key() const { return static_cast<char>(kind) + FullPath(); }

  /// What is called so on the screen, as bytes.
  const std::string& Text() const { return isRoot ? caption : name; }

  /// Reading it could touch a medium or wait for a network, so nobody does unless it is opened.
  bool IsReadOnlyWhenOpened() const;

  /// Whether there may be something to expand.
  bool MayHaveChildren() const;
};

/// The order of names in the tree: letters of ASCII without regard to case, then bytes.
bool IsNameBefore(std::string_view a, std::string_view b);

/// `path` with exactly one "/" at its end.
std::string WithSeparator(std::string path);

/// The folder that holds `path`, with "/" at its end, and the last component. Of "/": itself and nothing.
std::string ParentOf(std::string_view path);
std::string LastComponent(std::string_view path);

}  // namespace tarnel
