#include "retrieval/salvage.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "base/attempt.h"
#include "base/file_streams.h"
#include "base/pace.h"
#include "carrier/format.h"
#include "carrier/payload.h"
#include "carrier/record_scan.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "retrieval/block_source.h"
#include "retrieval/pending_file.h"
#include "retrieval/questions.h"
#include "retrieval/restored_file.h"
#include "retrieval/work_list.h"

namespace tarnel {
namespace {

class Salvage {
 public:
  Salvage(const SalvageRequest& request, Files& files, SalvageScreen& screen)
      : m_request(request), m_files(files), m_screen(screen), m_pace(screen) {}

  SalvageResult Run();

 private:
  struct FoundRecord {
    Position begin;
    OpenedRecord opened;
  };

  void OpenCarrier();
  void FindRecords();
  void TakeOut(const FoundRecord& record);
  void Note(std::vector<EntryFault>& list, const FoundRecord& record, std::string fault);
  std::string FreeName(Folder& folder, const std::string& name);
  std::string WriteFile(const FoundRecord& record);
  std::unique_ptr<Folder> TargetFolder(std::string_view folder);
  std::string TakeOutTo(const FoundRecord& record, Position start, Length payload, File& plain);

  template <class Statement>
  Outcome Try(Statement&& statement) {
    const ErrorHandler handler{[](const Error& error) {
      return questions::ExtractError(error, error.Number() == ErrorNumber::BadFileName
                                                ? questions::ExtractFault::Name
                                                : questions::ExtractFault::Other);
    }};
    return Attempt(m_screen, handler, std::forward<Statement>(statement));
  }

