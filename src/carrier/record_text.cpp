#include "carrier/record_text.h"

#include <algorithm>
#include <optional>
#include <string>

#include "base/file_streams.h"
#include "carrier/format.h"

namespace tarnel {
namespace {

/// A line with more bytes that don't belong there is none.
constexpr std::ptrdiff_t kAlteredBytes = 4;

bool IsLineAt(File& carrier, Position from) {
  if (from < Position{}) return false;
  const std::string line = ReadFileSlice(carrier, from, kLineSize);
  return line.size() == kLineSize && LooksLikeLine(line);
}

/// The end of the last full line before `trailer`, if there is one.
std::optional<Position> EndOfLines(File& carrier, Position trailer) {
  for (Length rest = 0; rest < static_cast<Length>(kLineCharacters); ++rest) {
    const Position end = trailer - rest;
    if (IsLineAt(carrier, end - Length{kLineSize})) return end;
  }
  return std::nullopt;
}

}  // namespace

bool IsBase64Character(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/' ||
         c == '=';
}

bool LooksLikeLine(std::string_view line) {
  const std::string_view characters = line.substr(0, kLineCharacters);
  const auto odd = characters.size() - static_cast<std::size_t>(std::count_if(
                                           characters.begin(), characters.end(), IsBase64Character));
  const std::ptrdiff_t oddEnd = (line[kLineCharacters] != '\r') + (line[kLineCharacters + 1] != '\n');
  return oddEnd < 2 && static_cast<std::ptrdiff_t>(odd) + oddEnd <= kAlteredBytes;
}

Length LengthOfTextBefore(File& carrier, Position trailer) {
  const std::optional<Position> end = EndOfLines(carrier, trailer);
  if (!end) return 0;
  Position begin = *end - Length{kLineSize};
  while (trailer - begin < static_cast<Length>(kRecordLimit) && IsLineAt(carrier, begin - Length{kLineSize}))
    begin = begin - Length{kLineSize};
  return trailer - begin;
}

bool IsDisprovedByText(File& carrier, Position trailer, Length recordLength) {
  const Length length = LengthOfTextBefore(carrier, trailer);
  if (length == 0 || length == recordLength) return false;
  const Position begin = trailer - recordLength;
  return !IsLineAt(carrier, begin) || IsLineAt(carrier, begin - Length{kLineSize});
}

}  // namespace tarnel
