#include "hiding/held_carrier.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/attributes.h"
#include "base/copy_file.h"
#include "base/printable.h"
#include "carrier/companions.h"

namespace tarnel {

namespace {

constexpr Length bufferSize = Length{256} * 1024;

Path FolderOf(const Path& path) {
  return path.has_parent_path() ? path.parent_path() : Path(".");
}

}  // namespace

HeldCarrier::HeldCarrier(const Path& path, Files& files)
    : m_files(files),
      m_path(path),
      m_backup(BackupPath(path)),
      m_lock(OpenLocked(path, files, LockAccess::Read)) {
  const FileStat stat = m_lock->Stat();
  m_oldMode = stat.mode;
  m_oldLength = stat.size;
  m_own = {StatQuietly(m_path), StatQuietly(m_backup), StatQuietly(TemporaryCarrierPath(m_path))};
  if ((m_oldMode & S_IWUSR) == 0) m_lock->SetMode(m_oldMode | S_IWUSR);
  m_mustRestoreMode = true;
  try {
    OpenWriting();
  } catch (const Error&) {
    RestoreModeQuietly();
    throw;
  }
}

HeldCarrier::~HeldCarrier() {
  if (m_mustRestoreMode) RestoreModeQuietly();
}

/// A second handle, so that closing it doesn't give up the lock.
void HeldCarrier::OpenWriting() {
  m_writing = m_files.OpenToChange(m_path);
  m_writing->ExpectSync();
  if (m_writing->Stat().IsSameFile(m_lock->Stat())) return;
  throw Error(ErrorNumber::PathFileAccess,
              "cannot change " + Printable(m_path.native()) + ": another file has taken its place", m_path);
}

HeldCarrier::SeenFile HeldCarrier::StatQuietly(const Path& path) {
  try {
    return {path.lexically_normal(), m_files.Stat(path)};
  } catch (const Error&) {
    return {path.lexically_normal(), std::nullopt};
  }
}

bool HeldCarrier::IsOwn(const Path& path) {
  const SeenFile seen = StatQuietly(path);
  return std::any_of(m_own.begin(), m_own.end(), [&](const SeenFile& own) {
    return own.path == seen.path || (own.stat && seen.stat && own.stat->IsSameFile(*seen.stat));
  });
}

void HeldCarrier::MakeBackup(const std::function<void()>& yield) {
  if (m_files.Stat(m_backup, Files::Links::DontFollow)) m_files.Remove(m_backup);
  m_backupStands = false;
  CopyFile(m_files, m_path, m_backup, Durability::WrittenThrough, [&](Length) { yield(); });
  m_backupStands = true;
  m_files.SetMode(m_backup, m_oldMode);
  m_files.SyncFolder(FolderOf(m_backup));
}

void HeldCarrier::DropBackup() {
  if (m_backupStands) m_files.Remove(m_backup);
  m_backupStands = false;
  m_files.SyncFolder(FolderOf(m_backup));
}

void HeldCarrier::CutBack() {
  if (m_writing->Size() != m_oldLength) m_writing->Truncate(m_oldLength);
  m_writing->Sync();
}

void HeldCarrier::SyncAndClose(Length length) {
  if (!m_writing) OpenWriting();
  if (m_mustWriteAgain) WriteAgain(length);
  m_mustWriteAgain = true;
  m_writing->Sync();
  std::exchange(m_writing, nullptr)->Close();
  m_mustWriteAgain = false;
}

void HeldCarrier::WriteAgain(Length length) {
  std::vector<std::uint8_t> block(bufferSize);
  for (Length done = m_oldLength; done < length;) {
    const auto wanted = static_cast<std::size_t>(std::min(bufferSize, length - done));
    const std::size_t got = m_writing->ReadAt(Position{} + done, MutableBytes(block).first(wanted));
    if (got < wanted)
      throw Error(ErrorNumber::DeviceIo,
                  "cannot read " + Printable(m_path.native()) + ": the file ends early", m_path);
    m_writing->WriteAt(Position{} + done, Bytes(block).first(got));
    done += static_cast<Length>(got);
  }
}

void HeldCarrier::RestoreMode() {
  SetMode(m_oldMode);
}

/// The failure that brought us here is the one to report.
void HeldCarrier::RestoreModeQuietly() {
  try {
    RestoreMode();
  } catch (const Error&) {
    m_mustRestoreMode = false;
  }
}

void HeldCarrier::Protect() {
  SetMode(ApplyReadOnly(m_oldMode, attribute::ReadOnly));
}

void HeldCarrier::SetMode(mode_t mode) {
  if (m_lock->Stat().mode != mode) m_lock->SetMode(mode);
  m_mustRestoreMode = false;
}

}  // namespace tarnel
