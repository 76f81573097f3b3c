#include "shellint/directory_nodes.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarnel {

namespace {

constexpr std::size_t kMostSingleChanges = 500;  // beyond it the children are replaced as a whole

std::unique_ptr<DirectoryNode> MakeNode(DirectoryNode& parent, std::string name) {
  auto node = std::make_unique<DirectoryNode>();
  node->name = std::move(name);
  node->parent = &parent;
  return node;
}

/// Ends nodes one after the other; their own destructors would go as deep as the tree.
void End(std::vector<std::unique_ptr<DirectoryNode>> nodes) {
  while (!nodes.empty()) {
    const std::unique_ptr<DirectoryNode> node = std::move(nodes.back());
    nodes.pop_back();
    std::move(node->children.begin(), node->children.end(), std::back_inserter(nodes));
    node->children.clear();
  }
}

/// Whether `path` is the folder `root`, which ends in "/", or lies below it.
bool LeadsTo(const DirectoryNode& root, std::string_view path) {
  return root.kind != NodeKind::Virtual && path.starts_with(root.name);
}

}  // namespace

DirectoryNodes::DirectoryNodes(TreeRows& rows, Leaving leaving)
    : m_rows(rows), m_leaving(std::move(leaving)) {
  m_top.kind = NodeKind::Virtual;
  m_top.isRoot = true;
}

DirectoryNodes::~DirectoryNodes() {
  End(std::move(m_top.children));
}

std::size_t DirectoryNodes::PlaceFor(const DirectoryNode& parent, std::string_view name) {
  const auto place = std::lower_bound(
      parent.children.begin(), parent.children.end(), name,
      [](const auto& child, std::string_view wanted) { return IsNameBefore(child->name, wanted); });
  return static_cast<std::size_t>(place - parent.children.begin());
}

void DirectoryNodes::Insert(DirectoryNode& parent, std::size_t row, Children nodes) {
  if (nodes.empty()) return;
  m_rows.RowsComing(parent, row, nodes.size());
  parent.children.insert(parent.children.begin() + static_cast<std::ptrdiff_t>(row),
                         std::move_iterator(nodes.begin()), std::move_iterator(nodes.end()));
  m_rows.RowsCame();
}

DirectoryNode& DirectoryNodes::AddRoot(DirectoryNode& parent, std::size_t row, DirectoryNode root) {
  Children nodes;
  nodes.push_back(std::make_unique<DirectoryNode>(std::move(root)));
  DirectoryNode& node = *nodes.front();
  node.isRoot = true;
  node.parent = &parent;
  Insert(parent, std::min(row, parent.children.size()), std::move(nodes));
  return node;
}

DirectoryNode& DirectoryNodes::Add(DirectoryNode& parent, const std::string& name) {
  if (DirectoryNode* const there = Child(parent, name)) return *there;
  const std::size_t row = PlaceFor(parent, name);
  Children nodes;
  nodes.push_back(MakeNode(parent, name));
  Insert(parent, row, std::move(nodes));
  return *parent.children[row];
}

DirectoryNodes::Difference DirectoryNodes::SetChildren(DirectoryNode& parent,
                                                       std::vector<std::string> names) {
  std::sort(names.begin(), names.end(), IsNameBefore);
  std::vector<std::string> old;
  for (const auto& child : parent.children)
    old.push_back(child->name);
  Difference difference;
  std::set_difference(old.begin(), old.end(), names.begin(), names.end(), std::back_inserter(difference.gone),
                      IsNameBefore);
  std::set_difference(names.begin(), names.end(), old.begin(), old.end(), std::back_inserter(difference.come),
                      IsNameBefore);
  if (old.empty() || difference.gone.size() + difference.come.size() > kMostSingleChanges) {
    ReplaceChildren(parent, names);
    return difference;
  }
  for (const std::string& name : difference.gone)
    Remove(*Child(parent, name));
  for (const std::string& name : difference.come)
    Add(parent, name);
  return difference;
}

void DirectoryNodes::ReplaceChildren(DirectoryNode& parent, const std::vector<std::string>& names) {
  RemoveChildren(parent);
  Children nodes;
  nodes.reserve(names.size());
  for (const std::string& name : names)
    nodes.push_back(MakeNode(parent, name));
  Insert(parent, 0, std::move(nodes));
}

