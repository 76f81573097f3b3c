#include <cmath>
#include <cstdlib>

#include "carrier/tags.h"
#include "fuzz/input.h"
#include "fuzz/targets.h"

namespace tarnel::fuzz {
namespace {

std::string WithoutGaps(std::string text) {
  std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\n'; });
  return text;
}

bool IsDecimal(const std::string& number) {
  const std::size_t unsignedPart = number.starts_with('-') || number.starts_with('+') ? 1 : 0;
  const std::string_view rest = std::string_view(number).substr(unsignedPart);
  if (rest.find_first_of("0123456789.") != 0) return false;
  return !rest.starts_with("0x") && !rest.starts_with("0X");  // these are numbers to the C library only
}

}  // namespace

void FuzzNumber(Bytes bytes) {
  const std::string text(AsText(bytes));
  const double number = ReadNumber(text);
  Require(!std::isnan(number), "a number is a number");
  const std::string digits = WithoutGaps(text);
  Require(ReadNumber(digits) == number, "gaps count for nothing");
  if (digits.find('\0') == std::string::npos && IsDecimal(digits))
    Require(std::strtod(digits.c_str(), nullptr) == number, "decimals are what the C library says");
}

}  // namespace tarnel::fuzz
