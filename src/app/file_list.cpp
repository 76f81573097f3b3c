#include "app/file_list.h"

#include <algorithm>
#include <cwctype>
#include <numeric>
#include <tuple>
#include <utility>

#include "app/size_order.h"
#include "base/formats.h"
#include "base/utf8.h"
#include "carrier/format.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"

namespace tarnel {

namespace {

std::string Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

/// What two texts are compared by: their characters in lower case.
std::u32string SortKey(std::string_view stored) {
  const std::string text = ToDisplay(stored);
  std::u32string key;
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Character character = FirstUtf8Character(std::string_view(text).substr(at));
    key += static_cast<char32_t>(std::towlower(static_cast<wint_t>(character.code)));
    at += std::max<std::size_t>(character.length, 1);
  }
  return key;
}

std::vector<FileListRow> Reordered(std::vector<FileListRow> rows, const std::vector<std::size_t>& order) {
  std::vector<FileListRow> result;
  result.reserve(rows.size());
  for (const std::size_t index : order)
    result.push_back(std::move(rows[index]));
  return result;
}

/// What a column shows of a file, but for its type.
std::string TextOf(const MirrorRow& file, Column column) {
  switch (column) {
    case Column::Size:
      return GroupedKilobytes(ReadNumber(file.Field(tag::kPlainSize))) + " KB";
    case Column::Date:
      return std::string(file.Field(tag::kDate));
    case Column::Attribute:
      return std::string(file.Field(tag::kAttributes));
    case Column::Subfolder:
      return std::string(file.Folder());
    case Column::Compressed:
      return file.Field(tag::kCompressed) == "0" ? "No" : "Yes";
    case Column::File:
    case Column::Type:
      break;
  }
  return std::string(file.Name());
}

}  // namespace

std::string_view ColumnKey(Column column) {
  if (column == Column::File) return "File";
  return kColumnSettings[static_cast<std::size_t>(column) - 1].key;
}

void FileList::ApplyColumns(const Settings& settings) {
  for (std::size_t i = 0; i < settings.columns.size(); ++i) {
    const auto column = static_cast<Column>(i + 1);
    const auto place = std::find(m_columns.begin(), m_columns.end(), column);
    if (settings.columns[i] && place == m_columns.end()) m_columns.push_back(column);
    if (!settings.columns[i] && place != m_columns.end()) m_columns.erase(place);
  }
}

void FileList::Clear() {
  m_rows.clear();
  m_sorting.reset();
}

void FileList::Show(const TreeNode& node, const Catalogue& catalogue) {
  Clear();
  m_rows = AllRows(node, catalogue);
}

bool FileList::Shows(const TreeNode& node, const Catalogue& catalogue) const {
  const auto inReadingOrder = [](std::vector<FileListRow> rows) {
    std::sort(rows.begin(), rows.end(), [](const FileListRow& a, const FileListRow& b) {
      return std::tie(a.kind, a.relativeIndex, a.itemFolder) <
             std::tie(b.kind, b.relativeIndex, b.itemFolder);
    });
    return rows;
  };
  return inReadingOrder(m_rows) == inReadingOrder(AllRows(node, catalogue));
}

std::vector<FileListRow> FileList::AllRows(const TreeNode& node, const Catalogue& catalogue) const {
  std::vector<FileListRow> rows = FolderRows(node);
  auto files = FileRows(node, catalogue);
  std::move(files.begin(), files.end(), std::back_inserter(rows));
  return rows;
}

std::vector<FileListRow> FileList::FolderRows(const TreeNode& node) const {
  WipedText prefix = node.FolderPath();
  if (!prefix.empty() && prefix.back() != '\\') prefix += '\\';
  std::vector<FileListRow> rows;
  for (const auto& child : node.children) {
    FileListRow row{.kind = FileListRow::Kind::Folder};
    row.texts[0] = child->text;
    row.carrier = node.hideout->carrier;
    row.itemFolder.append(prefix).append(child->text);
    rows.push_back(std::move(row));
  }
  return rows;
}

std::vector<FileListRow> FileList::FileRows(const TreeNode& node, const Catalogue& catalogue) const {
  const WipedText folder = node.FolderPath();
  std::vector<FileListRow> rows;
  for (std::size_t i = 0; i < catalogue.Rows().size(); ++i) {
    const MirrorRow& mirror = catalogue.Rows()[i];
    const bool qualifies = mirror.hideout->carrier == node.hideout->carrier && mirror.ShownFolder() == folder;
    if (qualifies) rows.push_back(FileRow(mirror, i));
  }
  return rows;
}

FileListRow FileList::FileRow(const MirrorRow& mirror, std::size_t index) const {
  const FileTypes::Type type = m_types.Of(mirror.Name());
  FileListRow row{.icon = type.icon, .relativeIndex = index, .carrier = mirror.hideout->carrier};
  row.size = std::max(0.0, ReadNumber(mirror.Field(tag::kPlainSize)));
  for (const Column column : m_columns) {
    std::string& text = row.texts[static_cast<std::size_t>(column)];
    text = column == Column::Type ? Trimmed(type.text) : TextOf(mirror, column);
  }
  return row;
}

void FileList::ColumnClick(Column column, const TreeNode* node, const Catalogue& catalogue) {
  if (m_rows.empty() || (column == Column::Size && node == nullptr)) return;
  if (column == Column::Attribute) return;
  m_sortOrder = 1 - m_sortOrder;
  if (column == Column::Size) {
    SortBySize(*node, catalogue);
  } else {
    SortByText(column);
  }
  const bool isDescending = (column == Column::Size) == (m_sortOrder == 0);
  m_sorting = SortState{column, isDescending};
}

void FileList::SortByText(Column column) {
  std::vector<std::pair<std::u32string, std::size_t>> keys;
  for (std::size_t i = 0; i < m_rows.size(); ++i) {
    keys.emplace_back(SortKey(m_rows[i].texts[static_cast<std::size_t>(column)]), i);
  }
  const bool isDescending = m_sortOrder == 1;
  std::stable_sort(keys.begin(), keys.end(), [isDescending](const auto& a, const auto& b) {
    return isDescending ? b.first < a.first : a.first < b.first;
  });
  std::vector<std::size_t> order;
  order.reserve(keys.size());
  for (const auto& key : keys)
    order.push_back(key.second);
  m_rows = Reordered(std::move(m_rows), order);
}

void FileList::SortBySize(const TreeNode& node, const Catalogue& catalogue) {
  auto files = FileRows(node, catalogue);
  std::vector<double> sizes;
  sizes.reserve(files.size());
  for (const FileListRow& row : files)
    sizes.push_back(row.size);
  const auto order = OrderBySize(sizes, m_sortOrder == 1 ? SizeOrder::Ascending : SizeOrder::Descending);
  m_rows = Reordered(std::move(files), order);
  auto folders = FolderRows(node);
  std::move(folders.begin(), folders.end(), std::back_inserter(m_rows));
}

}  // namespace tarnel
