#pragma once

#include <chrono>
#include <deque>
#include <unordered_map>

#include "base/dialogue.h"
#include "shellint/directory_nodes.h"
#include "shellint/folder_watch.h"
#include "shellint/places.h"
#include "shellint/tree_errors.h"

namespace tarnel {

/// What the tree tells its host. Paths of folders end in "/". A handler may do to the tree what it likes.
class DirectoryTreeEvents {
 public:
  virtual ~DirectoryTreeEvents() = default;

  /// A node was clicked, or the path was set; `flag` is false where a folder that doesn't exist was asked for
  /// and the desktop took its place.
  virtual void OnDirClick(const Path& path, bool flag) = 0;
  virtual void OnDirDblClick(const Path& path) = 0;
  virtual void OnDirCreate(const Path& path) = 0;
  virtual void OnDirRename(const Path& oldPath, const Path& newPath) = 0;
  virtual void OnDirRemove(const Path& path) = 0;
  virtual void OnFileRemove(const Path& path) = 0;
  virtual void OnFileCreate(const Path& path) = 0;
  virtual void OnFileRename(const Path& oldPath, const Path& newPath) = 0;

  /// The tree itself has selected another node, or none.
  virtual void SelectionMoved() = 0;
  virtual void ShowExpanded(const DirectoryNode& node) = 0;
  virtual void EditLabel(const DirectoryNode& node) = 0;
};

struct DirectoryTreePorts {
  Files& files;
  Places& places;
  FolderWatch& watch;
  Dialogue& dialogue;
  TreeRows& rows;
  DirectoryTreeEvents& events;
};

struct MenuItems {
  bool mnuCreate = false;
  bool mnuRename = false;
  bool mnuDelete = false;

  bool operator==(const MenuItems&) const = default;
};

/// A row for the list of a host, by ListChildren.
struct FolderRow {
  std::string text;  ///< bytes
  NodeImage image = NodeImage::Folder;
  Path path;
  std::string tag;  ///< "*Folder*" and the path
};

inline constexpr std::string_view kFolderTag = "*Folder*";

/// The folders of this machine as a tree that reads them as they are opened, always one level ahead of what
/// is visible, and follows what others do to them.
///
/// Folders are listed where somebody waits for them; all else (the level ahead, what others changed) is work
/// that Continue does in slices. Removable media, discs and network drives are read only when they are
/// opened. Where a folder can't be watched it is read again each time it is opened.
///
/// Nodes are the tree's own. They may go in each call that changes the tree, and in each event and question.
class DirectoryTree {
 public:
  explicit DirectoryTree(const DirectoryTreePorts& ports);
  DirectoryTree(const DirectoryTree&) = delete;
  DirectoryTree& operator=(const DirectoryTree&) = delete;
  ~DirectoryTree() = default;

  bool HardDelete = false;     ///< deleting is for ever, and doesn't go to the trash
  bool LeaveOutDiscs = false;  ///< no drives for discs among the roots

  /// Shows the roots. Throws AlreadyInitialized; and, with all that could be shown in the tree, NoDriveList
  /// or CantWatch.
  void Initialize();

  /// Removes all nodes. Initialize may follow.
  void Clear();

  const DirectoryNode& Top() const { return m_nodes.Top(); }

  /// The selected node's; empty if there is none.
  tarnel::Path Path() const;

  /// Shows and selects a folder, the desktop for one that doesn't exist, and raises OnDirClick. Throws what
  /// CreateDirNode throws.
  void SetPath(const tarnel::Path& path);

  enum class Expand { No, Yes };
  enum class Missing { Refuse, Create };
  /// Loads the way to a folder. Nothing for a path without "/". Throws NoSuchDrive, NoSuchFolder or CantList.
  DirectoryNode* CreateDirNode(const tarnel::Path& path, Expand expand, Missing missing);

  DirectoryNode* SelectedNode() const { return m_selected; }

  /// Selects the node and raises OnDirClick.
  void TreeView_NodeClick(DirectoryNode& node);

  /// Opens a node that has no children and raises OnDirDblClick. A folder that can't be read is a box.
  void DoubleClick(DirectoryNode& node);

  /// The node shows its children now: reads them if it has none, and goes on with theirs. A folder that can't
  /// be read is a box, and false.
  bool NodeExpanded(DirectoryNode& node);
  void NodeCollapsed(DirectoryNode& node) { node.isExpanded = false; }

  /// False if the path isn't in the tree. A child of the selected node comes before others of that path.
  bool SelectDir(const tarnel::Path& path);

  /// OnDirClick once more for the selected node.
  void RefreshDir();

  /// Nodes count from 1, from top to bottom, collapsed ones too.
  bool ClickNodeIndex(std::size_t index);
  bool SelectNode(std::size_t index);

  /// The children of the selected node for a host's list, in which the rows whose tag begins with kFolderTag
  /// make room for them. Reads the node if that hasn't been done; one that can't be read has none.
  std::vector<FolderRow> ListChildren();

