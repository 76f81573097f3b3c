#include "retrieval/run_extract.h"

#include <memory>
#include <optional>
#include <utility>

#include "base/attempt.h"
#include "base/closing_separator.h"
#include "base/file_streams.h"
#include "base/pace.h"
#include "base/printable.h"
#include "carrier/format.h"
#include "carrier/payload.h"
#include "carrier/stored_text.h"
#include "crypto/keys.h"
#include "retrieval/block_source.h"
#include "retrieval/pending_file.h"
#include "retrieval/questions.h"
#include "retrieval/restored_file.h"
#include "retrieval/work_list.h"

namespace tarnel {
namespace {

/// A symbolic link counts, so that entering it is refused instead of passing for a missing folder.
bool HasFolder(Folder& folder, const std::string& name) {
  const std::optional<FileStat> found = folder.Stat(name);
  return found && (found->kind == FileKind::Folder || found->kind == FileKind::SymbolicLink);
}

class Extraction {
 public:
  Extraction(const ExtractRequest& request, Reading& reading, ExtractScreen& screen)
      : m_request(request),
        m_catalogue(reading.catalogue),
        m_files(reading.files),
        m_screen(screen),
        m_overwriteAll(request.overwriteAll) {}

  ExtractResult Run();

 private:
  struct Target {
    std::shared_ptr<Folder> folder;
    std::string name;
    Path path;
    std::optional<FileStat> found;
  };

  const MirrorRow& Row(std::size_t index) const { return m_catalogue.Rows()[index]; }
  void WriteThrough();
  void ExtractEntry(const MirrorRow& row, std::size_t number, std::size_t count);
  Target FindTarget(const MirrorRow& row);
  void MustBeReplaceable(const FileStat& found, const Path& path);
  std::unique_ptr<Folder> OpenExtractTo();
  std::shared_ptr<Folder> FolderFor(const MirrorRow& row);
  std::unique_ptr<Folder> TargetFolder(const MirrorRow& row);
  bool MayBeWritten(const MirrorRow& row, const Target& target);
  void WriteTarget(const MirrorRow& row, Target& target);
  void TakeOut(const MirrorRow& row, File& plain);
  File& Carrier();
  void CloseAll();

  questions::ExtractFault FaultOf(const Error& error) const;
  template <class Statement>
  Outcome Try(const MirrorRow& row, Statement&& statement);
  void End(const Stop& stop);

