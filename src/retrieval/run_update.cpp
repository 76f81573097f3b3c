#include "retrieval/run_update.h"

#include <algorithm>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "base/file_streams.h"
#include "base/formats.h"
#include "base/printable.h"
#include "carrier/payload.h"
#include "carrier/record.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "crypto/cipher.h"
#include "crypto/compression.h"
#include "crypto/keys.h"
#include "retrieval/questions.h"

namespace tarnel {
namespace {

RewriteManner Manner() {
  return {.savedAttributes = RewriteManner::SavedAttributes::ReadFirst,
          .handler = {questions::UpdateError},
          .notReplaced = questions::UpdateNotReplaced};
}

KnownEntry EntryOf(const PreviewParcel& parcel) {
  return {.start = parcel.ViewStart, .size = parcel.ViewSize, .tail = parcel.ViewTail};
}

class Update {
 public:
  Update(const UpdateRequest& request, Reading& reading, RewriteScreen& screen)
      : m_request(request),
        m_old(request.parcel),
        m_new(request.parcel),
        m_reading(reading),
        m_screen(screen),
        m_level(m_old.ViewCompressed == "0" ? 0 : std::clamp(request.compressionLevel, 0, 9)),
        m_rewrite(reading.current.CurrentCarrierPath, {EntryOf(m_old)}, Manner(), request.leftover,
                  reading.files, screen) {
    m_new.ViewCompressed = std::to_string(m_level);
  }

  RewriteEnding Run();
  const FileStat& Taken() const { return m_taken; }
  const Path& TemporaryPath() const { return m_rewrite.TemporaryPath(); }
  PreviewParcel Parcel() && { return std::move(m_new); }

 private:
  void CopyWhatStays();
  void WriteEntry(ByteSink& sink);
  void WritePayload(File& preview, Length size, PayloadSink& sink);
  void MustHoldTheFile(File& preview, Length stored);
  WipedText Record(Length size, Length stored) const;