void DirectoryNodes::Rename(DirectoryNode& node, const std::string& name) {
  DirectoryNode& parent = *node.parent;
  DirectoryNode* const taken = Child(parent, name);
  if (taken == &node) return;
  if (taken != nullptr) Remove(*taken);
  const std::size_t from = RowOf(node);
  const std::size_t to = PlaceFor(parent, name);
  const bool moves = to != from && to != from + 1;
  if (moves) m_rows.RowMoving(parent, from, to);
  node.name = name;
  const auto begin = parent.children.begin();
  const auto at = [begin](std::size_t row) { return begin + static_cast<std::ptrdiff_t>(row); };
  if (from < to)
    std::rotate(at(from), at(from + 1), at(to));
  else
    std::rotate(at(to), at(from), at(from + 1));
  if (moves) m_rows.RowMoved();
  m_rows.RowChanged(node);
}

void DirectoryNodes::Remove(DirectoryNode& node) {
  RemoveRows(*node.parent, RowOf(node), 1);
}

void DirectoryNodes::RemoveChildren(DirectoryNode& parent) {
  RemoveRows(parent, 0, parent.children.size());
}

void DirectoryNodes::RemoveRows(DirectoryNode& parent, std::size_t first, std::size_t count) {
  if (count == 0) return;
  const auto begin = parent.children.begin() + static_cast<std::ptrdiff_t>(first);
  const auto end = begin + static_cast<std::ptrdiff_t>(count);
  for (auto child = begin; child != end; ++child) {
    ForEach(**child, [&](DirectoryNode& node) {
      m_leaving(node, parent);
      return true;
    });
  }
  m_rows.RowsGoing(parent, first, count);
  Children leaving(std::make_move_iterator(begin), std::make_move_iterator(end));
  parent.children.erase(begin, end);
  m_rows.RowsGone();
  End(std::move(leaving));
}

DirectoryNode* DirectoryNodes::Child(const DirectoryNode& parent, std::string_view name) const {
  const std::size_t row = PlaceFor(parent, name);
  if (row == parent.children.size() || parent.children[row]->name != name) return nullptr;
  return parent.children[row].get();
}

std::size_t DirectoryNodes::RowOf(const DirectoryNode& node) {
  if (!node.isRoot) return PlaceFor(*node.parent, node.name);
  const Children& roots = node.parent->children;
  const auto place =
      std::find_if(roots.begin(), roots.end(), [&](const auto& root) { return root.get() == &node; });
  return static_cast<std::size_t>(place - roots.begin());
}

std::vector<DirectoryNode*> DirectoryNodes::RootsAbove(std::string_view path) const {
  std::vector<DirectoryNode*> roots;
  for (const auto& root : m_top.children) {
    if (LeadsTo(*root, path)) roots.push_back(root.get());
    if (root->kind != NodeKind::Virtual) continue;
    for (const auto& drive : root->children)
      if (LeadsTo(*drive, path)) roots.push_back(drive.get());
  }
  std::stable_sort(roots.begin(), roots.end(), [](const DirectoryNode* a, const DirectoryNode* b) {
    return a->name.size() > b->name.size();
  });
  return roots;
}

std::vector<DirectoryNode*> DirectoryNodes::At(std::string_view path) const {
  const std::string whole = WithSeparator(std::string(path));
  std::vector<DirectoryNode*> nodes;
  for (DirectoryNode* node : RootsAbove(whole)) {
    std::size_t from = node->name.size();
    while (node != nullptr && from < whole.size()) {
      const std::size_t end = whole.find('/', from);
      node = Child(*node, std::string_view(whole).substr(from, end - from));
      from = end + 1;
    }
    if (node != nullptr) nodes.push_back(node);
  }
  return nodes;
}

void DirectoryNodes::ForEach(DirectoryNode& from, const std::function<bool(DirectoryNode&)>& visit) {
  std::vector<DirectoryNode*> waiting{&from};
  while (!waiting.empty()) {
    DirectoryNode* const node = waiting.back();
    waiting.pop_back();
    if (!visit(*node)) return;
    for (auto child = node->children.rbegin(); child != node->children.rend(); ++child)
      waiting.push_back(child->get());
  }
}

}  // namespace tarnel