  enum class MenuRoad { Tree, PopupM };
  /// What the menu over a node (null: over none) offers. A drive takes new folders in PopupM only.
  MenuItems MenuFor(const DirectoryNode* node, MenuRoad road) const;

  /// Makes "New Folder", or "New Folder (0)" and so on, in the node's folder, selects it, has its label
  /// edited and raises OnDirCreate. A failure is a box.
  void CreateFolder(DirectoryNode& node);

  bool CanRename(const DirectoryNode& node) const { return MenuFor(&node, MenuRoad::Tree).mnuRename; }

  /// Renames the folder on the disk and raises OnDirRename. A name that can't be is a box and leaves all as
  /// it was, and so is one that is taken; an empty one does nothing.
  void Rename(DirectoryNode& node, const std::string& name);

  /// Moves the folder to the trash, or deletes it for ever after a question, and raises OnDirRemove if it is
  /// gone. A folder in which a volume is mounted is refused.
  void Delete(DirectoryNode& node);

  /// Brings the tree up to date after a rename by somebody else.
  void DirectoryRenamed(const tarnel::Path& oldPath, const tarnel::Path& newPath);

  /// Something happened in a watched folder.
  void ShellNotifyMsg(const FolderChange& change);

  /// Volumes came or went.
  void RefreshDrives();

  /// Fetches what happened in watched folders; Continue takes it in.
  void TakeChanges();

  /// Does a slice of the waiting work, some milliseconds long. Whether some is left.
  bool Continue();

 private:
  struct Ahead {
    DirectoryNode* parent;
    std::size_t next = 0;  // children before it are done
  };
  enum class Watching { Always, WhileCheap };

  // directory_tree.cpp
  void Select(DirectoryNode* node);
  void SettleSelection();
  DirectoryNode* NodeOfIndex(std::size_t index);
  void ExpandWayTo(const std::string& path);
  bool IsPlace(const std::string& path) const;

  // directory_tree_roots.cpp
  bool ShowRoots();
  void AddPlace(const std::string& path, NodeImage image, const char* caption);
  void AddDrive(std::size_t row, const Drive& drive);
  std::vector<std::string> RemoveDrivesNotIn(const std::vector<Drive>& wanted);
  std::vector<std::string> ApplyDrives(const DriveSurvey& survey);
  void RereadMountPoints(const std::vector<tarnel::Path>& before);

  // directory_tree_loading.cpp
  bool IsFolder(const std::string& path);
  std::vector<std::string> Subfolders(const std::string& path);
  DirectoryNodes::Difference List(DirectoryNode& node, Watching watching);
  void ListQuietly(DirectoryNode& node);
  void ListIfEmpty(DirectoryNode& node);
  void MarkFailed(DirectoryNode& node);
  bool Open(DirectoryNode& node);
  void LoadAhead(DirectoryNode& node);
  void WorkAhead();
  void ReadAhead(DirectoryNode& node);
  bool WaitsWhenRead(const DirectoryNode& node) const;
  void EnsureWatched(DirectoryNode& node);
  void Unwatch(DirectoryNode& node);
  void Leave(DirectoryNode& node, DirectoryNode& survivor);
  bool HasWork() const { return !m_changes.empty() || !m_reread.empty() || !m_ahead.empty(); }

  // directory_tree_changes.cpp
  std::vector<std::string> PathsOf(WatchId folder) const;
  void AddEverywhere(const std::string& path);
  void FolderCreated(const std::string& path);
  void FolderRemoved(const std::string& path);
  void FolderGone(WatchId folder);
  void EntryCreated(const FolderChange& change, const std::string& path);
  void EntryRemoved(const FolderChange& change, const std::string& path);
  void EntryRenamed(const FolderChange& change);
  void RereadAll();
  void Reread(const std::string& path);

  // directory_tree_menu.cpp
  bool Exists(const std::string& path);
  std::string FreeName(const std::string& folder);
  std::string MakeFolderIn(DirectoryNode& node);
  void MustHoldNoVolume(const std::string& path) const;
  bool DeleteFromDisk(const std::string& path);

  Files& m_files;
  Places& m_places;
  FolderWatch& m_watch;
  Dialogue& m_dialogue;
  TreeRows& m_rows;
  DirectoryTreeEvents& m_events;
  DirectoryNodes m_nodes;
  bool m_isInitialized = false;
  DirectoryNode* m_computer = nullptr;
  DirectoryNode* m_selected = nullptr;
  bool m_selectionMoved = false;
  std::string m_desktop;
  std::string m_documents;
  std::vector<Drive> m_drives;
  std::vector<tarnel::Path> m_mountPoints;
  std::vector<std::string> m_waitingRoots;  // sorted
  std::unordered_map<WatchId, std::vector<DirectoryNode*>> m_watched;
  std::vector<Ahead> m_ahead;
  std::deque<FolderChange> m_changes;
  std::deque<std::string> m_reread;  // paths of folders whose changes were lost
};

}  // namespace tarnel