  const UpdateRequest& m_request;
  const PreviewParcel& m_old;
  PreviewParcel m_new;
  Reading& m_reading;
  RewriteScreen& m_screen;
  FileStat m_taken;
  const int m_level;  ///< 0 stores
  CarrierRewrite m_rewrite;
};

RewriteEnding Update::Run() {
  try {
    m_reading.current.CurrentPassword.Prepare([this] { m_screen.Yield(); });
    CopyWhatStays();
    m_new.ViewStart = Position{m_rewrite.Written() + 1};
    m_rewrite.Append([this](ByteSink& sink) { WriteEntry(sink); });
    m_screen.Yield();
    if (!m_rewrite.Replace()) return RewriteEnding::NotReplaced;
  } catch (const Stop& stop) {
    return EndingOf(stop);
  }
  Reload(m_reading.current.CurrentPassword, m_reading, m_screen);
  return RewriteEnding::Done;
}

void Update::CopyWhatStays() {
  const KnownEntry entry = EntryOf(m_old);
  m_rewrite.SetProgress(0, m_rewrite.CarrierSize());
  m_screen.Yield();
  m_rewrite.KeepUntil(entry.start);
  m_rewrite.PassOver(entry.End());
  m_rewrite.KeepRest();
}

void Update::WriteEntry(ByteSink& sink) {
  const std::unique_ptr<File> preview = m_reading.files.OpenToRead(m_request.previewFile);
  m_taken = preview->Stat();
  const Length size = m_taken.size;
  PayloadSink payload(sink);
  WritePayload(*preview, size, payload);
  const Length stored = payload.Written();
  m_new.ViewPlainSize = std::to_string(size);
  m_new.ViewSize = stored;
  m_new.ViewSeal = payload.SealText();
  if (!m_old.ViewMtime.empty()) m_new.ViewMtime = std::to_string(preview->Stat().modified);
  MustHoldTheFile(*preview, stored);
  const std::string tail = SealEntry(Record(size, stored), stored, m_reading.current.CurrentAlgorithmId,
                                     m_reading.current.CurrentPassword, m_reading.current.SecondKey);
  sink.Write(AsBytes(tail));
  m_new.ViewTail = EntryTail(tail);
}

void Update::WritePayload(File& preview, Length size, PayloadSink& sink) {
  FileSource stretch(preview, m_request.previewFile, Position{1}, size);
  m_rewrite.SetProgress(m_rewrite.CarrierSize(), m_rewrite.CarrierSize() + size);
  const std::unique_ptr<ByteSource> blocks = m_rewrite.InBlocks(stretch, size);
  const CurrentHideout& current = m_reading.current;
  const auto encrypt = [&](ByteSource& source) {
    CipherEncryptFile(current.CurrentAlgorithmId, source, sink, current.CurrentPassword,
                      m_reading.current.SecondKey);
  };
  if (m_level > 0) {
    CompressingSource compressed(*blocks, size, m_level, &m_screen);
    encrypt(compressed);
  } else {
    encrypt(*blocks);
  }
}

/// The file is read for the second time here: had it changed between, old bytes and new ones would lie mixed.
void Update::MustHoldTheFile(File& preview, Length stored) {
  const Path& temporary = m_rewrite.TemporaryPath();
  const std::unique_ptr<File> carrier = m_reading.files.OpenToRead(temporary);
  FileSource stretch(*carrier, temporary, m_new.ViewStart, stored);
  BlockSource blocks(stretch, BlockCount(stored, CancelLook::BeforeFullBlock, m_screen, [](Length) {}));
  ComparingSink comparison(preview);
  const CurrentHideout& current = m_reading.current;
  const PayloadClaims claims{
      .plainSize = m_new.ViewPlainSize, .compressed = m_new.ViewCompressed, .seal = m_new.ViewSeal};
  const std::string fault =
      TakeOutPayload(blocks, claims, current.CurrentAlgorithmId, current.CurrentPassword, comparison);
  if (fault.empty() && comparison.WasWholeFile(preview.Size())) return;
  throw Error(ErrorNumber::DeviceIo,
              "cannot update from " + Printable(m_request.previewFile.native()) +
                  ": the file changed while it was being read",
              m_request.previewFile);
}

WipedText Update::Record(Length size, Length stored) const {
  return BuildRecord({.name = m_old.ViewFileName,
                      .plainSize = std::to_string(size),
                      .storedSize = std::to_string(stored),
                      .attributes = m_old.ViewAttr,
                      .date = ToStored(DateAndTime(std::time(nullptr)), TextKind::Plain),
                      .compressed = m_new.ViewCompressed,
                      .folder = m_old.ViewFolder,
                      .title = m_reading.current.CurrentHideoutTitle,
                      .mode = m_old.ViewMode,
                      .seal = m_new.ViewSeal,
                      .mtime = m_new.ViewMtime},
                     RecordWriter::Rewrite);
}

/// What the person says to an update, before anything is touched.
UpdateResult::Refused Refusal(const UpdateRequest& request, Files& files, Dialogue& dialogue) {
  const std::optional<FileStat> found = files.Stat(request.previewFile);
  if (!found || found->kind == FileKind::Folder) {
    dialogue.Ask(questions::PreviewMissing());
    return UpdateResult::Refused::FileMissing;
  }
  const std::string oldSize = PlainNumber(ReadNumber(request.parcel.ViewPlainSize));
  const Answer answer = dialogue.Ask(questions::ConfirmUpdate(oldSize, std::to_string(found->size)));
  return answer == Answer::Yes ? UpdateResult::Refused::No : UpdateResult::Refused::ByPerson;
}

}  // namespace

UpdateResult RunUpdate(const UpdateRequest& request, Reading& reading, RewriteScreen& screen) {
  UpdateResult result;
  result.parcel = request.parcel;
  if (reading.guards.ViewBusy || reading.guards.ReadingBusy) {
    result.refused = UpdateResult::Refused::Busy;
    return result;
  }
  const BusyView busy(reading.guards);
  result.refused = Refusal(request, reading.files, screen);
  if (result.refused != UpdateResult::Refused::No) return result;
  Update update(request, reading, screen);
  result.ending = update.Run();
  if (result.ending == RewriteEnding::NotReplaced) result.temporary = update.TemporaryPath();
  result.taken = update.Taken();
  if (result.ending == RewriteEnding::Done) result.parcel = std::move(update).Parcel();
  return result;
}

}  // namespace tarnel
