#include "hiding/run_hide.h"

#include <array>
#include <atomic>
#include <charconv>
#include <cstdint>
#include <ctime>
#include <functional>
#include <optional>
#include <utility>

#include "base/attempt.h"
#include "base/attributes.h"
#include "base/formats.h"
#include "base/pace.h"
#include "base/printable.h"
#include "carrier/load_hideout.h"
#include "carrier/payload.h"
#include "carrier/record.h"
#include "carrier/stored_text.h"
#include "crypto/cipher.h"
#include "crypto/compression.h"
#include "crypto/keys.h"
#include "hiding/entry_writer.h"
#include "hiding/held_carrier.h"
#include "hiding/originals.h"
#include "hiding/questions.h"
#include "hiding/read_back.h"
#include "hiding/source_file.h"

namespace tarnel {

// A hide goes through these steps:
//
// 1. The carrier is locked, made writable for its owner, and opened for writing. What can't work is refused
//    here, before anything else changes.
// 2. The carrier is copied to its ".bak", which is on the medium before the first byte is appended.
// 3. Each row is one restartable statement: cut the carrier back to its last whole entry, then write
//    payload, record and trailer. A row that fails and is ignored leaves nothing behind.
// 4. The carrier is synced; only then the backup goes, and the old mode comes back. From here on the carrier
//    is complete: an error has no way back to the old one any more.
// 5. Originals go after all new entries have been read back and compared with them.
// 6. The carrier is unlocked, and the hideout loaded anew.
//
// Entries are only ever appended, so a cancel restores the carrier by cutting it back to its old length.

namespace {

std::string OctalDigits(mode_t mode) {
  std::array<char, 16> text;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), mode, 8).ptr};
}

/// The person in front of a backup that a helper thread makes.
class BackupTalk : public Dialogue {
 public:
  BackupTalk(HideScreen& screen, Length size) : m_screen(screen), m_size(size) {}

  Answer Ask(const Question& question) override { return m_screen.Ask(question); }
  bool CancelRequested() const override { return m_screen.CancelRequested(); }
  void Yield() override {
    m_screen.ShowBackup(m_copied, m_size);
    m_screen.Yield();
    m_isCancelled = m_screen.CancelRequested();
  }

  /// By the helper, after each block.
  void Copied(Length copied) {
    m_copied = copied;
    if (m_isCancelled) throw Stop{StopReason::Cancelled};
  }

 private:
  HideScreen& m_screen;
  const Length m_size;
  std::atomic<Length> m_copied = 0;
  std::atomic<bool> m_isCancelled = false;
};

class HideRun {
 public:
  HideRun(const HideRequest& request, Reading& reading, HideScreen& screen);
  HideResult Run();

 private:
  bool IsWayBack() const;
  void RefuseWhatCannotBeHidden();
  void PrepareTheKey();
  void HideAll();
  bool MakeBackup();
  void TakeRow(std::size_t row);
  void AppendEntry(std::size_t row);
  bool WroteEntry(std::size_t row, SourceFile& source);
  void WriteEntry(std::size_t row, SourceFile& source);
  void EncryptPayload(SourceFile& source, ByteSink& payload);
  RecordFields FieldsOf(const HideRow& row, const FileStat& source, const PayloadSink& payload) const;
  void CompleteCarrier();
  void SyncEntries();
  std::vector<std::size_t> HiddenRows() const;
  void RemoveBackup();
  void ProtectOrRestoreMode();
  void RemoveOriginals();

  void ShowRow(std::size_t row);
  void ShowEntryStages();
  void RefuseBeyondLimit(const SourceFile& source) const;
  void CheckSpace(Length required);
  void WaitForSpace(Length required);
  Length CompressedPayload(SourceFile& source);
  Path Drive();

  HideEnding EndEarly(StopReason reason);
  void RestoreCarrier();
  void EndWithoutSpace();
  void EndAborted();
  void Reload();

