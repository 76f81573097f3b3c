#include "base/formats.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace tarnel {

namespace {

std::string Digits(double number, std::chars_format form, int precision) {
  std::array<char, 400> text{};
  const std::to_chars_result end =
      std::to_chars(text.data(), text.data() + text.size(), number, form, precision);
  return {text.data(), end.ptr};
}

std::string TwoDigits(std::int64_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace

std::string GroupedKilobytes(double bytes) {
  const double kilobytes = std::round(bytes / 1024);
  if (!std::isfinite(kilobytes)) return std::isnan(kilobytes) ? "nan" : kilobytes > 0 ? "inf" : "-inf";
  std::string text = Digits(std::fabs(kilobytes), std::chars_format::fixed, 0);
  for (std::size_t behind = 3; behind < text.size(); behind += 4)
    text.insert(text.size() - behind, 1, ',');
  return kilobytes < 0 ? "-" + text : text;
}

std::string PlainNumber(double number) {
  std::string text = Digits(number == 0 ? 0 : number, std::chars_format::general, 15);
  const std::size_t exponent = text.find('e');
  if (std::isfinite(number) && exponent != std::string::npos) text[exponent] = 'E';
  return text;
}

std::string DateAndTime(std::time_t moment) {
  std::tm local{};
  if (::localtime_r(&moment, &local) == nullptr) return std::to_string(moment);
  std::array<char, 200> text{};
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-y2k"  // a locale's short date may well have two digits for the year
  return {text.data(), std::strftime(text.data(), text.size(), "%x %X", &local)};
#pragma GCC diagnostic pop
}

std::string DottedDateAndTime(std::time_t moment) {
  std::tm local{};
  if (::localtime_r(&moment, &local) == nullptr) return std::to_string(moment);
  std::array<char, 100> text{};
  return {text.data(), std::strftime(text.data(), text.size(), "%d.%m.%Y %H:%M:%S", &local)};
}

std::string HumanSize(std::int64_t bytes) {
  if (bytes < 1024) return std::to_string(bytes) + " B";
  static constexpr std::array<const char*, 6> units = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
  std::size_t unit = 0;
  double size = static_cast<double>(bytes) / 1024;
  while (size >= 1023.95 && unit + 1 < units.size()) {  // what would round to 1024.0 is one of the next unit
    size /= 1024;
    ++unit;
  }
  return Digits(size, std::chars_format::fixed, 1) + " " + units[unit];
}

std::string Rate(std::int64_t bytes, double seconds) {
  if (!(seconds > 0)) return "-";
  constexpr double most = 9e18;
  const double rate = std::min(static_cast<double>(bytes) / seconds, most);
  return HumanSize(static_cast<std::int64_t>(rate)) + "/s";
}

std::string Duration(double seconds) {
  constexpr double tooLong = 1e9;
  if (!(seconds >= 0 && seconds < tooLong)) return "-";
  const auto whole = static_cast<std::int64_t>(std::ceil(seconds));
  const std::int64_t minutes = whole / 60;
  const std::string tail = ":" + TwoDigits(whole % 60);
  return minutes < 60 ? std::to_string(minutes) + tail
                      : std::to_string(minutes / 60) + ":" + TwoDigits(minutes % 60) + tail;
}

}  // namespace tarnel
