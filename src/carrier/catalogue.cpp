#include "carrier/catalogue.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "base/formats.h"
#include "base/utf8.h"
#include "carrier/format.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"

namespace tarnel {

namespace {

bool IsOf(const std::shared_ptr<const HideoutKey>& hideout, const Path& carrier) {
  return hideout->carrier.native() == carrier.native();
}

/// Wiped where it is short, too.
std::shared_ptr<const WipedText> Shared(std::string_view text) {
  return std::allocate_shared<WipedText>(WipingAllocator<WipedText>(), text);
}

}  // namespace

TreeNode::~TreeNode() {
  Wipe(text.data(), text.size());
  std::vector<std::unique_ptr<TreeNode>> doomed = std::move(children);
  while (!doomed.empty()) {
    const std::unique_ptr<TreeNode> node = std::move(doomed.back());
    doomed.pop_back();
    std::move(node->children.begin(), node->children.end(), std::back_inserter(doomed));
    node->children.clear();
  }
}

WipedText TreeNode::FolderPath() const {
  std::vector<const TreeNode*> way;
  for (const TreeNode* node = this; !node->IsRoot(); node = node->parent)
    way.push_back(node);
  WipedText path;
  for (auto node = way.rbegin(); node != way.rend(); ++node) {
    if (node != way.rbegin()) path += '\\';
    path += (*node)->text;
  }
  return path;
}

std::string_view MirrorRow::Field(std::string_view key) const {
  return GetTag(record, key);
}

std::string_view MirrorRow::Name() const {
  return Field(tag::kName);
}

std::string_view MirrorRow::Folder() const {
  return Field(tag::kFolder);
}

std::string_view MirrorRow::ShownFolder() const {
  return Folder().substr(0, shownBelow);
}

Position MirrorRow::End() const {
  return start + size + tail.length;
}

TreeNode* Catalogue::FindRoot(const Path& carrier) const {
  const auto found = std::find_if(m_roots.begin(), m_roots.end(),
                                  [&](const auto& root) { return IsOf(root->hideout, carrier); });
  return found == m_roots.end() ? nullptr : found->get();
}

std::vector<const MirrorRow*> Catalogue::RowsOf(const Path& carrier) const {
  std::vector<const MirrorRow*> rows;
  for (const MirrorRow& row : m_rows) {
    if (IsOf(row.hideout, carrier)) rows.push_back(&row);
  }
  return rows;
}

TreeNode& Catalogue::AddRoot(std::shared_ptr<const HideoutKey> hideout, std::string_view itemFolder) {
  assert(FindRoot(hideout->carrier) == nullptr);
  auto root = std::make_unique<TreeNode>();
  root->text = hideout->title;
  root->itemFolder = Shared(itemFolder);
  root->hideout = std::move(hideout);
  return *m_roots.emplace_back(std::move(root));
}

void Catalogue::AddRow(MirrorRow row) {
  m_rows.push_back(std::move(row));
}

TreeNode& Catalogue::EnsureFolderNode(TreeNode& root, std::string_view folder) {
  const FolderText text = Shared(folder);
  TreeNode* node = &root;
  for (std::string_view rest = folder; !rest.empty();) {
    const std::size_t end = rest.find('\\');
    TreeNode* const child = EnsureChild(root, *node, rest.substr(0, end), text);
    if (child == nullptr) break;
    node = child;
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return *node;
}

/// Null where there is no such child and no room for one. The text of the whole folder counts with its first
/// new node.
TreeNode* Catalogue::EnsureChild(TreeNode& root, TreeNode& parent, std::string_view text,
                                 const FolderText& folder) {
  if (const auto known = parent.childByText.find(text); known != parent.childByText.end()) {
    return known->second;
  }
  const std::size_t more = text.size() + (parent.itemFolder == folder ? 0 : folder->size());
  if (root.nodesBelow == kMostFolderNodes || more > kMostFolderText - root.textBelow) return nullptr;
  ++root.nodesBelow;
  root.textBelow += more;
  auto child = std::make_unique<TreeNode>();
  child->hideout = parent.hideout;
  child->parent = &parent;
  child->text = text;
  child->itemFolder = folder;
  child->image = 2;
  child->selectedImage = 3;
  parent.childByText.emplace(child->text, child.get());
  return parent.children.emplace_back(std::move(child)).get();
}

std::optional<FileStat> Catalogue::ReadAs(const Path& carrier) const {
  const auto found = m_read.find(carrier);
  if (found == m_read.end()) return std::nullopt;
  return found->second;
}

void Catalogue::RemoveRoot(const Path& carrier) {
  m_read.erase(carrier);
  std::erase_if(m_roots, [&](const auto& root) { return IsOf(root->hideout, carrier); });
}

void Catalogue::RemoveRows(const Path& carrier) {
  std::erase_if(m_rows, [&](const MirrorRow& row) { return IsOf(row.hideout, carrier); });
}

void Catalogue::RemoveFolderNodes(const Path& carrier) {
  TreeNode* const root = FindRoot(carrier);
  if (root == nullptr) return;
  root->childByText.clear();
  root->children.clear();
  root->nodesBelow = root->textBelow = 0;
}

void Catalogue::RemoveCarrier(const Path& carrier) {
  RemoveRoot(carrier);
  RemoveRows(carrier);
}

}  // namespace tarnel
