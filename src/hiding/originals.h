#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

#include "base/attempt.h"
#include "base/files.h"
#include "hiding/run_hide.h"

namespace tarnel {

/// Removes the originals of a hide, after all of its entries have been read back.
///
/// Destroy overwrites and deletes the rows, and a row that could not be overwritten is deleted all the same.
/// Then each chosen folder that has no direct files goes with all its subfolders, whatever these still hold.
/// Trash moves the chosen files and folders and nothing else, also what of them was never hidden: it can be
/// brought back.
///
/// Neither touches what is kept: the carrier, and each row whose entry doesn't stand or didn't read back. A
/// chosen folder that holds one of them, however deep, stays whole.
class OriginalsRemoval {
 public:
  OriginalsRemoval(const HideRequest& request, const Path& carrier, Files& files, HideScreen& screen,
                   const ErrorHandler& handler);

  /// `hidden` are the rows whose entry stands, `readBack` those of them that came back identical; ascending.
  /// If that is none, nothing goes. Throws Stop(Aborted).
  void Run(const std::vector<std::size_t>& hidden, const std::vector<std::size_t>& readBack);

  /// What Run was meant to remove and is still there, each path once.
  std::vector<Path> Left();

 private:
  using FileIdentity = std::pair<std::uint64_t, std::uint64_t>;

  void NoteWhatShouldGo(const std::vector<std::size_t>& hidden, const std::vector<std::size_t>& readBack);
  void KeepTheRest(const std::vector<std::size_t>& readBack);
  void Keep(const Path& path);
  bool KeepOne(const Path& path, Files::Links links);
  void DestroyFile(const Path& path);
  void DestroyFolderWithoutFiles(const Path& path);
  bool HasDirectFiles(const Path& folder);
  void MoveChosenToTrash();
  bool HoldsKept(const Path& path);
  bool IsThere(const Path& path);

  const HideRequest& m_request;
  const Path& m_carrier;
  Files& m_files;
  HideScreen& m_screen;
  const ErrorHandler& m_handler;
  std::set<FileIdentity> m_kept;  ///< what is kept, and all folders above it
  std::vector<Path> m_shouldGo;
};

}  // namespace tarnel
