#include "retrieval/verify.h"

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
#include "crypto/keys.h"
#include "retrieval/block_source.h"

namespace tarnel {
namespace {

class Verification {
 public:
  Verification(const Path& path, const HideoutKey& key, Files& files, VerifyScreen& screen)
      : m_path(path), m_key(key), m_files(files), m_screen(screen) {}

  VerifyResult Run();

 private:
  void CheckEntries();
  std::optional<EntryPlace> NextEntry(Walk& walk);
  void CheckEntry(Walk& walk, const EntryPlace& place);
  std::string FaultOfPayload(const EntryPlace& place, std::string_view record);

  const Path& m_path;
  const HideoutKey& m_key;
  Files& m_files;
  VerifyScreen& m_screen;
  std::unique_ptr<File> m_carrier;
  Length m_passed = 0;
  VerifyResult m_result;
};

VerifyResult Verification::Run() {
  m_result.leftovers = LeftoversBeside(m_path, m_files);
  try {
    PrepareKey(m_key.password, [this] { m_screen.Yield(); });
    CheckEntries();
  } catch (const Stop&) {
    m_result.cancelled = true;
  }
  return std::move(m_result);
}

void Verification::CheckEntries() {
  m_carrier = m_files.OpenToRead(m_path);
  Walk walk(*m_carrier, m_path);
  while (const std::optional<EntryPlace> place = NextEntry(walk)) {
    m_screen.Yield();
    if (m_screen.CancelRequested()) throw Stop{StopReason::Cancelled};
    CheckEntry(walk, *place);
    m_passed = walk.CarrierSize() - (place->start.value - 1);
    m_screen.ShowProgress(m_passed, walk.CarrierSize());
  }
  m_screen.ShowProgress(walk.CarrierSize(), walk.CarrierSize());
}

/// Where the walk can't go on behind at least one entry, all that lies before is lost, and is reported as one
/// entry. A body too short for a trailer is no such place, though the walk throws over one of 79 bytes.
std::optional<EntryPlace> Verification::NextEntry(Walk& walk) {
  try {
    return walk.Next();
  } catch (const Error& error) {
    if (error.Number() != ErrorNumber::BadRecordNumber || m_passed == 0) throw;
    if (walk.CarrierSize() - m_passed >= static_cast<Length>(kTrailerSize))
      m_result.entries.push_back(
          {.name = {}, .folder = {}, .verdict = Verdict::Damaged, .reason = error.Description()});
    return std::nullopt;
  }
}

void Verification::CheckEntry(Walk& walk, const EntryPlace& place) {
  std::string secondKey;
  const WipedText record = walk.DecryptRecord(m_key.algorithm, m_key.password, secondKey);
  VerifiedEntry entry;
  entry.name = GetTag(record, tag::kName);
  entry.folder = GetTag(record, tag::kFolder);
  if (!entry.name.empty())
    entry.reason = FaultOfPayload(place, record);
  else if (walk.KeyFits(m_key.algorithm, m_key.password))
    entry.reason = "its record is damaged";
  else
    return;
  if (!entry.reason.empty()) entry.verdict = Verdict::Damaged;
  m_result.entries.push_back(std::move(entry));
}

std::string Verification::FaultOfPayload(const EntryPlace& place, std::string_view record) {
  FileSource stretch(*m_carrier, m_path, place.start, place.payload);
  const Length size = m_carrier->Size();
  Length passed = m_passed;
  BlockSource payload(stretch,
                      BlockCount(place.payload, CancelLook::BehindFullBlock, m_screen,
                                 [&](Length block) { m_screen.ShowProgress(passed += block, size); }));
  NullSink nowhere;
  return TakeOutPayload(payload, ClaimsOf(record), m_key.algorithm, m_key.password, nowhere);
}

}  // namespace

VerifyResult RunVerify(const Path& carrier, const HideoutKey& key, Files& files, VerifyScreen& screen) {
  return Verification(carrier, key, files, screen).Run();
}

}  // namespace tarnel
