#include "carrier/chain.h"

#include <utility>

#include "base/attempt.h"
#include "base/printable.h"
#include "carrier/format.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "crypto/cipher.h"

namespace tarnel {
namespace {

/// Contents that are stored as they are differ from their size by what the cipher adds.
bool ContradictsSize(std::string_view record, Length payload) {
  const std::string_view size = GetTag(record, tag::kPlainSize);
  return !size.empty() && GetTag(record, tag::kCompressed) == "0" &&
         ReadNumber(size) != static_cast<double>(payload - kFileCipherOverhead);
}

bool ContradictsTrailer(std::string_view record, Length payload) {
  const std::string_view stored = GetTag(record, tag::kStoredSize);
  return !stored.empty() && ReadNumber(stored) != static_cast<double>(payload);
}

JudgedEntry Damaged(std::string fault, WipedText record = {}) {
  return {.state = JudgedEntry::State::Damaged, .record = std::move(record), .fault = std::move(fault)};
}

/// The record is authentic, its trailer need not be: where the lengths differ, it is the trailer that is
/// wrong unless an entry stands where it leads.
JudgedEntry JudgeLengths(Walk& walk, const EntryPlace& place, WipedText record) {
  if (ContradictsTrailer(record, place.payload)) {
    if (walk.IsBehindAnEntry(place.start))
      return Damaged("the lengths stored for it contradict each other", std::move(record));
    walk.BreakHere();
    return {.state = JudgedEntry::State::Broken, .record = {}, .fault = {}};
  }
  if (ContradictsSize(record, place.payload))
    return Damaged("its record says another size than its contents have", std::move(record));
  return {.state = JudgedEntry::State::Whole, .record = std::move(record), .fault = {}};
}

}  // namespace

std::string ExcessOf(std::string_view record) {
  if (ToPlatform(GetTag(record, tag::kName)).size() > kNameLimit) return "its name is too long";
  if (ToPlatform(GetTag(record, tag::kFolder)).size() > kFolderLimit) return "its folder is too deep";
  return {};
}

JudgedEntry Judge(Walk& walk, const EntryPlace& place, Algorithm algorithm, const Key& key) {
  if (!walk.KeyFits(algorithm, key)) return {};
  if (place.recordLength > Length{kRecordLimit}) return Damaged("its record is too long");
  std::string secondKey;
  WipedText record = walk.DecryptRecord(algorithm, key, secondKey);
  if (record.empty()) return Damaged("its record is damaged");
  if (GetTag(record, tag::kName).empty()) return {};
  if (GetTag(record, tag::kFormat) != kFormatVersion)
    return {.state = JudgedEntry::State::Closed, .record = std::move(record), .fault = {}};
  std::string excess = ExcessOf(record);
  if (!excess.empty()) return Damaged(std::move(excess));
  return JudgeLengths(walk, place, std::move(record));
}

void ChainFaults::Note(EntryFault fault) {
  if (entries.size() == kMostNoted)
    ++notNoted;
  else
    entries.push_back(std::move(fault));
}

ChainFaults ExamineChain(File& carrier, const Path& name, Algorithm algorithm, const Key& key,
                         Dialogue& dialogue) {
  ChainFaults faults;
  Walk walk(carrier, name);
  try {
    while (const std::optional<EntryPlace> place = walk.Next()) {
      dialogue.Yield();
      if (dialogue.CancelRequested()) throw Stop{StopReason::Cancelled};
      const JudgedEntry entry = Judge(walk, *place, algorithm, key);
      if (entry.state == JudgedEntry::State::Damaged)
        faults.Note({place->start, std::string(GetTag(entry.record, tag::kName)), entry.fault});
      if (entry.state != JudgedEntry::State::Closed) continue;
      faults.closedBy = GetTag(entry.record, tag::kFormat);
      break;
    }
  } catch (const Error& error) {
    if (error.Number() != ErrorNumber::BadRecordNumber) throw;
  }
  faults.brokenAt = walk.BrokenAt();
  return faults;
}

std::vector<std::string> SentencesOf(const ChainFaults& faults) {
  std::vector<std::string> sentences;
  for (const EntryFault& entry : faults.entries) {
    const std::string place = "the entry at byte " + std::to_string(entry.at.value);
    const std::string subject =
        entry.name.empty() ? place : Printable(ToPlatform(entry.name)) + ", " + place + ",";
    sentences.push_back(subject + " is damaged: " + entry.fault);
  }
  if (faults.notNoted > 0)
    sentences.push_back(std::to_string(faults.notNoted) + (faults.notNoted == 1
                                                               ? " further entry is damaged"
                                                               : " further entries are damaged"));
  if (faults.brokenAt)
    sentences.push_back("the chain of entries is broken at byte " + std::to_string(faults.brokenAt->value) +
                        ": a length there is damaged, and what lies in the " +
                        std::to_string(faults.brokenAt->value - 1) +
                        " bytes before it is out of reach; \"tarnel-cli recover\" mends that");
  if (faults.closedBy)
    sentences.push_back("an entry was written in format " + Printable(ToPlatform(*faults.closedBy)) +
                        ": it and all older ones are closed to this version of the program");
  if (faults.hasMoreFolders)
    sentences.push_back(
        "there are more folders than a tree shows: it lists the files of some in a folder above");
  return sentences;
}

}  // namespace tarnel
