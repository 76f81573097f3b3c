#include "carrier/tags.h"

#include <charconv>
#include <limits>
#include <locale>
#include <sstream>
#include <system_error>

namespace tarnel {

namespace {

std::string WithoutGaps(std::string_view text) {
  std::string kept;
  for (const char c : text) {
    if (c != ' ' && c != '\t' && c != '\n') kept += c;
  }
  return kept;
}

int DigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return 16;
}

double ReadWithRadix(std::string_view digits, int radix) {
  double number = 0;
  for (const char c : digits) {
    const int value = DigitValue(c);
    if (value >= radix) break;
    number = number * radix + value;
  }
  return number;
}

/// The number in `decimal`, which is too large for a double or too small.
double BeyondRange(std::string_view decimal) {
  std::istringstream stream{std::string(decimal)};
  stream.imbue(std::locale::classic());
  double number = 0;
  return stream >> number ? number : std::numeric_limits<double>::infinity();
}

double ReadDecimal(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  // from_chars also knows signs and words such as "inf", which are no numbers here.
  if (text.find_first_of("0123456789.") != 0) return 0;
  double number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec == std::errc::result_out_of_range) number = BeyondRange({text.data(), result.ptr});
  return negative ? -number : number;
}

}  // namespace

std::string_view GetTag(std::string_view tags, std::string_view key) {
  const std::size_t begin = tags.find(key);
  if (begin == std::string_view::npos) return {};
  const std::size_t value = begin + key.size();
  const std::size_t end = tags.find('>', begin);
  if (end == std::string_view::npos || end < value) return {};
  return tags.substr(value, end - value);
}

void AppendTag(WipedText& tags, std::string_view key, std::string_view value) {
  tags.append(key).append(value).push_back('>');
}

double ReadNumber(std::string_view text) {
  const std::string number = WithoutGaps(text);
  const std::string_view digits = number;
  if (digits.starts_with("&H") || digits.starts_with("&h")) return ReadWithRadix(digits.substr(2), 16);
  if (digits.starts_with("&O") || digits.starts_with("&o")) return ReadWithRadix(digits.substr(2), 8);
  return ReadDecimal(digits);
}

}  // namespace tarnel
