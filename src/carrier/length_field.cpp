#include "carrier/length_field.h"

#include <cassert>
#include <cmath>
#include <set>

#include "carrier/format.h"
#include "carrier/tags.h"
#include "crypto/cipher.h"
#include "crypto/random.h"

namespace tarnel {

namespace {

bool IsFilling(char c) {
  const int code = static_cast<unsigned char>(c);
  return code >= kFillingLow && code <= kFillingHigh;
}

/// The text of a field with blanks for its filling; empty for what is no field.
WipedText TextOf(std::string_view field) {
  std::string secondKey;
  WipedText text = CipherDecryptString(Algorithm::Blowfish, field, TextForm::Base64, Key::OfLengthFields(),
                                       secondKey, Cut::Allowed);
  for (char& c : text) {
    if (IsFilling(c)) c = ' ';
  }
  return text;
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
  std::set<std::int64_t> numbers;
  WipedText text = TextOf(field);
  for (char& c : text) {
    const char stood = c;
    for (const char other : std::string_view("0123456789 ")) {
      c = other;
      const double number = ReadNumber(text);
      if (number >= 0 && number <= kCarrierLimit && number == std::floor(number))
        numbers.insert(static_cast<std::int64_t>(number));
    }
    c = stood;
  }
  return {numbers.begin(), numbers.end()};
}

}  // namespace tarnel
