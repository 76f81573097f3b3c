#include "carrier/walk.h"

#include <limits>

#include "carrier/length_field.h"
#include "carrier/load_hideout.h"
#include "carrier/probe_carrier.h"
#include "carrier/record.h"
#include "carrier/stored_text.h"
#include "fuzz/input.h"
#include "fuzz/memory_files.h"
#include "fuzz/public_field.h"
#include "fuzz/targets.h"

namespace tarnel::fuzz {
namespace {

constexpr Algorithm kAlgorithm = Algorithm::Twofish;
constexpr std::size_t kMostEntries = 24;

const Key& Password() {
  static const Key password(Secret("fuzz"));
  return password;
}

/// The tail of a carrier from the fuzzer's numbers: entries whose trailers are readable, true or not.
class Crafter {
 public:
  explicit Crafter(Input& input) : m_input(input) {}

  std::string Entries() {
    std::string tail;
    for (m_nonce = 1; m_nonce <= kMostEntries && !m_input.IsEmpty(); ++m_nonce)
      tail += Entry();
    return tail;
  }

 private:
  std::string Entry() {
    const std::uint8_t kind = m_input.Byte();
    const std::string payload = m_input.TextOf(m_input.Byte());
    const std::string record = Record(kind % 4, payload.size());
    return payload + record + Field(kind >> 2U & 3U, payload.size()) + Field(kind >> 4U & 3U, record.size());
  }

  std::string Record(unsigned kind, std::size_t payload) {
    const std::string text = m_input.Text();
    if (kind == 0) return text;
    if (kind == 1) return SealWith(kAlgorithm, Password(), text, m_nonce);
    if (kind == 2) return SealWith(kAlgorithm, Password(), "front", m_nonce).substr(0, 24) + text;
    const RecordFields fields{.name = WipedText(ToStored(text, TextKind::PathComponent)),
                              .storedSize = std::to_string(payload),
                              .compressed = std::to_string(m_input.Byte() % 10),
                              .folder = WipedText(m_input.Text()),
                              .title = "t"};
    return SealWith(kAlgorithm, Password(), BuildRecord(fields, RecordWriter::Hide), m_nonce);
  }

  std::string Field(unsigned kind, std::size_t truth) {
    if (kind < 2) return PublicField(std::to_string(truth) + std::string(14, '\xC8'), m_nonce);
    if (kind == 2) return PublicField(m_input.TextOf(14), m_nonce);
    std::string field = m_input.TextOf(kLengthFieldSize);
    field.resize(kLengthFieldSize, ' ');
    return field;
  }

  Input& m_input;
  std::uint8_t m_nonce = 0;
};

MemoryCarrier CarrierFrom(Bytes bytes) {
  Input input(bytes);
  const std::uint8_t mode = input.Byte();
  const Length body = mode & 1U ? input.Number() & 0x7FFFFFFFU : input.Byte();
  if (mode & 2U) return {.body = body, .tail = input.Rest()};
  return {.body = body, .tail = Crafter(input).Entries()};
}

/// Every place lies inside the file and in front of the one before.
void WalkFallsThrough(MemoryFiles& files) {
  const std::unique_ptr<File> file = files.OpenToRead({});
  Walk walk(*file);
  Position before = Position{} + walk.CarrierSize();
  std::string secondKey;
  try {
    while (const std::optional<EntryPlace> place = walk.Next()) {
      Require(place->start >= Position{} && place->payload >= 0 && place->recordLength > 0, "a place is one");
      Require(place->End() <= before, "the walk falls");
      before = place->start;
      const bool fits = walk.KeyFits(kAlgorithm, Password());
      const WipedText record = walk.DecryptRecord(kAlgorithm, Password(), secondKey);
      Require(fits || record.empty(), "a foreign record stays closed");
      if (record.empty()) continue;
      Require(static_cast<Length>(walk.ReadTail().size()) == place->End() - place->Record(), "whole tails");
    }
  } catch (const Error& error) {
    Require(error.Number() == ErrorNumber::BadRecordNumber,
            "a carrier that can be read gives no other error");
  }
}

class FuzzScreen : public ReadingScreen {
 public:
  Answer Ask(const Question& question) override {
    return question.buttons == Buttons::AbortRetryIgnore ? Answer::Ignore : Answer::Ok;
  }
  void Yield() override {}
  bool CancelRequested() const override { return false; }
  void ShowReading(Length passed, Length size) override { Require(passed <= size, "progress ends"); }
  void HideoutLoaded(TreeNode& root, std::size_t files) override {
    Require(root.IsRoot() && files > 0, "a hideout has files");
  }
  void HideoutGone() override {}
};

void RowIsSound(const MirrorRow& row, Length carrierSize) {
  Require(row.start >= Position{} && row.size >= 0 && row.End() <= Position{} + carrierSize,
          "a row is inside");
  Require(!row.Name().empty(), "a row has a name");
}

/// Loading shows only sound rows, and whatever it shows a search finds too.
void LoadingIsSound(MemoryFiles& files, Length carrierSize) {
  Catalogue catalogue;
  ReadingGuards guards;
  CurrentHideout current;
  Reading reading{files, catalogue, guards, current};
  FuzzScreen screen;
  const LoadResult result =
      LoadHideout({.carrier = "carrier", .password = Password(), .algorithm = kAlgorithm}, reading, screen);
  Require(catalogue.Rows().empty() == (result != LoadResult::Loaded), "rows are there where it loaded");
  for (const MirrorRow& row : catalogue.Rows())
    RowIsSound(row, carrierSize);
  const ProbeResult probe =
      ProbeCarrier({.carrier = "carrier", .password = Password(), .algorithm = kAlgorithm}, reading, screen);
  Require(probe.found || result != LoadResult::Loaded, "a search finds what opens");
}

}  // namespace

void FuzzWalk(Bytes bytes) {
  const MemoryCarrier carrier = CarrierFrom(bytes);
  const Length size = carrier.Size();
  MemoryFiles files(carrier, kRecordLimit + kTrailerSize);
  WalkFallsThrough(files);
  LoadingIsSound(files, size);
}

}  // namespace tarnel::fuzz
