#include "hiding/held_carrier.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/attributes.h"
#include "base/copy_file.h"
#include "base/partial_file.h"
#include "base/permissions.h"
#include "base/printable.h"
#include "base/temp_names.h"
#include "carrier/companions.h"

namespace tarnel {

namespace {

constexpr Length kBlockSize = Length{256} * 1024;

Path FolderOf(const Path& path) {
  return path.has_parent_path() ? path.parent_path() : Path(".");
}

}  // namespace

HeldCarrier::HeldCarrier(const Path& path, Files& files)
    : m_files(files), m_path(path), m_backup(BackupPath(path)) {
  const std::optional<FileStat> found = files.Stat(path);
  if (found && found->kind == FileKind::Regular && !OwnerMayWrite(*found))
    OpenWriteProtected();
  else
    m_oldMode = Open().mode;
  m_mustRestoreMode = true;
  m_own = {StatQuietly(m_path), StatQuietly(m_backup), StatQuietly(TemporaryCarrierPath(m_path))};
  m_file->ExpectSync();
}

FileStat HeldCarrier::Open() {
  m_file = OpenLocked(m_path, m_files);
  const FileStat stat = m_file->Stat();
  m_oldLength = stat.size;
  return stat;
}

/// Only a file that may be written can be opened for that, and only such an open file can be locked
/// everywhere.
void HeldCarrier::OpenWriteProtected() {
  const std::unique_ptr<File> before = m_files.OpenToRead(m_path);
  const FileStat stat = before->Stat();
  m_oldMode = stat.mode;
  SettleMode(*before, m_oldMode | S_IWUSR);
  try {
    if (!Open().IsSameFile(stat))
      throw Error(ErrorNumber::PathFileAccess,
                  "cannot change " + Printable(m_path.native()) + ": another file has taken its place",
                  m_path);
  } catch (const Error&) {
    RestoreModeQuietly(*before);
    throw;
  }
}

HeldCarrier::~HeldCarrier() {
  Release();
}

void HeldCarrier::Release() {
  if (!m_file) return;
  if (m_mustRestoreMode) RestoreModeQuietly(*m_file);
  m_mustRestoreMode = false;
  m_file = nullptr;
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

void HeldCarrier::MakeBackup(const std::function<void(Length)>& hook) {
  const bool isTaken = m_files.Stat(m_backup, Files::Links::DontFollow).has_value();
  const Path copy = isTaken ? FolderOf(m_backup) / RandomName(".") : m_backup;
  CopyFile(m_files, *m_file, m_path, copy, m_oldMode, Durability::WrittenThrough, hook);
  PartialFile partial(m_files, copy);
  if (m_file->Size() != m_oldLength)
    throw Error(ErrorNumber::DeviceIo,
                "cannot copy " + Printable(m_path.native()) + ": another program has changed its length",
                m_path);
  if (isTaken) m_files.Rename(copy, m_backup);
  partial.Keep();
  m_backupWasMade = true;
  m_files.SyncFolder(FolderOf(m_backup));
  m_backupStands = true;
}

void HeldCarrier::DropBackup() {
  if (m_backupWasMade) m_files.Remove(m_backup);
  m_backupWasMade = m_backupStands = false;
  m_files.SyncFolder(FolderOf(m_backup));
}

void HeldCarrier::CutBack() {
  if (m_mustCutAgain) m_file->ForgetFailedSync();
  if (m_mustCutAgain || m_file->Size() != m_oldLength) m_file->Truncate(m_oldLength);
  m_mustCutAgain = true;
  m_file->Sync();
  m_mustCutAgain = false;
}

void HeldCarrier::SyncEntries(Length length) {
  if (m_mustWriteAgain) WriteAgain(length);
  m_mustWriteAgain = true;
  m_file->Sync();
  m_mustWriteAgain = false;
}

void HeldCarrier::WriteAgain(Length length) {
  m_file->ForgetFailedSync();
  m_wasWrittenAgain = true;
  std::vector<std::uint8_t> block(kBlockSize);
  for (Length done = m_oldLength; done < length;) {
    const auto wanted = static_cast<std::size_t>(std::min(kBlockSize, length - done));
    const std::size_t got = m_file->ReadAt(Position{} + done, MutableBytes(block).first(wanted));
    if (got < wanted)
      throw Error(ErrorNumber::DeviceIo,
                  "cannot read " + Printable(m_path.native()) + ": the file ends early", m_path);
    m_file->WriteAt(Position{} + done, Bytes(block).first(got));
    done += static_cast<Length>(got);
  }
}

void HeldCarrier::RestoreMode() {
  SettleMode(*m_file, m_oldMode);
  m_mustRestoreMode = false;
}

/// The failure that brought us here is the one to report.
void HeldCarrier::RestoreModeQuietly(File& file) const {
  try {
    SettleMode(file, m_oldMode);
  } catch (const Error&) {
  }
}

/// Protection that the platform refuses is none, so this is not SettleMode.
void HeldCarrier::Protect() {
  const mode_t mode = ApplyReadOnly(m_oldMode, attribute::kReadOnly);
  if (m_file->Stat().mode != mode) m_file->SetMode(mode);
  m_mustRestoreMode = false;
}

}  // namespace tarnel
