#pragma once

#include <functional>

#include "shellint/directory_node.h"

namespace tarnel {

/// Is told of every change of the tree just before and just after it, as a list model wants it. Rows count
/// from 0.
class TreeRows {
 public:
  virtual ~TreeRows() = default;

  virtual void RowsComing(const DirectoryNode& parent, std::size_t first, std::size_t count) = 0;
  virtual void RowsCame() = 0;
  virtual void RowsGoing(const DirectoryNode& parent, std::size_t first, std::size_t count) = 0;
  virtual void RowsGone() = 0;
  /// `to` is the row before which the one at `from` will stand, counted before the move.
  virtual void RowMoving(const DirectoryNode& parent, std::size_t from, std::size_t to) = 0;
  virtual void RowMoved() = 0;
  /// Its text, or whether it may have children.
  virtual void RowChanged(const DirectoryNode& node) = 0;
};

/// The nodes themselves. Nothing in here recurses, and what finds a node takes the logarithm of its siblings.
class DirectoryNodes {
 public:
  /// Called for each node just before it goes, parents before children, with the nearest one that stays.
  using Leaving = std::function<void(DirectoryNode& node, DirectoryNode& survivor)>;

  DirectoryNodes(TreeRows& rows, Leaving leaving);
  DirectoryNodes(const DirectoryNodes&) = delete;
  DirectoryNodes& operator=(const DirectoryNodes&) = delete;
  ~DirectoryNodes();

  /// What the nodes without a parent hang from; has no key.
  const DirectoryNode& Top() const { return m_top; }
  DirectoryNode& Top() { return m_top; }
  bool IsEmpty() const { return m_top.children.empty(); }

  /// Puts a root at `row`; beyond the last row: behind it.
  DirectoryNode& AddRoot(DirectoryNode& parent, std::size_t row, DirectoryNode root);

  /// The child of that name, which is made where it is missing.
  DirectoryNode& Add(DirectoryNode& parent, const std::string& name);

  /// The children become exactly `names`; those that stay keep what hangs from them.
  struct Difference {
    std::vector<std::string> gone, come;
  };
  Difference SetChildren(DirectoryNode& parent, std::vector<std::string> names);

  /// Gives a folder another name, in the place of a sibling that has it already.
  void Rename(DirectoryNode& node, const std::string& name);

  void Remove(DirectoryNode& node);
  void RemoveChildren(DirectoryNode& parent);

  DirectoryNode* Child(const DirectoryNode& parent, std::string_view name) const;
  static std::size_t RowOf(const DirectoryNode& node);

  /// All nodes of that path; a folder has one below each root that leads to it. The first one hangs from the
  /// root that is nearest.
  std::vector<DirectoryNode*> At(std::string_view path) const;

  /// The roots that lead to `path`, the nearest one first.
  std::vector<DirectoryNode*> RootsAbove(std::string_view path) const;

  /// Calls `visit` for `from` and all below, parents before children, siblings in their order, until it gives
  /// false.
  static void ForEach(DirectoryNode& from, const std::function<bool(DirectoryNode&)>& visit);

 private:
  using Children = std::vector<std::unique_ptr<DirectoryNode>>;

  static std::size_t PlaceFor(const DirectoryNode& parent, std::string_view name);
  void Insert(DirectoryNode& parent, std::size_t row, Children nodes);
  void RemoveRows(DirectoryNode& parent, std::size_t first, std::size_t count);
  void ReplaceChildren(DirectoryNode& parent, const std::vector<std::string>& names);

  TreeRows& m_rows;
  Leaving m_leaving;
  DirectoryNode m_top;
};

}  // namespace tarnel
