#include "retrieval/verify.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "base/attempt.h"
#include "base/file_streams.h"
#include "carrier/companions.h"
#include "carrier/format.h"
#include "carrier/payload.h"
#include "carrier/tags.h"
#include "carrier/walk.h"
#include "retrieval/block_source.h"

namespace tarnel {
namespace {

class Verification {
 public:
  Verification(const VerifyRequest& request, Files& files, VerifyScreen& screen)
      : m_request(request), m_files(files), m_screen(screen) {}

  VerifyResult Run();

 private:
  void CheckEntries();
  std::optional<EntryPlace> NextEntry(Walk& walk);
  bool CheckEntry(Walk& walk, const EntryPlace& place);
  void CheckPayload(const EntryPlace& place, std::string_view record, VerifiedEntry& entry);
  std::string FaultOfPayload(const EntryPlace& place, std::string_view record);

  const VerifyRequest& m_request;
  Files& m_files;
  VerifyScreen& m_screen;
  std::unique_ptr<File> m_carrier;
  Length m_size = 0;
  Length m_passed = 0;
  VerifyResult m_result;
};

VerifyResult Verification::Run() {
  m_result.leftovers = LeftoversBeside(m_request.carrier, m_files);
  try {
    m_request.password.Prepare([this] { m_screen.Yield(); });
    CheckEntries();
  } catch (const Stop&) {
    m_result.ending = VerifyEnding::Cancelled;
  }
  return std::move(m_result);
}

void Verification::CheckEntries() {
  m_carrier = m_files.OpenToRead(m_request.carrier);
  Walk walk(*m_carrier, m_request.carrier);
  m_size = walk.CarrierSize();
  while (const std::optional<EntryPlace> place = NextEntry(walk)) {
    m_screen.Yield();
    if (m_screen.CancelRequested()) throw Stop{StopReason::Cancelled};
    if (!CheckEntry(walk, *place)) break;
    m_passed = m_size - (place->start.value - 1);
    m_screen.ShowProgress(m_passed, m_size);
  }
  m_result.chain.brokenAt = walk.BrokenAt();
  m_screen.ShowProgress(m_size, m_size);
}

/// An end that throws is an end all the same, but for a carrier without any entry.
std::optional<EntryPlace> Verification::NextEntry(Walk& walk) {
  try {
    return walk.Next();
  } catch (const Error& error) {
    if (error.Number() != ErrorNumber::BadRecordNumber || m_passed == 0) throw;
    return std::nullopt;
  }
}

/// False where an entry closes the hideout.
bool Verification::CheckEntry(Walk& walk, const EntryPlace& place) {
  const JudgedEntry judged = Judge(walk, place, m_request.algorithm, m_request.password);
  if (judged.state == JudgedEntry::State::Closed)
    m_result.chain.closedBy = GetTag(judged.record, tag::kFormat);
  const bool isWhole = judged.state == JudgedEntry::State::Whole;
  if (!isWhole && judged.state != JudgedEntry::State::Damaged)
    return judged.state != JudgedEntry::State::Closed;
  VerifiedEntry entry{.at = place.start,
                      .name = std::string(GetTag(judged.record, tag::kName)),
                      .folder = std::string(GetTag(judged.record, tag::kFolder)),
                      .verdict = isWhole ? Verdict::Intact : Verdict::Damaged,
                      .reason = judged.fault};
  if (isWhole) CheckPayload(place, judged.record, entry);
  m_result.entries.push_back(std::move(entry));
  return true;
}

void Verification::CheckPayload(const EntryPlace& place, std::string_view record, VerifiedEntry& entry) {
  try {
    entry.reason = FaultOfPayload(place, record);
    if (!entry.reason.empty()) entry.verdict = Verdict::Damaged;
  } catch (const Error& error) {
    entry.reason = error.Description();
    entry.verdict = Verdict::Unreadable;
  }
}

std::string Verification::FaultOfPayload(const EntryPlace& place, std::string_view record) {
  FileSource stretch(*m_carrier, m_request.carrier, place.start, place.payload);
  Length passed = m_passed;
  BlockSource payload(stretch,
                      BlockCount(place.payload, CancelLook::BehindFullBlock, m_screen,
                                 [&](Length block) { m_screen.ShowProgress(passed += block, m_size); }));
  NullSink nowhere;
  return TakeOutPayload(payload, ClaimsOf(record), m_request.algorithm, m_request.password, nowhere);
}

}  // namespace

bool VerifyResult::IsWhole() const {
  return chain.None() && std::all_of(entries.begin(), entries.end(), [](const VerifiedEntry& entry) {
           return entry.verdict == Verdict::Intact;
         });
}

VerifyResult RunVerify(const VerifyRequest& request, Files& files, VerifyScreen& screen) {
  return Verification(request, files, screen).Run();
}

}  // namespace tarnel
