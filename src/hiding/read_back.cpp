#include "hiding/read_back.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include "base/file_streams.h"
#include "base/pace.h"
#include "carrier/payload.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "carrier/walk.h"

namespace tarnel {

namespace {

/// Compares what it is given with a file.
class ComparingSink : public ByteSink {
 public:
  ComparingSink(File& original, Pace& pace) : m_original(original), m_pace(pace) {}

  void Write(Bytes bytes) override {
    m_buffer.resize(bytes.size());
    const std::size_t got = m_original.ReadAt(Position{} + m_compared, m_buffer);
    m_isSame = m_isSame && got == bytes.size() && std::equal(bytes.begin(), bytes.end(), m_buffer.begin());
    m_compared += static_cast<Length>(bytes.size());
    m_pace.Step();
  }

  bool WasWholeFile() { return m_isSame && m_original.Size() == m_compared; }

 private:
  File& m_original;
  Pace& m_pace;
  WipedBytes m_buffer;
  Length m_compared = 0;
  bool m_isSame = true;
};

class ReadBack {
 public:
  ReadBack(const std::vector<NewEntry>& entries, const std::vector<HideRow>& rows,
           const CurrentHideout& hideout, Files& files, Dialogue& dialogue)
      : m_entries(entries), m_rows(rows), m_hideout(hideout), m_files(files), m_pace(dialogue) {}

  std::vector<std::size_t> Run() {
    try {
      WalkNewEntries();
    } catch (const Error&) {  // what lies behind the fault is not read back
    }
    std::sort(m_readBack.begin(), m_readBack.end());
    return m_readBack;
  }

 private:
  void WalkNewEntries() {
    const std::unique_ptr<File> carrier = m_files.OpenToRead(m_hideout.CurrentCarrierPath);
    Walk walk(*carrier);
    for (auto entry = m_entries.rbegin(); entry != m_entries.rend(); ++entry) {
      const std::optional<EntryPlace> place = walk.Next();
      if (!place || place->start != entry->start || place->payload != entry->payload) return;
      if (IsIdentical(*entry, RecordOf(walk), *carrier)) m_readBack.push_back(entry->row);
      m_pace.Step();
    }
  }

  WipedText RecordOf(Walk& walk) {
    std::string secondKey;
    return walk.DecryptRecord(m_hideout.CurrentAlgorithmId, m_hideout.CurrentPassword, secondKey);
  }

  bool IsIdentical(const NewEntry& entry, const WipedText& record, File& carrier) {
    if (GetTag(record, tag::kName) != ToStored(m_rows[entry.row].name, TextKind::PathComponent)) return false;
    try {
      const std::unique_ptr<File> original = m_files.OpenToRead(m_rows[entry.row].source);
      FileSource payload(carrier, m_hideout.CurrentCarrierPath, entry.start, entry.payload);
      ComparingSink comparison(*original, m_pace);
      const std::string fault = TakeOutPayload(payload, ClaimsOf(record), m_hideout.CurrentAlgorithmId,
                                               m_hideout.CurrentPassword, comparison);
      return fault.empty() && comparison.WasWholeFile();
    } catch (const Error&) {
      return false;
    }
  }

  const std::vector<NewEntry>& m_entries;
  const std::vector<HideRow>& m_rows;
  const CurrentHideout& m_hideout;
  Files& m_files;
  Pace m_pace;
  std::vector<std::size_t> m_readBack;
};

}  // namespace

std::vector<std::size_t> RowsThatReadBack(const std::vector<NewEntry>& entries,
                                          const std::vector<HideRow>& rows, const CurrentHideout& hideout,
                                          Files& files, Dialogue& dialogue) {
  return ReadBack(entries, rows, hideout, files, dialogue).Run();
}

}  // namespace tarnel
