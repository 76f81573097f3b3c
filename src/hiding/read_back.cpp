#include "hiding/read_back.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/file_streams.h"
#include "base/pace.h"
#include "carrier/payload.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "carrier/walk.h"

namespace tarnel {

namespace {

class PacedSource : public ByteSource {
 public:
  PacedSource(ByteSource& inner, Pace& pace) : m_inner(inner), m_pace(pace) {}

  std::size_t Read(MutableBytes into) override {
    m_pace.Step();
    return m_inner.Read(into);
  }

 private:
  ByteSource& m_inner;
  Pace& m_pace;
};

class ReadBack {
 public:
  ReadBack(const std::vector<NewEntry>& entries, const std::vector<HideRow>& rows,
           const CurrentHideout& hideout, File& carrier, Dialogue& dialogue)
      : m_entries(entries), m_rows(rows), m_hideout(hideout), m_carrier(carrier), m_pace(dialogue) {}

  /// Hands each entry that can be reached and opened to `look`, newest first.
  void WalkNewEntries(const std::function<void(const NewEntry&, const WipedText&)>& look) {
    try {
      Walk walk(m_carrier);
      for (auto entry = m_entries.rbegin(); entry != m_entries.rend(); ++entry) {
        const std::optional<EntryPlace> place = walk.Next();
        if (!place || place->start != entry->start || place->payload != entry->payload) return;
        const WipedText record = RecordOf(walk);
        if (GetTag(record, tag::kName) == ToStored(m_rows[entry->row].name, TextKind::PathComponent))
          look(*entry, record);
        m_pace.Step();
      }
    } catch (const Error&) {  // what lies behind the fault is not read back
    }
  }

  /// The original as it was seen, if the entry holds its bytes.
  std::optional<FileStat> IdenticalOriginal(const NewEntry& entry, const WipedText& record, Files& files) {
    try {
      const std::unique_ptr<File> original = files.OpenToRead(m_rows[entry.row].source);
      const FileStat seen = original->Stat();
      ComparingSink comparison(*original);
      const bool isSame = TakeOut(entry, record, comparison).empty() && comparison.WasWholeFile(seen.size);
      if (isSame && original->Stat().IsUntouchedSince(seen)) return seen;
    } catch (const Error&) {  // what can't be compared is not identical
    }
    return std::nullopt;
  }

  bool IsAuthentic(const NewEntry& entry, const WipedText& record) {
    try {
      NullSink nowhere;
      return TakeOut(entry, record, nowhere).empty();
    } catch (const Error&) {
      return false;
    }
  }

 private:
  WipedText RecordOf(Walk& walk) {
    std::string secondKey;
    return walk.DecryptRecord(m_hideout.CurrentAlgorithmId, m_hideout.CurrentPassword, secondKey);
  }

  /// What is wrong with the entry's payload; empty if it is the one that the record names.
  std::string TakeOut(const NewEntry& entry, const WipedText& record, ByteSink& plain) {
    FileSource stretch(m_carrier, m_hideout.CurrentCarrierPath, entry.start, entry.payload);
    PacedSource payload(stretch, m_pace);
    return TakeOutPayload(payload, ClaimsOf(record), m_hideout.CurrentAlgorithmId, m_hideout.CurrentPassword,
                          plain);
  }

  const std::vector<NewEntry>& m_entries;
  const std::vector<HideRow>& m_rows;
  const CurrentHideout& m_hideout;
  File& m_carrier;
  Pace m_pace;
};

}  // namespace

std::vector<RowReadBack> RowsThatReadBack(const std::vector<NewEntry>& entries,
                                          const std::vector<HideRow>& rows, const CurrentHideout& hideout,
                                          File& carrier, Files& files, HideScreen& screen) {
  std::vector<RowReadBack> found;
  std::size_t number = 0;
  ReadBack reader(entries, rows, hideout, carrier, screen);
  reader.WalkNewEntries([&](const NewEntry& entry, const WipedText& record) {
    screen.ShowOriginal(OriginalStep::Comparing, rows[entry.row].source, ++number, entries.size());
    if (const auto seen = reader.IdenticalOriginal(entry, record, files)) found.push_back({entry.row, *seen});
  });
  std::sort(found.begin(), found.end(),
            [](const RowReadBack& a, const RowReadBack& b) { return a.row < b.row; });
  return found;
}

bool AllReadBack(const std::vector<NewEntry>& entries, const std::vector<HideRow>& rows,
                 const CurrentHideout& hideout, File& carrier, Dialogue& dialogue) {
  std::size_t authentic = 0;
  ReadBack reader(entries, rows, hideout, carrier, dialogue);
  reader.WalkNewEntries([&](const NewEntry& entry, const WipedText& record) {
    if (reader.IsAuthentic(entry, record)) ++authentic;
  });
  return authentic == entries.size();
}

}  // namespace tarnel
