#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/files.h"

namespace tarnel {

/// The carrier of a hide, locked and writable for its owner until Release; and the ".bak" beside it. It is
/// locked, read and written through one open file: see File::Lock. Every call that can throw an Error can be
/// made again after one.
class HeldCarrier {
 public:
  /// Throws Error and has changed nothing then: FileNotFound, PathFileAccess for what is no regular file,
  /// PermissionDenied for a carrier that this user may not write or that another process has locked.
  HeldCarrier(const Path& path, Files& files);

  /// Releases.
  ~HeldCarrier();
  HeldCarrier(const HeldCarrier&) = delete;
  HeldCarrier& operator=(const HeldCarrier&) = delete;

  const Path& Backup() const { return m_backup; }
  Length OldLength() const { return m_oldLength; }

  /// Not after Release.
  File& Opened() { return *m_file; }

  /// True for the carrier, its ".bak" and its ".tmp", under whatever path. What can't be looked at is
  /// foreign.
  bool IsOwn(const Path& path);

  /// Copies the carrier, with its old mode, to the ".bak"; an older file of that name goes without a
  /// question, but not before the new copy is whole. It is on the medium afterwards. A carrier that is no
  /// longer OldLength bytes long is an Error DeviceIo. What `hook` throws ends the copy, and no part of it
  /// stays.
  void MakeBackup(const std::function<void(Length copied)>& hook);

  /// Removes the ".bak", if it was made.
  void DropBackup();

  /// MakeBackup has made a file, whether that is on the medium or not.
  bool BackupWasMade() const { return m_backupWasMade; }
  /// A complete copy of the old carrier lies beside it, and is on the medium.
  bool BackupStands() const { return m_backupStands; }

  /// Cuts the carrier back to its old length and syncs it.
  void CutBack();

  /// Syncs the carrier, which must be `length` bytes long. After an error the next call writes all new bytes
  /// again before it syncs: a system may take pages for written that it failed to write. It may also have
  /// dropped them, so WasWrittenAgain says that the entries have to be read before they count.
  void SyncEntries(Length length);
  bool WasWrittenAgain() const { return m_wasWrittenAgain; }

  void RestoreMode();
  /// The old mode without all write permissions.
  void Protect();
  /// The carrier stays as it is now.
  void LeaveWritable() { m_mustRestoreMode = false; }

  /// Gives the carrier its old mode back, in silence, unless RestoreMode, Protect or LeaveWritable has
  /// settled that, and then the lock. To be called before anybody else reads the carrier.
  void Release();

 private:
  struct SeenFile {
    Path path;  ///< in normal form
    std::optional<FileStat> stat;
  };

  FileStat Open();
  void OpenWriteProtected();
  SeenFile StatQuietly(const Path& path);
  void WriteAgain(Length length);
  void RestoreModeQuietly(File& file) const;

  Files& m_files;
  Path m_path;
  Path m_backup;
  std::unique_ptr<File> m_file;
  mode_t m_oldMode = 0;
  bool m_mustRestoreMode = false;
  Length m_oldLength = 0;
  bool m_backupWasMade = false;
  bool m_backupStands = false;
  bool m_mustWriteAgain = false;
  bool m_wasWrittenAgain = false;
  bool m_mustCutAgain = false;
  std::vector<SeenFile> m_own;  ///< the carrier, its ".bak" and its ".tmp"
};

}  // namespace tarnel