  void ShowStage(HideStage stage);
  Outcome Try(const std::function<void()>& statement) { return Attempt(m_screen, m_handler, statement); }
  bool Compresses() const { return m_request.compress && m_request.compressionLevel != 0; }

  const HideRequest& m_request;
  Reading& m_reading;
  Files& m_files;
  HideScreen& m_screen;
  const CurrentHideout m_hideout;  ///< as it was at the start, whatever events do to the session
  const ErrorHandler m_handler{HideErrorQuestion};
  HideProgress m_progress;
  HeldCarrier m_carrier;
  EntryWriter m_writer;
  OriginalsRemoval m_removal;
  bool m_isDurable = false;  ///< all entries are on the medium
  std::vector<NewEntry> m_entries;
  HideResult m_result;
};

HideRun::HideRun(const HideRequest& request, Reading& reading, HideScreen& screen)
    : m_request(request),
      m_reading(reading),
      m_files(reading.files),
      m_screen(screen),
      m_hideout(reading.current),
      m_progress{.value = 0, .maximum = request.totalBytes},
      m_carrier(m_hideout.CurrentCarrierPath, m_files),
      m_writer(m_carrier.Opened(), m_hideout.CurrentCarrierPath, m_carrier.OldLength(), screen, m_progress),
      m_removal(request, m_hideout.CurrentCarrierPath, m_files, screen, m_handler) {}

HideResult HideRun::Run() {
  RefuseWhatCannotBeHidden();
  m_hideout.CurrentPassword.Start();
  try {
    HideAll();
  } catch (const Stop& stop) {
    m_result.ending = EndEarly(stop.reason);
  }
  m_result.hidden = m_entries.size();
  m_result.originalsLeft = m_removal.Left();
  m_result.isComplete = m_isDurable;
  if (m_carrier.BackupWasMade())
    (IsWayBack() ? m_result.backup : m_result.needlessBackup) = m_carrier.Backup();
  m_carrier.Release();
  Reload();
  return m_result;
}

/// Whether the backup holds anything that the carrier doesn't.
bool HideRun::IsWayBack() const {
  const bool isRestored = m_result.ending == HideEnding::Cancelled || m_result.ending == HideEnding::TooLarge;
  return m_writer.HasBegun() && !m_isDurable && !isRestored;
}

void HideRun::RefuseWhatCannotBeHidden() {
  Pace pace(m_screen);
  for (const HideRow& row : m_request.rows) {
    if (m_carrier.IsOwn(row.source))
      throw Error(ErrorNumber::PathFileAccess,
                  "cannot hide " + Printable(row.source.native()) + ": it is the carrier or belongs to it",
                  row.source);
    pace.Step();
  }
  if (!HasCipher(m_hideout.CurrentAlgorithmId))
    throw Error(ErrorNumber::InvalidPropertyValue, "cannot hide: the hideout's algorithm has no cipher");
}

/// Nothing has changed yet, so nothing stays if there is no key.
void HideRun::PrepareTheKey() {
  try {
    m_hideout.CurrentPassword.Prepare([this] { m_screen.Yield(); });
  } catch (...) {
    Try([this] { m_carrier.DropBackup(); });
    throw;
  }
}

void HideRun::HideAll() {
  if (MakeBackup()) {
    PrepareTheKey();
    for (std::size_t row = 0; row < m_request.rows.size(); ++row)
      TakeRow(row);
    CompleteCarrier();
  }
  if (m_request.originals != Originals::Keep) m_removal.Expect(HiddenRows());
  RemoveBackup();
  ProtectOrRestoreMode();
  RemoveOriginals();
  m_progress.value = m_progress.maximum;
  m_screen.ShowProgress(m_progress.value, m_progress.maximum);
}

/// False if the person ignored that there is none: then no row is hidden, for at no moment may a carrier that
/// is being changed be the only copy.
bool HideRun::MakeBackup() {
  ShowStage(HideStage::CreateBackup);
  BackupTalk talk(m_screen, m_carrier.OldLength());
  const auto make = [&] { m_carrier.MakeBackup([&talk](Length copied) { talk.Copied(copied); }); };
  Try([&] { RunYielding(talk, make); });
  if (m_carrier.BackupStands()) return true;
  for (const HideRow& row : m_request.rows)
    m_result.leftOut.push_back(row.source);
  return false;
}

