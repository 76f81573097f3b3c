#include "carrier/record_scan.h"

#include <algorithm>
#include <utility>

#include "base/file_streams.h"
#include "carrier/format.h"
#include "carrier/length_field.h"
#include "carrier/record_text.h"
#include "crypto/cipher.h"

namespace tarnel {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;

/// Enough of a record to see whether a key fits.
constexpr Length kFront = 64;

/// Base64 comes in groups of so many characters.
constexpr Length kGroup = 4;

/// Characters of a trailer that may be altered to anything: what has more is none.
constexpr int kMostOdd = 2;

/// The lengths that the text can have, the likeliest first. A whole trailer need not be the text's own: a
/// bridge counts bytes that the text's trailer has left.
std::vector<Length> LengthsOf(const RecordText& text, const std::optional<FoundTrailer>& trailer) {
  std::vector<Length> lengths;
  if (trailer) lengths.push_back(trailer->at - text.begin);
  for (Length rest = 0; rest < static_cast<Length>(kLineCharacters); rest += kGroup)
    lengths.push_back(text.linesEnd - text.begin + rest);
  return lengths;
}

/// Takes the one whose tag is right.
void OpenWhole(OpenedRecord& record, std::string_view text, const std::vector<Length>& lengths,
               const Key& key) {
  for (const Length length : lengths) {
    if (length > static_cast<Length>(text.size()) || length > static_cast<Length>(kRecordLimit)) continue;
    std::string secondKey;
    record.plain = CipherDecryptString(record.algorithm, text.substr(0, static_cast<std::size_t>(length)),
                                       TextForm::Base64, key, secondKey, Cut::Whole);
    record.length = length;
    record.isWhole = !record.plain.empty();
    if (record.isWhole) return;
  }
}

}  // namespace

RecordScan::RecordScan(File& carrier, std::function<void(Length)> passed)
    : m_carrier(carrier), m_passed(std::move(passed)), m_size(carrier.Size()) {}

std::optional<RecordText> RecordScan::Next() {
  while (const std::optional<Position> line = NextLine()) {
    const Position end = *line + Length{kLineSize};
    if (m_text && m_text->linesEnd == *line) {
      m_text->linesEnd = end;
      continue;
    }
    RecordText text{.begin = *line, .linesEnd = end};
    const Position behind = m_text ? m_text->linesEnd : Position{};
    while (text.begin - Length{kLineSize} >= behind && IsLine(text.begin - Length{kLineSize}))
      text.begin = text.begin - Length{kLineSize};
    if (m_text && m_text->linesEnd == text.begin) {  // the end of a line between them was altered
      m_text->linesEnd = end;
      continue;
    }
    if (const std::optional<RecordText> before = std::exchange(m_text, text)) return before;
  }
  return std::exchange(m_text, std::nullopt);
}

/// The begin of the next full line that ends as one.
std::optional<Position> RecordScan::NextLine() {
  for (;;) {
    const std::size_t end = m_block.find('\n', m_next);
    if (end == std::string::npos) {
      if (!ReadOn()) return std::nullopt;
      continue;
    }
    m_next = end + 1;
    if (end + 1 < kLineSize || m_block[end - 1] != '\r') continue;
    const std::size_t begin = end + 1 - kLineSize;
    if (LooksLikeLine(std::string_view(m_block).substr(begin, kLineSize)))
      return m_blockStart + static_cast<Length>(begin);
  }
}

/// Keeps the end of the block, in which a line may have begun.
bool RecordScan::ReadOn() {
  const Position from = m_blockStart + static_cast<Length>(m_block.size());
  if (from - Position{} >= m_size) return false;
  const std::size_t kept = std::min(m_block.size(), kLineSize);
  m_block.erase(0, m_block.size() - kept);
  m_blockStart = from - static_cast<Length>(kept);
  m_next = kept;
  m_block.resize(kept + kBlock);
  MutableBytes into(reinterpret_cast<std::uint8_t*>(m_block.data()) + kept, kBlock);
  const std::size_t got = m_carrier.ReadAt(from, into);
  m_block.resize(kept + got);
  m_passed(from - Position{} + static_cast<Length>(got));
  return got > 0;
}

bool RecordScan::IsLine(Position begin) {
  const std::string line = ReadFileSlice(m_carrier, begin, kLineSize);
  return line.size() == kLineSize && LooksLikeLine(line);
}

std::optional<OpenedRecord> RecordOpener::Open(const RecordText& text) {
  const std::string front = ReadFileSlice(m_carrier, text.begin, kFront);
  for (const OfferedAlgorithm& offered : OfferedAlgorithms()) {
    if (!CipherKeyFits(offered.algorithm, front, TextForm::Base64, m_key)) continue;
    OpenedRecord record;
    record.algorithm = offered.algorithm;
    const std::string whole =
        ReadFileSlice(m_carrier, text.begin,
                      std::min<Length>(text.linesEnd - text.begin + Length{kLineSize}, kRecordLimit));
    std::vector<Length> lengths = LengthsOf(text, TrailerOf(m_carrier, text));
    if (m_damaged == m_mostDamaged) lengths.resize(1);
    OpenWhole(record, whole, lengths, m_key);
    if (!record.isWhole && m_damaged < m_mostDamaged) ++m_damaged;
    return record;
  }
  return std::nullopt;
}

/// A lone field that holds could be either of the two. The right one tells how long the text is.
std::optional<FoundTrailer> TrailerOf(File& carrier, const RecordText& text) {
  const std::string behind = ReadFileSlice(carrier, text.linesEnd, Length{kLineCharacters + kTrailerSize});
  std::vector<int> odd(1, 0);  // among the characters before each place
  for (const char c : behind)
    odd.push_back(odd.back() + (IsBase64Character(c) ? 0 : 1));
  std::optional<Position> rightHolds;
  std::optional<Position> leftHolds;
  for (std::size_t rest = 0; rest < kLineCharacters && rest + kTrailerSize <= behind.size();
       rest += static_cast<std::size_t>(kGroup)) {
    const std::size_t middle = rest + kLengthFieldSize;
    const std::size_t end = rest + kTrailerSize;
    if (odd[middle] - odd[rest] > kMostOdd && odd[end] - odd[middle] > kMostOdd)
      continue;  // neither can hold
    const std::string_view trailer = std::string_view(behind).substr(rest, kTrailerSize);
    const LengthField left = ReadLengthField(trailer.substr(0, kLengthFieldSize));
    const LengthField right = ReadLengthField(trailer.substr(kLengthFieldSize));
    const Position place = text.linesEnd + static_cast<Length>(rest);
    if (left.holds && right.holds)
      return FoundTrailer{place, right.number == static_cast<double>(place - text.begin)};
    if (right.holds && right.number == static_cast<double>(place - text.begin)) rightHolds = place;
    if (left.holds) leftHolds = place;
  }
  if (!rightHolds && !leftHolds) return std::nullopt;
  return FoundTrailer{rightHolds ? *rightHolds : *leftHolds, false};
}

}  // namespace tarnel
