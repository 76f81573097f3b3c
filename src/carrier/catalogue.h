#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"
#include "base/secret.h"
#include "crypto/algorithm.h"

namespace tarnel {

/// The longest type text, in bytes.
inline constexpr std::size_t kTypeTextLimit = 80;

/// What all nodes and rows of one open hideout share.
struct HideoutKey {
  Path carrier;             ///< full path; a carrier has one open hideout at most
  std::string carrierName;  ///< file name, stored text
  Secret password;
  Algorithm algorithm = Algorithm::Rijndael256;
  std::string algorithmName;  ///< as the tag has it: a new hideout may read "TripleDES"
  WipedText title;            ///< stored text
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

  bool IsRoot() const { return parent == nullptr; }
  /// The folder inside the hideout: the texts from below the root down, joined by "\"; empty at a root.
  WipedText FolderPath() const;
};

/// A row of FileListMirror: one hidden file of an open hideout.
struct MirrorRow {
  std::shared_ptr<const HideoutKey> hideout;
  WipedText record;  ///< plain record
  Position start;
  Length size = 0;   ///< of the payload
  std::string tail;  ///< encrypted record and trailer as stored, so R + 80 bytes
  int icon = 2;
  std::string typeText;

  std::string_view Field(std::string_view key) const;  ///< GetTag on the record
  std::string_view Name() const;                       ///< "?Fnm=<"
  std::string_view Folder() const;                     ///< "?Fldnm=<"
  Position End() const;                                ///< first byte behind the entry
  /// What a list shows: 1 size in KB, 2 type, 3 date, 4 attributes, 5 folder, 6 "Yes" or "No" for compressed.
  WipedText SubItem(int index) const;
};

/// The image list of the tree and the lists. Keys are extensions in the platform's bytes with ASCII letters
/// in lower case, or "setup" for the names setup.exe and install.exe.
class FileTypes {
 public:
  /// `typeTextOf` names the type of a file name in the platform's bytes, such as "PNG image"; it touches no
  /// file. What is longer than kTypeTextLimit is cut.
  explicit FileTypes(std::function<std::string(const std::string& name)> typeTextOf);

  struct Type {
    int icon;
    std::string text;
  };
  /// Image 2 is the stand-by, for names without extension and where there is no type text; a key not seen
  /// before gets the next index, in the order of their coming.
  Type Of(std::string_view storedName);
  /// Keys in the order of their index, from 4 on (1 to 3 are carrier, folder or stand-by, open folder).
  const std::vector<std::string>& Keys() const { return m_keys; }

 private:
  std::function<std::string(const std::string&)> m_typeTextOf;
  std::vector<std::string> m_keys;
  std::map<std::string, Type, std::less<>> m_types;
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
  /// other, but not at the end.
  TreeNode& EnsureFolderNode(TreeNode& root, std::string_view folder);

  void RemoveRoot(const Path& carrier);
  void RemoveRows(const Path& carrier);
  /// All nodes of the carrier but its root.
  void RemoveFolderNodes(const Path& carrier);
  /// Root, folder nodes and rows.
  void RemoveCarrier(const Path& carrier);

 private:
  using FolderText = std::shared_ptr<const WipedText>;
  static TreeNode& EnsureChild(TreeNode& parent, std::string_view text, const FolderText& folder);

  std::vector<std::unique_ptr<TreeNode>> m_roots;
  std::vector<MirrorRow> m_rows;
};

}  // namespace tarnel