void HideRun::TakeRow(std::size_t row) {
  if (m_screen.CancelRequested()) throw Stop{StopReason::Cancelled};
  const Outcome outcome = Try([&] { AppendEntry(row); });
  if (outcome == Outcome::Done)
    m_screen.FileDone(row + 1);
  else
    m_result.leftOut.push_back(m_request.rows[row].source);
  m_screen.Yield();
}

void HideRun::AppendEntry(std::size_t row) {
  for (bool isWritten = false; !isWritten;) {
    m_writer.Rewind();
    ShowRow(row);
    SourceFile source(m_files, m_request.rows[row].source, m_screen);
    RefuseBeyondLimit(source);
    isWritten = WroteEntry(row, source);
  }
}

/// Before the file is opened, so that an error names the row that it stands for.
void HideRun::ShowRow(std::size_t row) {
  const Path& source = m_request.rows[row].source;
  Length size = 0;
  try {
    size = m_files.Stat(source).value_or(FileStat{}).size;
  } catch (const Error&) {  // opening it will say so
  }
  m_screen.ShowFile(row + 1, m_request.rows.size(), source, size);
}

/// False if the disk was full and the person has made room.
bool HideRun::WroteEntry(std::size_t row, SourceFile& source) {
  try {
    WriteEntry(row, source);
    return true;
  } catch (const Error& error) {
    if (error.Number() != ErrorNumber::DiskFull) throw;
  }
  m_writer.Rewind();
  WaitForSpace(Compresses() ? CompressedPayload(source) : source.Size() + kFileCipherOverhead);
  return false;
}

void HideRun::WriteEntry(std::size_t row, SourceFile& source) {
  ShowEntryStages();
  if (!Compresses()) CheckSpace(source.Size() + kFileCipherOverhead);
  PayloadSink sealed(m_writer);
  EncryptPayload(source, sealed);
  const FileStat stat = source.StatAfterReading();
  const Length payload = m_writer.FinishPayload();

  const WipedText record = BuildRecord(FieldsOf(m_request.rows[row], stat, sealed), RecordWriter::Hide);
  const NewEntry entry{.row = row, .start = Position{} + m_writer.End(), .payload = payload};
  std::string secondKey;
  m_writer.FinishEntry(SealEntry({record.data(), record.size()}, payload, m_hideout.CurrentAlgorithmId,
                                 m_hideout.CurrentPassword, secondKey));
  m_progress.maximum += payload - stat.size;
  m_entries.push_back(entry);
}

void HideRun::ShowEntryStages() {
  if (Compresses()) ShowStage(HideStage::Compressing);
  ShowStage(HideStage::Encrypting);
  ShowStage(HideStage::Hiding);
}

void HideRun::EncryptPayload(SourceFile& source, ByteSink& payload) {
  std::string secondKey;
  const auto encrypt = [&](ByteSource& plain) {
    CipherEncryptFile(m_hideout.CurrentAlgorithmId, plain, payload, m_hideout.CurrentPassword, secondKey);
  };
  if (!Compresses()) return encrypt(source);
  CompressingSource compressed(source, source.Size(), m_request.compressionLevel, &m_screen);
  encrypt(compressed);
}

RecordFields HideRun::FieldsOf(const HideRow& row, const FileStat& source, const PayloadSink& payload) const {
  RecordFields fields;
  fields.name.assign(ToStored(row.name, TextKind::PathComponent));
  fields.plainSize = std::to_string(source.size);
  fields.storedSize = std::to_string(payload.Written());
  fields.attributes = std::to_string(AttributesOf(source, row.name));
  fields.date = ToStored(DateAndTime(std::time(nullptr)), TextKind::Plain);
  fields.compressed = Compresses() ? std::to_string(m_request.compressionLevel) : "0";
  if (m_request.saveFolders) fields.folder.assign(row.folder);
  fields.title = m_hideout.CurrentHideoutTitle;
  if (const std::optional<mode_t> mode = ModeBeyond(source.mode)) fields.mode = OctalDigits(*mode);
  fields.seal = payload.SealText();
  if (m_request.keepTimes) fields.mtime = std::to_string(source.modified);
  return fields;
}

