#include "crypto/base64.h"

#include <array>

namespace tarnel {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kLine = 76;

constexpr std::array<std::uint8_t, 256> MakeValues() {
  std::array<std::uint8_t, 256> values{};
  for (std::size_t i = 0; i < kAlphabet.size(); ++i)
    values[static_cast<std::uint8_t>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
  return values;
}

constexpr auto kValues = MakeValues();

std::string EncodeOnOneLine(Bytes bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  std::uint32_t group = 0;
  unsigned bits = 0;
  for (const std::uint8_t byte : bytes) {
    group = group << 8 | byte;
    for (bits += 8; bits >= 6; bits -= 6)
      text.push_back(kAlphabet[group >> (bits - 6) & 63]);
  }
  if (bits != 0) text.push_back(kAlphabet[group << (6 - bits) & 63]);
  text.append((4 - text.size() % 4) % 4, '=');
  return text;
}

std::string Wrap(std::string_view text) {
  std::string wrapped;
  wrapped.reserve(text.size() + text.size() / kLine * 2);
  for (; text.size() >= kLine; text.remove_prefix(kLine))
    wrapped.append(text.substr(0, kLine)).append("\r\n");
  return wrapped.append(text);
}

}  // namespace

std::string Base64Encode(Bytes bytes) {
  std::string text = EncodeOnOneLine(bytes);
  return text.size() > kLine ? Wrap(text) : text;
}

std::string Base64Decode(std::string_view text) {
  std::string bytes(text.size() / 4 * 3 + 3, '\0');
  std::size_t length = 0;
  std::uint32_t group = 0;
  unsigned bits = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '=') continue;
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
      ++i;
      continue;
    }
    group = group << 6 | kValues[static_cast<std::uint8_t>(text[i])];
    bits += 6;
    if (bits < 8) continue;
    bits -= 8;
    bytes[length++] = static_cast<char>(group >> bits & 0xFF);
  }
  bytes.resize(length);
  return bytes;
}

}  // namespace tarnel