  const ExtractRequest& m_request;
  const Catalogue& m_catalogue;
  Files& m_files;
  ExtractScreen& m_screen;
  bool m_overwriteAll;
  const MirrorRow* m_damaged = nullptr;  ///< the row whose payload has just failed
  ExtractResult m_result;
  /// Stay open from one file to the next, until the person is asked something: then nobody knows how much
  /// time has passed, and what was opened may be what has failed.
  std::unique_ptr<File> m_carrier;
  std::shared_ptr<Folder> m_folder;
  WipedText m_folderName;  ///< of the rows that go into m_folder
};

ExtractResult Extraction::Run() {
  const std::vector<std::size_t> list = ExtractWorkList(m_request, m_catalogue);
  if (list.empty()) m_result.ending = ExtractEnding::NothingChosen;
  try {
    if (!list.empty()) Row(list.front()).hideout->password.Prepare([this] { m_screen.Yield(); });
    for (std::size_t i = 0; i < list.size(); ++i)
      ExtractEntry(Row(list[i]), i + 1, list.size());
    if (m_result.extracted > 0) WriteThrough();
  } catch (const Stop& stop) {
    End(stop);
  }
  return std::move(m_result);
}

/// Once for all files: whoever deletes the entries next must not lose both to a power cut.
void Extraction::WriteThrough() {
  const auto sync = [this] { m_files.SyncFileSystem(WithoutClosingSeparator(m_request.target)); };
  const ErrorHandler handler{
      [](const Error& error) { return questions::ExtractError(error, questions::ExtractFault::Other); }};
  Attempt(m_screen, handler, [&] { RunYielding(m_screen, sync); });
}

void Extraction::ExtractEntry(const MirrorRow& row, std::size_t number, std::size_t count) {
  if (m_screen.CancelRequested()) throw Stop{StopReason::Cancelled};
  m_screen.ShowFile(number, count, row.Name(), row.size);
  Target target;
  if (Try(row, [&] { target = FindTarget(row); }) == Outcome::Ignored) return;
  m_screen.ShowTarget(target.path);
  if (!MayBeWritten(row, target)) {
    m_result.keptExisting.push_back(target.path);
    return;
  }
  if (Try(row, [&] { WriteTarget(row, target); }) == Outcome::Done) ++m_result.extracted;
}

Extraction::Target Extraction::FindTarget(const MirrorRow& row) {
  Target target;
  target.folder = FolderFor(row);
  target.name = ToPlatform(row.Name());
  target.found = target.folder->Stat(target.name);
  target.path = target.folder->Where() / target.name;
  if (target.found) MustBeReplaceable(*target.found, target.path);
  return target;
}

void Extraction::MustBeReplaceable(const FileStat& found, const Path& path) {
  const auto isCarrier = [&](Files::Links links) {
    const std::optional<FileStat> carrier = m_files.Stat(m_request.carrier, links);
    return carrier && carrier->IsSameFile(found);
  };
  const char* reason = nullptr;
  if (found.kind == FileKind::Folder) reason = "it is a folder";
  if (isCarrier(Files::Links::Follow) || isCarrier(Files::Links::DontFollow)) reason = "it is the carrier";
  if (reason)
    throw Error(ErrorNumber::PathFileAccess, "cannot write " + Printable(path.native()) + ": " + reason,
                path);
}

std::shared_ptr<Folder> Extraction::FolderFor(const MirrorRow& row) {
  if (m_folder && m_folderName == row.Folder()) return m_folder;
  m_folder.reset();
  m_folder = TargetFolder(row);
  m_folderName = row.Folder();
  return m_folder;
}

std::unique_ptr<Folder> Extraction::TargetFolder(const MirrorRow& row) {
  const std::vector<std::string> parts = FolderParts(RelativeFolder(m_request, row.Folder()));
  std::unique_ptr<Folder> folder = OpenExtractTo();
  const bool endsInSeparator = !m_request.target.has_filename();
  if (!m_request.useFolderNames && !endsInSeparator) return folder;

  const Folder::IfMissing ifMissing =
      m_request.useFolderNames ? Folder::IfMissing::Create : Folder::IfMissing::Fail;
  const Path extractTo = folder->Where();
  for (const std::string& part : parts) {
    if (!m_request.useFolderNames && !HasFolder(*folder, part)) return m_files.OpenFolder(extractTo);
    folder = folder->Enter(part, ifMissing);
  }
  return folder;
}

std::unique_ptr<Folder> Extraction::OpenExtractTo() {
  const Path folder = WithoutClosingSeparator(m_request.target);
  if (m_files.Stat(folder)) return m_files.OpenFolder(folder);
  return m_files.OpenFolder(folder.parent_path())
      ->Enter(folder.filename().native(), Folder::IfMissing::Create);
}

bool Extraction::MayBeWritten(const MirrorRow& row, const Target& target) {
  if (!target.found || m_overwriteAll) return true;
  CloseAll();
  const Answer answer = m_screen.AskToOverwrite(questions::Overwrite(target.path), *target.found, row);
  m_overwriteAll = answer == Answer::OverwriteAll;
  return m_overwriteAll || answer == Answer::Yes;
}

void Extraction::WriteTarget(const MirrorRow& row, Target& target) {
  PendingFile pending(*target.folder);
  m_screen.ShowProgress(0, row.size);
  m_screen.Yield();
  TakeOut(row, pending.Opened());
  pending.Complete(target.name, RestoredAttributesOf(row.record));
  m_screen.ShowProgress(row.size, row.size);
  m_screen.Yield();
}

void Extraction::TakeOut(const MirrorRow& row, File& plain) {
  File& carrier = Carrier();
  MustStillStand(carrier, row.start, row.size, row.tail, m_request.carrier);
  FileSource stretch(carrier, m_request.carrier, row.start, row.size);
  Length passed = 0;
  BlockSource payload(stretch, BlockCount(row.size, CancelLook::BehindFullBlock, m_screen, [&](Length block) {
                        m_screen.ShowProgress(passed += block, row.size);
                      }));
  FileSink sink(plain, Position{1});
  const HideoutKey& key = *row.hideout;
  const std::string fault = TakeOutPayload(payload, ClaimsOf(row.record), key.algorithm, key.password, sink);
  if (fault.empty()) return;
  m_damaged = &row;
  throw DamagedPayload("extract", row.Name(), fault);
}

File& Extraction::Carrier() {
  if (!m_carrier) m_carrier = m_files.OpenToRead(m_request.carrier);
  return *m_carrier;
}

void Extraction::CloseAll() {
  m_carrier.reset();
  m_folder.reset();
}

questions::ExtractFault Extraction::FaultOf(const Error& error) const {
  if (m_damaged) return questions::ExtractFault::Damaged;
  return error.Number() == ErrorNumber::BadFileName ? questions::ExtractFault::Name
                                                    : questions::ExtractFault::Other;
}

template <class Statement>
Outcome Extraction::Try(const MirrorRow& row, Statement&& statement) {
  const ErrorHandler handler{[this](const Error& error) {
    CloseAll();
    return questions::ExtractError(error, FaultOf(error));
  }};
  const Outcome outcome = Attempt(m_screen, handler, [&] {
    m_damaged = nullptr;
    statement();
  });
  if (outcome == Outcome::Ignored) {
    (m_damaged ? m_result.damaged : m_result.leftOut).emplace_back(row.Name());
    m_damaged = nullptr;
  }
  return outcome;
}

void Extraction::End(const Stop& stop) {
  if (m_damaged) m_result.damaged.emplace_back(m_damaged->Name());
  m_result.ending = stop.reason == StopReason::Cancelled ? ExtractEnding::Cancelled : ExtractEnding::Aborted;
}

}  // namespace

ExtractResult RunExtract(const ExtractRequest& request, Reading& reading, ExtractScreen& screen) {
  return Extraction(request, reading, screen).Run();
}

}  // namespace tarnel
