#include "retrieval/carrier_rewrite.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <utility>

#include "base/attributes.h"
#include "base/copy_file.h"
#include "base/pace.h"
#include "base/permissions.h"
#include "base/printable.h"
#include "carrier/companions.h"
#include "carrier/format.h"

namespace tarnel {
namespace {

Path WhereItLies(const Path& carrier, Files& files) {
  const std::optional<FileStat> found = files.Stat(carrier, Files::Links::DontFollow);
  return found && found->kind == FileKind::SymbolicLink ? files.Canonical(carrier) : carrier;
}

/// A carrier that may not be written can still be replaced.
std::unique_ptr<File> LockCarrier(const Path& carrier, Files& files) {
  const std::optional<FileStat> found = files.Stat(carrier);
  const bool isReadOnly = found && !OwnerMayWrite(*found);
  return OpenLocked(carrier, files, isReadOnly ? LockAccess::Read : LockAccess::Change);
}

std::size_t HashOf(Bytes bytes) {
  return std::hash<std::string_view>()({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

/// A source that owns the one it takes its bytes from.
class OwnedStretch : public ByteSource {
 public:
  OwnedStretch(const FileSource& stretch, BlockCount count)
      : m_stretch(stretch), m_blocks(m_stretch, std::move(count)) {}

  std::size_t Read(MutableBytes into) override { return m_blocks.Read(into); }

 private:
  FileSource m_stretch;
  BlockSource m_blocks;
};

}  // namespace

class CarrierRewrite::TemporarySink : public ByteSink {
 public:
  TemporarySink(File& file, Length written, const Path& path)
      : m_sink(file, Position{written + 1}), m_room(kCarrierLimit - written), m_path(path) {}

  void Write(Bytes bytes) override {
    MustFit(static_cast<Length>(bytes.size()));
    m_pending.append(AsText(bytes));
    if (m_pending.size() >= kCopyBlock) WritePending();
  }
  void CopyFrom(File& carrier, const Path& path, Position from, Length length) {
    MustFit(length);
    WritePending();
    m_sink.CopyFrom(carrier, path, from, length);
  }
  /// To be called behind the last of them.
  void WritePending() {
    if (m_pending.empty()) return;
    m_sink.Write(AsBytes(m_pending));
    m_blocks.push_back({m_pending.size(), HashOf(AsBytes(m_pending))});
    m_pending.clear();
  }
  Length Written() const { return m_sink.Written() + static_cast<Length>(m_pending.size()); }
  std::vector<MadeBlock> TakeBlocks() { return std::move(m_blocks); }

 private:
  void MustFit(Length length) const {
    if (length <= m_room - Written()) return;
    throw Error(ErrorNumber::DiskFull,
                "cannot write " + Printable(m_path.native()) + ": a carrier has to stay below 2 GiB", m_path);
  }

  FileSink m_sink;
  std::string m_pending;  ///< the parts of a small entry go to the disk in one piece
  std::vector<MadeBlock> m_blocks;
  Length m_room;
  const Path& m_path;
};

CarrierRewrite::CarrierRewrite(const Path& carrier, const std::vector<KnownEntry>& treated,
                               RewriteManner manner, Leftover leftover, Files& files, RewriteScreen& screen)
    : m_files(files),
      m_screen(screen),
      m_manner(std::move(manner)),
      m_carrierPath(WhereItLies(carrier, files)),
      m_temporaryPath(TemporaryCarrierPath(m_carrierPath)),
      m_carrier(LockCarrier(m_carrierPath, files)) {
  const FileStat stat = m_carrier->Stat();
  m_carrierSize = m_maximum = stat.size;
  for (const KnownEntry& entry : treated)
    MustHold(entry);
  RefuseOrRemoveLeftover(leftover);
  m_temporary = files.CreateNew(m_temporaryPath, 0600);
  m_temporary->ExpectSync();
  m_partial.emplace(files, m_temporaryPath);
  if (m_manner.savedAttributes == RewriteManner::SavedAttributes::ReadLast) return;
  m_savedMode = stat.mode;
  SetCarrierMode(ApplyReadOnly(stat.mode, attribute::kArchive));
}

void CarrierRewrite::MustHold(const KnownEntry& entry) {
  const bool isInside = entry.start.value >= 1 && entry.size >= 0 && entry.size <= m_carrierSize &&
                        entry.start.value - 1 <= m_carrierSize - entry.size;
  if (isInside &&
      EntryTail(ReadFileSlice(*m_carrier, entry.start + entry.size, entry.tail.length)) == entry.tail)
    return;
  throw Error(ErrorNumber::BadRecordNumber,
              "cannot rewrite " + Printable(m_carrierPath.native()) +
                  ": it has changed since its hideout was opened; open it again",
              m_carrierPath);
}

void CarrierRewrite::RefuseOrRemoveLeftover(Leftover leftover) {
  if (!m_files.Stat(m_temporaryPath, Files::Links::DontFollow)) return;
  if (leftover == Leftover::Refuse)
    throw Error(ErrorNumber::FileExists,
                "cannot rewrite " + Printable(m_carrierPath.native()) + ": " +
                    Printable(m_temporaryPath.native()) +
                    " exists, from an interrupted run or as a file of your own; recover the carrier or move "
                    "that file away first",
                m_temporaryPath);
  m_files.Remove(m_temporaryPath);
}

void CarrierRewrite::KeepUntil(Position end) {
  if (end <= m_keep) return;
  const auto copy = [&](TemporarySink& sink) { CopyStretch(m_keep, end - m_keep, sink); };
  if (TryWrite(copy) == Outcome::Ignored) throw Stop{StopReason::Aborted};
  m_pieces.back().from = m_keep;
  m_keep = end;
}

void CarrierRewrite::CopyStretch(Position from, Length length, TemporarySink& sink) {
  BlockCount count = CountBlocks(length);
  for (Length done = 0; done < length;) {
    const Length piece = std::min(kCopyPiece, length - done);
    count.PassAll(static_cast<std::size_t>(piece));
    sink.CopyFrom(*m_carrier, m_carrierPath, from + done, piece);
    done += piece;
  }
}

Outcome CarrierRewrite::TryAppend(const Part& part) {
  return TryWrite(part);
}

Outcome CarrierRewrite::TryWrite(const std::function<void(TemporarySink&)>& part) {
  const Length progress = m_progress;
  try {
    const Outcome outcome = Attempt(m_screen, m_manner.handler, [&] {
      m_progress = progress;
      if (m_hasRest) m_temporary->Truncate(m_written);
      m_hasRest = true;
      TemporarySink sink(*m_temporary, m_written, m_temporaryPath);
      part(sink);
      sink.WritePending();
      m_hasRest = false;
      m_pieces.push_back({.at = m_written, .length = sink.Written(), .made = sink.TakeBlocks()});
      m_written += sink.Written();
    });
    if (outcome == Outcome::Ignored) m_progress = progress;
    return outcome;
  } catch (const Stop& stop) {
    if (stop.reason == StopReason::Cancelled) GiveAttributesBack();
    throw;
  }
}

void CarrierRewrite::Append(const Part& part) {
  if (TryAppend(part) == Outcome::Ignored) throw Stop{StopReason::Aborted};
}

std::unique_ptr<ByteSource> CarrierRewrite::Stretch(Position from, Length length) {
  return std::make_unique<OwnedStretch>(FileSource(*m_carrier, m_carrierPath, from, length),
                                        CountBlocks(length));
}

std::unique_ptr<ByteSource> CarrierRewrite::InBlocks(ByteSource& source, Length length) {
  return std::make_unique<BlockSource>(source, CountBlocks(length));
}

BlockCount CarrierRewrite::CountBlocks(Length length) {
  return {length, CancelLook::BeforeFullBlock, m_screen,
          [this](Length n) { SetProgress(m_progress + n, m_maximum); }};
}

void CarrierRewrite::SetProgress(Length value, Length maximum) {
  m_progress = value;
  m_maximum = maximum;
  m_screen.ShowProgress(value, maximum);
}

void CarrierRewrite::SetCarrierMode(mode_t mode) {
  SettleMode(*m_carrier, mode);
}

void CarrierRewrite::GiveAttributesBack() {
  Attempt(m_screen, m_manner.handler, [&] {
    constexpr int nothingSaved = 0;
    SetCarrierMode(m_savedMode ? *m_savedMode : ApplyReadOnly(m_carrier->Stat().mode, nothingSaved));
  });
}

bool CarrierRewrite::Replace() {
  Must([&] { RunYielding(m_screen, [this] { SyncTemporary(); }); });
  if (m_screen.CancelRequested()) {
    if (m_savedMode) GiveAttributesBack();
    throw Stop{StopReason::Cancelled};
  }
  Must([&] {
    if (const std::unique_ptr<File> closing = std::move(m_temporary)) closing->Close();
  });
  Must([&] { LockTemporary(); });
  if (!RenameOver()) return false;
  m_screen.CarrierReplaced();
  try {
    const auto sync = [this] { m_files.SyncFolder(m_carrierPath.parent_path()); };
    Attempt(m_screen, m_manner.handler, [&] { RunYielding(m_screen, sync); });
  } catch (const Stop&) {  // nothing can be taken back any more
  }
  RunYielding(m_screen, [old = std::move(m_carrier)]() mutable { old = nullptr; });
  m_temporary = nullptr;  // unlocked, for whoever reads the new carrier now
  return true;
}

void CarrierRewrite::SyncTemporary() {
  if (m_mustWriteAgain) WriteAgain();
  m_mustWriteAgain = true;
  m_temporary->Sync();
  m_mustWriteAgain = false;
}

void CarrierRewrite::WriteAgain() {
  m_temporary->ForgetFailedSync();
  for (const Piece& piece : m_pieces) {
    if (piece.from)
      FileSink(*m_temporary, Position{} + piece.at)
          .CopyFrom(*m_carrier, m_carrierPath, *piece.from, piece.length);
    else
      WriteAgain(piece);
  }
}

void CarrierRewrite::WriteAgain(const Piece& piece) {
  std::vector<std::uint8_t> bytes;
  Position place = Position{} + piece.at;
  for (const MadeBlock& block : piece.made) {
    bytes.resize(block.size);
    if (m_temporary->ReadAt(place, bytes) != block.size || HashOf(bytes) != block.hash)
      throw Error(ErrorNumber::DeviceIo,
                  "cannot write " + Printable(m_temporaryPath.native()) +
                      ": what was written does not read back the same",
                  m_temporaryPath);
    m_temporary->WriteAt(place, bytes);
    place = place + static_cast<Length>(block.size);
  }
}

void CarrierRewrite::LockTemporary() {
  if (!m_savedMode) m_savedMode = m_carrier->Stat().mode;
  if (!m_temporary) m_temporary = OpenLocked(m_temporaryPath, m_files);
  TakeAccessOf(*m_carrier, *m_temporary, *m_savedMode);
}

bool CarrierRewrite::RenameOver() {
  m_partial->Keep();
  try {
    m_files.Rename(m_temporaryPath, m_carrierPath);
    return true;
  } catch (const Error& error) {
    m_screen.Ask(m_manner.notReplaced(m_temporaryPath, error));
  }
  try {
    GiveAttributesBack();
  } catch (const Stop&) {  // the new carrier lies there all the same, and has to be named
  }
  return false;
}

void CarrierRewrite::Must(const std::function<void()>& statement) {
  if (Attempt(m_screen, m_manner.handler, statement) == Outcome::Ignored) throw Stop{StopReason::Aborted};
}

RewriteEnding EndingOf(const Stop& stop) {
  return stop.reason == StopReason::Cancelled ? RewriteEnding::Cancelled : RewriteEnding::Aborted;
}

LoadResult Reload(const Key& password, Reading& reading, RewriteScreen& screen) {
  return LoadHideout({.carrier = reading.current.CurrentCarrierPath,
                      .password = password,
                      .algorithm = reading.current.CurrentAlgorithmId,
                      .reload = LoadRequest::Reload::Forced,
                      .fit = LoadRequest::Fit::AnyEntry},
                     reading, screen);
}

}  // namespace tarnel
