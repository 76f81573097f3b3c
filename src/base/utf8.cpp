#include "base/utf8.h"

#include <array>

namespace tarnel {

namespace {

std::uint8_t ByteAt(std::string_view bytes, std::size_t at) {
  return static_cast<std::uint8_t>(bytes[at]);
}

std::size_t SequenceLength(std::uint8_t lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

}  // namespace

Utf8Character FirstUtf8Character(std::string_view bytes) {
  const std::uint8_t lead = ByteAt(bytes, 0);
  const std::size_t length = SequenceLength(lead);
  if (length == 0 || length > bytes.size()) return {};
  if (length == 1) return {lead, 1};
  char32_t code = lead & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((ByteAt(bytes, i) & 0xC0) != 0x80) return {};
    code = code << 6 | (ByteAt(bytes, i) & 0x3FU);
  }
  constexpr std::array<char32_t, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
  if (code < smallest[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return {};
  return {code, length};
}

}  // namespace tarnel
