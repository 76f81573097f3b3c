#include "crypto/base64.h"

#include "fuzz/input.h"
#include "fuzz/targets.h"

namespace tarnel::fuzz {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The rules of decoding, one after the other: drop line ends, drop padding, take what is unknown for "A".
std::string Cleaned(std::string text) {
  for (std::size_t at = text.find("\r\n"); at != std::string::npos; at = text.find("\r\n", at))
    text.erase(at, 2);
  std::erase(text, '=');
  for (char& c : text)
    if (kAlphabet.find(c) == std::string_view::npos) c = 'A';
  return text;
}

void DecodesAnything(const std::string& text) {
  const std::string bytes = Base64Decode(text);
  const std::string clean = Cleaned(text);
  Require(bytes.size() == clean.size() * 3 / 4, "each character carries six bits");
  Require(bytes == Base64Decode(clean), "what carries nothing changes nothing");
  const std::size_t whole = clean.size() / 4 * 4;
  Require(Cleaned(Base64Encode(AsBytes(bytes))).substr(0, whole) == clean.substr(0, whole),
          "groups come back");
}

void ReversesEncoding(const std::string& bytes) {
  const std::string text = Base64Encode(AsBytes(bytes));
  Require(Base64Decode(text) == bytes, "encoded bytes come back");
  Require(text.find_first_not_of(std::string(kAlphabet) + "=\r\n") == std::string::npos, "plain ASCII");
  for (std::size_t line = 0, end = 0; end != std::string::npos; line = end + 2) {
    end = text.find("\r\n", line);
    Require(std::min(end, text.size()) - line <= 76, "no line is longer than 76");
  }
}

}  // namespace

void FuzzBase64(Bytes bytes) {
  const std::string text(AsText(bytes));
  DecodesAnything(text);
  ReversesEncoding(text);
}

}  // namespace tarnel::fuzz
