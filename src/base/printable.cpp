#include "base/printable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "base/utf8.h"

namespace tarnel {

namespace {

struct Range {
  std::uint32_t first, last;

  bool Holds(std::uint32_t code) const { return code >= first && code <= last; }
};

bool IsHarmless(std::uint32_t code) {
  static constexpr std::array<Range, 7> harmful = {{{0x00, 0x1F},
                                                    {0x7F, 0x9F},
                                                    {0x061C, 0x061C},
                                                    {0x200E, 0x200F},
                                                    {0x2028, 0x202E},
                                                    {0x2066, 0x2069},
                                                    {0xFEFF, 0xFEFF}}};
  return std::none_of(harmful.begin(), harmful.end(),
                      [code](const Range& range) { return range.Holds(code); });
}

std::string Escaped(std::uint8_t byte) {
  if (byte == '\n') return "\\n";
  if (byte == '\r') return "\\r";
  if (byte == '\t') return "\\t";
  constexpr std::string_view digits = "0123456789abcdef";
  return {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
}

}  // namespace

std::string Printable(std::string_view bytes) {
  std::string line;
  while (!bytes.empty()) {
    const Utf8Character character = FirstUtf8Character(bytes);
    const std::size_t length = std::max<std::size_t>(character.length, 1);
    if (character.length != 0 && IsHarmless(character.code)) {
      line += bytes.substr(0, length);
    } else {
      for (std::size_t i = 0; i < length; ++i)
        line += Escaped(static_cast<std::uint8_t>(bytes[i]));
    }
    bytes.remove_prefix(length);
  }
  return line;
}

}  // namespace tarnel
