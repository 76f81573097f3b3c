#pragma once

#include <cstddef>
#include <string>
#include <unordered_set>
#include <vector>

#include "base/dialogue.h"
#include "hiding/run_hide.h"

namespace tarnel {

/// Something met while collecting that can't be hidden: a link to a folder, a pipe, a socket, a device, an
/// unreadable folder.
struct PassedOver {
  Path path;
  std::string reason;  ///< "is a socket", "cannot be read: permission denied"
};

/// What collecting shows.
class SelectionScreen : public virtual Dialogue {
 public:
  /// A file was added; `found` rows stand now.
  virtual void ShowAdded(const Path& file, std::size_t found) = 0;
  /// A folder with `entries` entries that are no folders is gone through; EntryPassed follows for each.
  virtual void ShowFolder(const Path&, std::size_t /*entries*/) {}
  virtual void EntryPassed() {}
};

/// Collects the rows of a hide. A path appears once; its first row keeps place and folder text.
/// New rows come first, so that the order of entries is the reverse of the order of collecting.
/// CancelRequested stops the collecting at the next entry; what was collected stays.
class Selection {
 public:
  Selection(Files& files, SelectionScreen& screen);

  /// The carrier, its ".bak" and its ".tmp" are passed over from here on, under whatever path.
  void KeepOut(const Path& carrier);

  enum class Before { Kept, Dropped };
  /// A new collecting begins: folders are counted from 0, and nothing has been passed over. The rows of
  /// former ones are dropped or kept.
  void Begin(Before before);

  /// Adds one file with the folder text that `base` gives it (see FolderText). A path where nothing or
  /// a folder stands is passed over in silence.
  void AddFile(const Path& file, std::string_view base);

  /// Adds all files below `folder`: first its own, then folder by folder. Symbolic links to files count as
  /// the file, links to folders are passed over.
  void WalkFolder(const Path& folder, std::string_view base);

  /// The folder whole, with its parent as base, so that its name is the first part of the folder texts.
  void AddWholeFolder(const Path& folder);

  /// Takes rows out, by their index in Rows(). The counter of folders becomes the number of times that a
  /// folder text differs from the last one before it: a different measure from the one that collecting keeps.
  void Remove(const std::vector<std::size_t>& rows);

  /// Rows in the order in which they become entries.
  std::vector<HideRow> Rows() const;
  Length TotalSelectedBytes() const { return m_totalBytes; }
  /// Every subfolder counts twice, the folder of a WalkFolder once.
  long FoldersCounted() const { return m_foldersCounted; }
  const std::vector<PassedOver>& Passed() const { return m_passed; }

 private:
  void AddIfRegular(const Path& file, const FileStat& stat, std::string_view base);
  void PassOverFolder(const Path& folder);
  bool IsKeptOut(const Path& file, const FileStat& stat) const;
  void AddFilesOf(const Path& folder, std::string_view base, std::vector<Path>& waiting);
  Length SizeIfThere(const Path& file);
  static long FoldersAmong(const std::vector<HideRow>& rows);

  Files& m_files;
  SelectionScreen& m_screen;
  std::vector<HideRow> m_collected;  ///< in the order of collecting
  std::unordered_set<std::string> m_paths;
  Length m_totalBytes = 0;
  long m_foldersCounted = 0;
  std::vector<PassedOver> m_passed;
  std::vector<Path> m_keptOut;
  std::vector<FileStat> m_keptOutStats;
};

/// The folder text of a file in folder `parent` under `base`: empty if they are the same (but for a separator
/// at base's end), else the right end of `parent` that is longer than `base`, as stored text with parts
/// joined by "\". A base with a separator at its end gives "docs\old", one without gives "\docs\old".
std::string FolderText(std::string_view parent, std::string_view base);

}  // namespace tarnel