/// Rows that can't fit are seen before a byte of them is written; of compressed rows that only shows on the
/// way.
void HideRun::RefuseBeyondLimit(const SourceFile& source) const {
  const Length room = kCarrierLimit - m_writer.End() - kFileCipherOverhead - Length{kTrailerSize};
  const bool fits = Compresses() ? source.Size() <= kCarrierLimit : source.Size() <= room;
  if (!fits) throw Stop{StopReason::TooLarge};
}

void HideRun::CheckSpace(Length required) {
  if (m_files.FreeSpace(m_hideout.CurrentCarrierPath) < required) WaitForSpace(required);
}

/// Asks at least once, and again for as long as the space is short.
void HideRun::WaitForSpace(Length required) {
  do {
    if (m_screen.Ask(NoSpaceQuestion(Drive(), required)) != Answer::Retry) throw Stop{StopReason::NoSpace};
  } while (m_files.FreeSpace(m_hideout.CurrentCarrierPath) < required);
}

Length HideRun::CompressedPayload(SourceFile& source) {
  source.Rewind();
  CompressingSource compressed(source, source.Size(), m_request.compressionLevel, &m_screen);
  std::array<std::uint8_t, kCopyBlock> block;
  Length size = kFileCipherOverhead;
  while (const std::size_t got = compressed.Read(block))
    size += static_cast<Length>(got);
  return size;
}

/// The topmost folder of the carrier's file system.
Path HideRun::Drive() {
  Path drive = m_hideout.CurrentCarrierPath.parent_path();
  const std::optional<FileStat> own = m_files.Stat(drive);
  for (;;) {
    const Path above = drive.parent_path();
    const std::optional<FileStat> stat = m_files.Stat(above);
    if (above == drive || !own || !stat || stat->device != own->device) return drive;
    drive = above;
  }
}

/// The moment when the carrier is complete. A cut that was ignored would leave half an entry at its end,
/// which hides all others; bytes that may not be on the medium keep backup and originals.
void HideRun::CompleteCarrier() {
  if (Try([this] { m_writer.Rewind(); }) == Outcome::Ignored) throw Stop{StopReason::Aborted};
  m_isDurable = Try([this] { SyncEntries(); }) == Outcome::Done;
}

void HideRun::SyncEntries() {
  RunYielding(m_screen, [this] { m_carrier.SyncEntries(m_writer.End()); });
  if (!m_carrier.WasWrittenAgain()) return;
  if (AllReadBack(m_entries, m_request.rows, m_hideout, m_carrier.Opened(), m_screen)) return;
  throw Error(ErrorNumber::DeviceIo,
              "cannot write " + Printable(m_hideout.CurrentCarrierPath.native()) +
                  ": the new entries don't read back as they were written",
              m_hideout.CurrentCarrierPath);
}

std::vector<std::size_t> HideRun::HiddenRows() const {
  std::vector<std::size_t> rows;
  for (const NewEntry& entry : m_entries)
    rows.push_back(entry.row);
  return rows;
}

void HideRun::RemoveBackup() {
  const bool isWayBack = m_carrier.BackupStands() && !m_isDurable;
  if (isWayBack || !m_carrier.BackupWasMade()) return;
  ShowStage(HideStage::DeleteBackup);
  Try([this] { m_carrier.DropBackup(); });
}

void HideRun::ProtectOrRestoreMode() {
  Try([this] { m_request.writeProtect ? m_carrier.Protect() : m_carrier.RestoreMode(); });
}

