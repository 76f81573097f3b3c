#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

#include "base/attempt.h"
#include "base/destruction.h"
#include "base/files.h"
#include "hiding/read_back.h"
#include "hiding/run_hide.h"

namespace tarnel {

/// Removes the originals of a hide, after all of its entries have been read back.
///
/// Destroy overwrites and deletes the rows, and a row that could not be overwritten is deleted all the same.
/// Then each chosen folder that has no direct files goes with all its subfolders, whatever these still hold.
/// Trash moves the chosen files and folders and nothing else, also what of them was never hidden: it can be
/// brought back.
///
/// Neither takes an original that has changed since it was compared: that is looked at right before its first
/// byte is overwritten, or before it is moved. From then on it is kept like a row that didn't read back.
///
/// Neither touches what is kept: the carrier, and each row whose entry doesn't stand or didn't read back. A
/// chosen folder that holds one of them, however deep, stays whole.
class OriginalsRemoval {
 public:
  OriginalsRemoval(const HideRequest& request, const Path& carrier, Files& files, HideScreen& screen,
                   const ErrorHandler& handler);

  /// Notes that the originals of these rows are to go; `hidden` are the rows whose entry stands, ascending.
  void Expect(const std::vector<std::size_t>& hidden);

  /// `readBack` are those of the expected rows that came back identical, ascending. If that is none, nothing
  /// goes. Throws Stop(Aborted).
  void Run(const std::vector<RowReadBack>& readBack);

  /// What was to go and is still there, each path once: also the file that a destroyed symbolic link led to.
  std::vector<Path> Left();

 private:
  using FileIdentity = std::pair<std::uint64_t, std::uint64_t>;

  void ShowRemoving(const Path& path, std::size_t number);
  bool IsReadBack(std::size_t row) const;
  void NoteWhatShouldGo();
  void NoteFile(const Path& path);
  void KeepTheRest();
  void Keep(const Path& path);
  bool KeepOne(const Path& path, Files::Links links);
  void DestroyFile(const RowReadBack& row);
  bool IsTheOne(const Path& path, const FileStat& seen, Destroyed outcome);
  void LookAgain(FileStat destroyed);
  void DestroyFolderWithoutFiles(const Path& path);
  bool HasDirectFiles(const Path& folder);
  void MoveChosenToTrash();
  bool MayGoToTrash(const Path& path);
  bool HoldsKept(const Path& path);
  bool IsThere(const Path& path);

  const HideRequest& m_request;
  const Path& m_carrier;
  Files& m_files;
  HideScreen& m_screen;
  const ErrorHandler& m_handler;
  std::set<FileIdentity> m_kept;  ///< what is kept, and all folders above it
  std::vector<std::size_t> m_hidden;
  std::vector<RowReadBack> m_readBack;
  std::vector<Path> m_shouldGo;
};

}  // namespace tarnel
