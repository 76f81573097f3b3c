#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"
#include "base/secret.h"
#include "carrier/entry_tail.h"
#include "crypto/algorithm.h"
#include "crypto/keys.h"

namespace tarnel {

/// Most nodes below one root, and most bytes of text in them. Each record of a crafted carrier can name 2,048
/// folders that no other has, which would come to gigabytes; what people hide stays far below.
inline constexpr std::size_t kMostFolderNodes = 100'000;
inline constexpr std::size_t kMostFolderText = std::size_t{32} << 20;

/// What all nodes and rows of one open hideout share.
struct HideoutKey {
  Path carrier;             ///< full path; a carrier has one open hideout at most
  std::string carrierName;  ///< file name, stored text
  Key password;
  Algorithm algorithm = Algorithm::Rijndael256;
  WipedText title;  ///< stored text
};

/// A node of DirView: a root for each open hideout, below it a node for each hidden folder.
struct TreeNode {
  TreeNode() = default;
  TreeNode(const TreeNode&) = delete;
  TreeNode& operator=(const TreeNode&) = delete;
  /// Wipes the text. Takes the nodes below apart one by one: a hostile folder text can nest them deeper than
  /// a stack goes.
  ~TreeNode();

  std::shared_ptr<const HideoutKey> hideout;
  TreeNode* parent = nullptr;  ///< null at a root
  WipedText text;              ///< title at a root, else one folder name; stored text
  /// "*RootFolder*" at a root (empty at a new hideout's), else the folder of the file that made it. Never
  /// null; the nodes of one folder text share it.
  std::shared_ptr<const WipedText> itemFolder;
  int image = 1;
  int selectedImage = 1;
  std::vector<std::unique_ptr<TreeNode>> children;
  std::map<std::string_view, TreeNode*> childByText;  ///< the same children, kept by Catalogue
  std::size_t nodesBelow = 0;                         ///< of a root, as is the next
  std::size_t textBelow = 0;                          ///< bytes

  bool IsRoot() const { return parent == nullptr; }
  /// The folder inside the hideout: the texts from below the root down, joined by "\"; empty at a root.
  WipedText FolderPath() const;
};

/// A row of FileListMirror: one hidden file of an open hideout.
struct MirrorRow {
  std::shared_ptr<const HideoutKey> hideout;
  WipedText record;  ///< plain record
  Position start;
  Length size = 0;  ///< of the payload
  EntryTail tail;
  std::size_t shownBelow = std::string_view::npos;  ///< bytes of the folder that its node's path has

  std::string_view Field(std::string_view key) const;  ///< GetTag on the record
  std::string_view Name() const;                       ///< "?Fnm=<"
  std::string_view Folder() const;                     ///< "?Fldnm=<"
  /// The path of the node that lists the file: its folder, or the nearest one above that has a node.
  std::string_view ShownFolder() const;
  Position End() const;  ///< first byte behind the entry
};

/// The in-memory catalogue of all open hideouts: the tree DirView and the row table FileListMirror. Row
/// indices and node addresses stay valid until something is removed.
class Catalogue {
 public:
  const std::vector<std::unique_ptr<TreeNode>>& Roots() const { return m_roots; }
  const std::vector<MirrorRow>& Rows() const { return m_rows; }

  /// Null if this carrier has no open hideout.
  TreeNode* FindRoot(const Path& carrier) const;
  std::vector<const MirrorRow*> RowsOf(const Path& carrier) const;

  TreeNode& AddRoot(std::shared_ptr<const HideoutKey> hideout, std::string_view itemFolder);
  void AddRow(MirrorRow row);

  /// The deepest node of `folder` below `root`, found or made; `root` itself for an empty folder. New nodes
  /// all get `folder` as their itemFolder. Parts stand between "\\"; an empty part is a folder like any
  /// other, but not at the end. Where the root has as many nodes as it may have, the deepest that is there:
  /// no folder gets another's place or name.
  TreeNode& EnsureFolderNode(TreeNode& root, std::string_view folder);

  /// What the carrier's file was when its hideout was read in full the last time; nothing if it wasn't, or
  /// the hideout is a new one.
  void NoteRead(const Path& carrier, const FileStat& read) { m_read[carrier] = read; }
  std::optional<FileStat> ReadAs(const Path& carrier) const;

  void RemoveRoot(const Path& carrier);
  void RemoveRows(const Path& carrier);
  /// All nodes of the carrier but its root.
  void RemoveFolderNodes(const Path& carrier);
  /// Root, folder nodes and rows.
  void RemoveCarrier(const Path& carrier);

 private:
  using FolderText = std::shared_ptr<const WipedText>;
  static TreeNode* EnsureChild(TreeNode& root, TreeNode& parent, std::string_view text,
                               const FolderText& folder);

  std::vector<std::unique_ptr<TreeNode>> m_roots;
  std::vector<MirrorRow> m_rows;
  std::map<Path, FileStat> m_read;  ///< of those in m_roots
};

}  // namespace tarnel
