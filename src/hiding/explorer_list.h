#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"

namespace tarnel {

/// The path of the tree's node above all drives.
inline constexpr std::string_view kMyComputer = "MyComputer";

/// A row of `ExplorerFile`: a file, or a folder as long as its tag stands.
struct ExplorerRow {
  Path key;          ///< full path; of a folder as the tree gives it
  std::string text;  ///< name, bytes
  std::string tag;   ///< of a folder "*Folder*" and its path; empty otherwise
  int image = -1;    ///< of a folder that the tree lists; -1 for a file
  Length size = 0;
  std::time_t modified = 0;  ///< the time of creation, whatever the column is called

  bool IsFolder() const;
  /// The path behind "*Folder*"; empty without the tag.
  Path FolderPath() const;

  bool operator==(const ExplorerRow&) const = default;
};

/// Without unit, such as "1,024"; empty in a row that the tree has listed.
std::string ExplorerSize(const ExplorerRow& row);
/// "DD.MM.YYYY hh:nn:ss"; empty in a row that the tree has listed.
std::string ExplorerModified(const ExplorerRow& row);

enum class ExplorerColumn { File = 0, Size, Type, Modified };

/// What the explorer of the wizard lists: the subfolders and files of one folder. Files of the extension
/// "lnk" never appear.
class ExplorerList {
 public:
  using TypeText = std::function<std::string(const std::string& name)>;

  ExplorerList(Files& files, TypeText typeTextOf);

  const std::vector<ExplorerRow>& Rows() const { return m_rows; }
  const Path& CurrentFolder() const { return m_currentFolder; }
  bool ListFilling() const { return m_isFilling; }

  enum class Force { No, Yes };
  struct Fill {
    /// The folder rows, by the tree.
    std::function<std::vector<ExplorerRow>()> listChildren;
    /// The rows went, or the filling has begun or ended.
    std::function<void()> changed;
    Dialogue& dialogue;
  };

  /// Lists a folder: nothing for an empty path, or for the current folder unless forced. While another fill
  /// runs, that one begins again with this path. A folder that is gone is empty; any other error is asked
  /// about as "hide.error". Yields while it reads.
  void Show(const Path& folder, Force force, const Fill& fill);

  /// Stops a running fill; what comes next is nothing.
  void StopFilling();

  /// What others did in the current folder. False if that doesn't concern it.
  bool FileCreated(const Path& path);
  bool FileRemoved(const Path& path);
  bool FileRenamed(const Path& from, const Path& to);

  /// A click on a column's header: the same column again turns the direction. "File" and "Type" sort as text,
  /// without regard to case, "Size" as a number, "Modified" as a date. These two empty the tags, so that
  /// folder rows are none any more until the list is filled anew: kept as it was.
  void ColumnClick(ExplorerColumn column);
  struct Sorting {
    ExplorerColumn column;
    bool isDescending;
  };
  std::optional<Sorting> SortState() const { return m_sorting; }

  enum class Renamed { Nothing, BadName, Done };
  /// Gives a row's file or folder another name within `folder`; never replaces one. Throws Error, and then
  /// nothing has changed.
  Renamed Rename(std::size_t row, const std::string& name, const Path& folder);

 private:
  void FillOnce(const Fill& fill);
  bool AddFiles(const Fill& fill);
  std::optional<ExplorerRow> FileRow(const Path& path);
  bool IsOfCurrent(const Path& path) const;

  Files& m_files;
  TypeText m_typeTextOf;
  std::vector<ExplorerRow> m_rows;
  Path m_currentFolder;
  Path m_pendingFolder;
  bool m_isFilling = false;
  bool m_isPending = false;
  std::optional<Sorting> m_sorting;
};

}  // namespace tarnel