void HideRun::RemoveOriginals() {
  if (m_request.originals == Originals::Keep) return;
  ShowStage(HideStage::Deleting);
  if (!m_isDurable) return;
  m_removal.Run(
      RowsThatReadBack(m_entries, m_request.rows, m_hideout, m_carrier.Opened(), m_files, m_screen));
}

/// What the run has come to. An Abort on the way out of another ending makes it Aborted.
HideEnding HideRun::EndEarly(StopReason reason) {
  try {
    switch (reason) {
      case StopReason::Cancelled:
        RestoreCarrier();
        return HideEnding::Cancelled;
      case StopReason::TooLarge:
        RestoreCarrier();
        m_screen.Ask(TooLargeQuestion(m_hideout.CurrentCarrierPath));
        return HideEnding::TooLarge;
      case StopReason::NoSpace:
        EndWithoutSpace();
        return HideEnding::NoSpace;
      case StopReason::Aborted:
        break;
    }
  } catch (const Stop&) {
  }
  EndAborted();
  return HideEnding::Aborted;
}

void HideRun::RestoreCarrier() {
  ShowStage(HideStage::RestoreCarrier);
  const bool mustCut = m_writer.HasBegun();
  const auto cut = [this] { RunYielding(m_screen, [this] { m_carrier.CutBack(); }); };
  if (mustCut && Try(cut) == Outcome::Ignored) throw Stop{StopReason::Aborted};
  m_entries.clear();
  m_result.leftOut.clear();
  Try([this] { m_carrier.RestoreMode(); });
  Try([this] { m_carrier.DropBackup(); });
}

/// Entries finished before stay. Write protection masks the old attributes to their read-only bit here, where
/// a full run adds that bit: so the mode is the old one either way.
void HideRun::EndWithoutSpace() {
  CompleteCarrier();
  Try([this] { m_carrier.RestoreMode(); });
  ShowStage(HideStage::Loading);
  if (m_isDurable) Try([this] { m_carrier.DropBackup(); });
}

/// Nothing is restored or cleaned, unless nothing had been appended.
void HideRun::EndAborted() {
  m_progress.value = m_progress.maximum;
  m_screen.ShowProgress(m_progress.value, m_progress.maximum);
  if (m_writer.HasBegun()) return m_carrier.LeaveWritable();
  try {
    m_carrier.DropBackup();
  } catch (const Error&) {  // an unneeded backup is named in the result
  }
}

void HideRun::Reload() {
  ShowStage(HideStage::Loading);
  const bool isAborted = m_result.ending == HideEnding::Aborted;
  const LoadRequest request{.carrier = m_hideout.CurrentCarrierPath,
                            .password = m_hideout.CurrentPassword,
                            .algorithm = m_hideout.CurrentAlgorithmId,
                            .reload = LoadRequest::Reload::Forced,
                            .fit = isAborted ? LoadRequest::Fit::NewestEntry : LoadRequest::Fit::AnyEntry};
  if (LoadHideout(request, m_reading, m_screen) != LoadResult::NotFound || !isAborted) return;
  m_reading.catalogue.RemoveCarrier(m_hideout.CurrentCarrierPath);
  m_screen.HideoutGone();
}

void HideRun::ShowStage(HideStage stage) {
  m_screen.ShowStage(stage);
  m_screen.Yield();
}

}  // namespace

const char* StageText(HideStage stage) {
  switch (stage) {
    case HideStage::CreateBackup:
      return "Create backup file";
    case HideStage::Compressing:
      return "Compressing";
    case HideStage::Encrypting:
      return "Encrypting";
    case HideStage::Hiding:
      return "Hiding";
    case HideStage::RestoreCarrier:
      return "Restore carrier file";
    case HideStage::DeleteBackup:
      return "Delete backup file";
    case HideStage::Deleting:
      return "Deleting";
    case HideStage::Loading:
      break;
  }
  return "Loading";
}

HideResult RunHide(const HideRequest& request, Reading& reading, HideScreen& screen) {
  return HideRun(request, reading, screen).Run();
}

}  // namespace tarnel
