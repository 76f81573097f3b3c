#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/files.h"

namespace tarnel {

/// The carrier of a hide: locked for as long as this lives, writable for its owner, and open for writing
/// until it is complete; and the ".bak" beside it. Every call that can throw an Error can be made again after
/// one.
class HeldCarrier {
 public:
  /// Throws Error and has changed nothing then: FileNotFound, PathFileAccess for what is no regular file,
  /// PermissionDenied for a carrier that this user may not write or that another process has locked.
  HeldCarrier(const Path& path, Files& files);

  /// Gives the carrier its old mode back, in silence, unless RestoreMode, Protect or LeaveWritable has
  /// settled that.
  ~HeldCarrier();
  HeldCarrier(const HeldCarrier&) = delete;
  HeldCarrier& operator=(const HeldCarrier&) = delete;

  const Path& Backup() const { return m_backup; }
  Length OldLength() const { return m_oldLength; }

  /// What the entries are written through. Gone after SyncAndClose.
  File& Writing() { return *m_writing; }

  /// True for the carrier, its ".bak" and its ".tmp", under whatever path. What can't be looked at is
  /// foreign.
  bool IsOwn(const Path& path);

  /// Copies the carrier, with its old mode, to the ".bak"; an older file of that name goes without a
  /// question. It is on the medium afterwards.
  void MakeBackup(const std::function<void()>& yield);

  /// Removes the ".bak".
  void DropBackup();

  /// A complete copy of the old carrier lies beside it.
  bool BackupStands() const { return m_backupStands; }

  /// Cuts the carrier back to its old length and syncs it. To be called while Writing is open.
  void CutBack();

  /// Syncs the carrier, which must be `length` bytes long, and closes the handle for writing. After an error
  /// the next call writes all new bytes again before it syncs: a system may take pages for written that it
  /// failed to write.
  void SyncAndClose(Length length);

  void RestoreMode();
  /// The old mode without all write permissions.
  void Protect();
  /// The carrier stays as it is now.
  void LeaveWritable() { m_mustRestoreMode = false; }

 private:
  struct SeenFile {
    Path path;  ///< in normal form
    std::optional<FileStat> stat;
  };

  void OpenWriting();
  SeenFile StatQuietly(const Path& path);
  void WriteAgain(Length length);
  void RestoreModeQuietly();
  void SetMode(mode_t mode);

  Files& m_files;
  Path m_path;
  Path m_backup;
  std::unique_ptr<File> m_lock;
  mode_t m_oldMode = 0;
  bool m_mustRestoreMode = false;
  std::unique_ptr<File> m_writing;
  Length m_oldLength = 0;
  bool m_backupStands = false;
  bool m_mustWriteAgain = false;
  std::vector<SeenFile> m_own;  ///< the carrier, its ".bak" and its ".tmp"
};

}  // namespace tarnel
