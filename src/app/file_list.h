#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/file_types.h"
#include "app/settings.h"
#include "carrier/catalogue.h"

namespace tarnel {

/// The columns, "File" first.
enum class Column { File = 0, Size, Type, Date, Attribute, Subfolder, Compressed };
inline constexpr std::size_t kColumnCount = 7;

/// Key and caption of a column.
std::string_view ColumnKey(Column column);

/// A row of the visible list. It keeps copies of what it shows, so that it can be painted while the
/// catalogue is being read anew.
struct FileListRow {
  enum class Kind { File, Folder } kind = Kind::File;
  std::array<std::string, kColumnCount> texts = {};  ///< by Column, stored text; a folder has its name only
  int icon = 2;
  std::size_t relativeIndex = 0;  ///< of a file: its row in the catalogue
  double size = 0;                ///< of a file: its plain size in bytes
  Path carrier = {};
  std::string itemFolder = {};  ///< of a folder: its path inside the hideout

  bool operator==(const FileListRow&) const = default;
};

/// The contents of one folder, as FileList shows them. Rows are valid until rows leave the catalogue; whoever
/// removes some calls Show again before the next use.
class FileList {
 public:
  /// `types` must outlive the list.
  explicit FileList(FileTypes& types) : m_types(types) {}

  const std::vector<Column>& Columns() const { return m_columns; }
  const std::vector<FileListRow>& Rows() const { return m_rows; }

  /// Adds and removes columns so that those of the settings stand; a new one comes last. "File" always
  /// stands. Rows get the texts of new columns at the next Show.
  void ApplyColumns(const Settings& settings);

  void Clear();

  /// Folders in tree order, then files in the order of reading.
  void Show(const TreeNode& node, const Catalogue& catalogue);

  /// The rows are those that Show would make, in any order.
  bool Shows(const TreeNode& node, const Catalogue& catalogue) const;

  /// What a click on a column's header does: turns the direction, which all columns share, and sorts. The
  /// first click of all sorts texts downwards and sizes upwards. Texts are compared without regard to case;
  /// sizes as OrderBySize says, folders behind all files. Nothing on an empty list.
  void ColumnClick(Column column, const TreeNode* node, const Catalogue& catalogue);

  /// The column of the last click and the direction that its sign should show; nothing in reading order.
  struct SortState {
    Column column;
    bool isDescending;
  };
  std::optional<SortState> Sorting() const { return m_sorting; }

 private:
  std::vector<FileListRow> AllRows(const TreeNode& node, const Catalogue& catalogue) const;
  std::vector<FileListRow> FolderRows(const TreeNode& node) const;
  std::vector<FileListRow> FileRows(const TreeNode& node, const Catalogue& catalogue) const;
  FileListRow FileRow(const MirrorRow& mirror, std::size_t index) const;
  void SortByText(Column column);
  void SortBySize(const TreeNode& node, const Catalogue& catalogue);

  FileTypes& m_types;
  std::vector<Column> m_columns = {Column::File};
  std::vector<FileListRow> m_rows;
  int m_sortOrder = 0;
  std::optional<SortState> m_sorting;
};

}  // namespace tarnel
