#include "carrier/length_field.h"

#include <cmath>

#include "carrier/format.h"
#include "carrier/tags.h"
#include "fuzz/input.h"
#include "fuzz/public_field.h"
#include "fuzz/targets.h"

namespace tarnel::fuzz {
namespace {

void KeepsNumbers(std::int64_t number) {
  const std::string field = PackLengthField(number);
  Require(field.size() == kLengthFieldSize, "a field has forty characters");
  Require(UnpackLengthField(field) == static_cast<double>(number), "a packed number comes back");
}

/// A decimal of `text` that ends at the first filling byte is what the field says.
void SaysWhatWasWritten(const std::string& text, std::uint8_t nonce) {
  const double number = UnpackLengthField(PublicField(text, nonce));
  Require(!std::isnan(number), "a crafted field holds a number");
  const bool isPlain = text.size() <= 14 && text.find_first_not_of("0123456789") == std::string::npos;
  const std::string filled = isPlain ? text + std::string(14 - text.size(), '\xC8') : text;
  if (isPlain) Require(UnpackLengthField(PublicField(filled, nonce)) == ReadNumber(text), "filling is none");
}

}  // namespace

void FuzzLengthField(Bytes bytes) {
  Input input(bytes);
  const std::uint8_t mode = input.Byte();
  if (mode % 3 == 0) return KeepsNumbers(std::int64_t{input.Number()} * 2 + input.Byte() % 2);
  if (mode % 3 == 1) return SaysWhatWasWritten(input.Rest(), mode);
  Require(!std::isnan(UnpackLengthField(input.Rest())), "any bytes hold a number");
}

}  // namespace tarnel::fuzz
