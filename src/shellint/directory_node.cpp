#include "shellint/directory_node.h"

#include <algorithm>

namespace tarnel {

namespace {

char Folded(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string_view WithoutSeparator(std::string_view path) {
  while (path.size() > 1 && path.back() == '/')
    path.remove_suffix(1);
  return path;
}

}  // namespace

std::string DirectoryNode::FullPath() const {
  std::vector<const std::string*> parts;
  const DirectoryNode* node = this;
  for (; !node->isRoot; node = node->parent)
    parts.push_back(&node->name);
  std::string path = node->name;
  for (auto part = parts.rbegin(); part != parts.rend(); ++part)
    path.append(**part).push_back('/');
  return path;
}

bool DirectoryNode::IsReadOnlyWhenOpened() const {
  return image == NodeImage::Removable || image == NodeImage::CdRom || image == NodeImage::Remote;
}

bool DirectoryNode::MayHaveChildren() const {
  return !children.empty() || (listing == Listing::NotYet && IsReadOnlyWhenOpened());
}

bool IsNameBefore(std::string_view a, std::string_view b) {
  const std::size_t length = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < length; ++i) {
    const auto left = static_cast<unsigned char>(Folded(a[i]));
    const auto right = static_cast<unsigned char>(Folded(b[i]));
    if (left != right) return left < right;
  }
  return a.size() != b.size() ? a.size() < b.size() : a < b;
}

std::string WithSeparator(std::string path) {
  path.resize(WithoutSeparator(path).size());
  if (path != "/") path.push_back('/');
  return path;
}

std::string ParentOf(std::string_view path) {
  path = WithoutSeparator(path);
  return std::string(path.substr(0, path.rfind('/') + 1));
}

std::string LastComponent(std::string_view path) {
  path = WithoutSeparator(path);
  return std::string(path.substr(path.rfind('/') + 1));
}

}  // namespace tarnel
