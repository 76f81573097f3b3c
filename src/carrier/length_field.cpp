#include "carrier/length_field.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <set>

#include "carrier/format.h"
#include "carrier/tags.h"
#include "crypto/base64.h"
#include "crypto/cipher.h"
#include "crypto/random.h"

namespace tarnel {

namespace {

bool IsFilling(char c) {
  const int code = static_cast<unsigned char>(c);
  return code >= kFillingLow && code <= kFillingHigh;
}

/// The text of a field with its filling; empty for what is no field.
WipedText FilledTextOf(std::string_view field) {
  std::string secondKey;
  return CipherDecryptString(Algorithm::Blowfish, field, TextForm::Base64, Key::OfLengthFields(), secondKey,
                             Cut::Allowed);
}

/// The same with blanks for the filling.
WipedText TextOf(std::string_view field) {
  WipedText text = FilledTextOf(field);
  for (char& c : text) {
    if (IsFilling(c)) c = ' ';
  }
  return text;
}

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// What the cipher has added to the bytes of the field's text; empty for what is no field.
std::string KeyStreamOf(std::string_view field) {
  const WipedText plain = FilledTextOf(field);
  std::string stream = Base64Decode(field);
  stream.erase(0, stream.size() - plain.size());
  for (std::size_t i = 0; i < plain.size(); ++i)
    stream[i] = static_cast<char>(stream[i] ^ plain[i]);
  return stream;
}

/// The number that the bytes of a field give under a key stream, if it is a length.
void AddNumber(std::set<std::int64_t>& numbers, const std::string& bytes, const std::string& keyStream) {
  if (keyStream.empty() || bytes.size() < keyStream.size()) return;
  std::string text = bytes.substr(bytes.size() - keyStream.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    text[i] = static_cast<char>(text[i] ^ keyStream[i]);
    if (IsFilling(text[i])) text[i] = ' ';
  }
  const double number = ReadNumber(text);
  if (number >= 0 && number <= kCarrierLimit && number == std::floor(number))
    numbers.insert(static_cast<std::int64_t>(number));
}

}  // namespace

std::string PackLengthField(std::int64_t number) {
  assert(number >= 0 && number <= 9'999'999'999);
  std::string field = std::to_string(number);
  while (field.size() < kLengthFieldSize)
    field += static_cast<char>(RandomBetween(kFillingLow, kFillingHigh));
  std::string secondKey;
  std::string text =
      CipherEncryptString(Algorithm::Blowfish, field, TextForm::Base64, Key::OfLengthFields(), secondKey);
  text.resize(kLengthFieldSize, ' ');
  return text;
}

LengthField ReadLengthField(std::string_view field) {
  const WipedText text = TextOf(field);
  return {.number = ReadNumber(text), .holds = !text.empty()};
}

double UnpackLengthField(std::string_view field) {
  return ReadLengthField(field).number;
}

std::vector<std::int64_t> NumbersOneCharacterAway(std::string_view field) {
  std::string text(field.substr(0, kLengthFieldSize));
  std::set<std::int64_t> numbers;
  const std::size_t odd = text.find_first_not_of(kAlphabet);
  const bool isOdd = odd != std::string::npos;
  std::string keyStream = isOdd ? "" : KeyStreamOf(text);
  for (std::size_t place = isOdd ? odd : 0; place < (isOdd ? odd + 1 : text.size()); ++place) {
    const char stood = text[place];
    for (const char other : kAlphabet) {
      text[place] = other;
      if (keyStream.empty() && isOdd) keyStream = KeyStreamOf(text);
      AddNumber(numbers, Base64Decode(text), keyStream);
    }
    text[place] = stood;
  }
  return {numbers.begin(), numbers.end()};
}

}  // namespace tarnel