  const SalvageRequest& m_request;
  Files& m_files;
  SalvageScreen& m_screen;
  Pace m_pace;
  std::unique_ptr<File> m_carrier;
  Length m_size = 0;
  std::vector<FoundRecord> m_records;    ///< in file order
  std::map<std::string, int> m_numbers;  ///< the last number that a path got
  SalvageResult m_result;
};

SalvageResult Salvage::Run() {
  try {
    if (Try([this] { OpenCarrier(); }) == Outcome::Ignored) throw Stop{StopReason::Aborted};
    Try([this] { FindRecords(); });
    m_result.found = m_records.size();
    for (auto record = m_records.rbegin(); record != m_records.rend(); ++record)
      TakeOut(*record);
    if (m_result.salvaged > 0) Try([this] { m_files.SyncFileSystem(m_request.target); });
  } catch (const Stop& stop) {
    m_result.ending =
        stop.reason == StopReason::Cancelled ? SalvageEnding::Cancelled : SalvageEnding::Aborted;
  }
  return std::move(m_result);
}

void Salvage::OpenCarrier() {
  m_carrier = m_files.OpenToRead(m_request.carrier);
  m_size = m_carrier->Size();
}

/// Where the disk gives no more, what was found so far is taken out all the same if the person wants it.
void Salvage::FindRecords() {
  m_records.clear();
  RecordScan scan(*m_carrier, [this](Length passed) {
    m_screen.ShowProgress(passed, m_size);
    m_screen.Yield();
    if (m_screen.CancelRequested()) throw Stop{StopReason::Cancelled};
  });
  RecordOpener opener(*m_carrier, m_request.password);
  while (const std::optional<RecordText> text = scan.Next()) {
    if (std::optional<OpenedRecord> opened = opener.Open(*text))
      m_records.push_back({text->begin, std::move(*opened)});
    m_pace.Step();
    if (m_screen.CancelRequested()) throw Stop{StopReason::Cancelled};
  }
}

void Salvage::TakeOut(const FoundRecord& record) {
  if (m_screen.CancelRequested()) throw Stop{StopReason::Cancelled};
  m_pace.Step();
  if (!record.opened.isWhole) return Note(m_result.damaged, record, "its record is damaged");
  if (GetTag(record.opened.plain, tag::kName).empty()) return;
  if (std::string excess = ExcessOf(record.opened.plain); !excess.empty())
    return Note(m_result.damaged, {record.begin, {}}, std::move(excess));
  std::string fault;
  if (Try([&] { fault = WriteFile(record); }) == Outcome::Ignored)
    Note(m_result.leftOut, record, "it was passed over");
  else if (!fault.empty())
    Note(m_result.damaged, record, std::move(fault));
  else
    ++m_result.salvaged;
}

void Salvage::Note(std::vector<EntryFault>& list, const FoundRecord& record, std::string fault) {
  if (list.size() == SalvageResult::kMostNoted) {
    ++m_result.notNoted;
    return;
  }
  list.push_back({.at = record.begin,
                  .name = std::string(GetTag(record.opened.plain, tag::kName)),
                  .fault = std::move(fault)});
}

/// What is wrong with the contents; empty if the file stands.
std::string Salvage::WriteFile(const FoundRecord& record) {
  const WipedText& plain = record.opened.plain;
  const double stored = ReadNumber(GetTag(plain, tag::kStoredSize));
  const Length room = record.begin - Position{};
  if (!(stored >= 0) || stored > static_cast<double>(room)) return "its contents are not all there";
  const auto payload = static_cast<Length>(stored);

  const std::string name = ToPlatform(GetTag(plain, tag::kName));
  const std::unique_ptr<Folder> folder = TargetFolder(GetTag(plain, tag::kFolder));
  folder->Stat(name);  // a name that can't be made is refused before anything is
  PendingFile pending(*folder);
  std::string fault = TakeOutTo(record, record.begin - payload, payload, pending.Opened());
  if (!fault.empty()) return fault;
  const std::string free = FreeName(*folder, name);
  pending.Complete(free, RestoredAttributesOf(plain));
  m_screen.FileSalvaged(folder->Where() / free);
  return {};
}

std::string Salvage::FreeName(Folder& folder, const std::string& name) {
  int& number = m_numbers[(folder.Where() / name).native()];
  std::string free = number == 0 ? name : NumberedName(name, number + 1);
  for (number = std::max(number, 1); folder.Stat(free); free = NumberedName(name, number))
    ++number;
  return free;
}

std::unique_ptr<Folder> Salvage::TargetFolder(std::string_view folder) {
  const std::vector<std::string> parts = FolderParts(folder.starts_with('\\') ? folder.substr(1) : folder);
  const Path target = m_request.target.has_filename() ? m_request.target : m_request.target.parent_path();
  std::unique_ptr<Folder> opened = m_files.Stat(target)
                                       ? m_files.OpenFolder(target)
                                       : m_files.OpenFolder(target.parent_path())
                                             ->Enter(target.filename().native(), Folder::IfMissing::Create);
  for (const std::string& part : parts)
    opened = opened->Enter(part, Folder::IfMissing::Create);
  return opened;
}

std::string Salvage::TakeOutTo(const FoundRecord& record, Position start, Length payload, File& plain) {
  FileSource stretch(*m_carrier, m_request.carrier, start, payload);
  Length passed = 0;
  BlockSource blocks(stretch, BlockCount(payload, CancelLook::BehindFullBlock, m_screen, [&](Length block) {
                       m_screen.ShowProgress(passed += block, payload);
                     }));
  FileSink sink(plain, Position{1});
  return TakeOutPayload(blocks, ClaimsOf(record.opened.plain), record.opened.algorithm, m_request.password,
                        sink);
}

}  // namespace

SalvageResult RunSalvage(const SalvageRequest& request, Files& files, SalvageScreen& screen) {
  return Salvage(request, files, screen).Run();
}

std::string NumberedName(const std::string& name, int number) {
  constexpr std::size_t mostBytes = 255;
  const std::string mark = " (" + std::to_string(number) + ")";
  const std::size_t point = name.rfind('.');
  const std::size_t end = point == std::string::npos || point == 0 ? name.size() : point;
  const std::size_t kept = name.size() - end + mark.size();
  return name.substr(0, std::min(end, mostBytes > kept ? mostBytes - kept : 0)) + mark + name.substr(end);
}

}  // namespace tarnel
