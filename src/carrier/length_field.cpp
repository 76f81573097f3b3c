#include "carrier/length_field.h"

#include <cassert>

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

double UnpackLengthField(std::string_view field) {
  std::string secondKey;
  WipedText text = CipherDecryptString(Algorithm::Blowfish, field, TextForm::Base64, Key::OfLengthFields(),
                                       secondKey, Cut::Allowed);
  for (char& c : text) {
    if (IsFilling(c)) c = ' ';
  }
  return ReadNumber(text);
}

}  // namespace tarnel
