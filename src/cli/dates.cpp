#include "cli/dates.h"

#include <array>
#include <ctime>

namespace tarnel {

std::optional<std::string> IsoOfDateText(const std::string& text) {
  std::tm moment{};
  moment.tm_isdst = -1;
  const char* end = ::strptime(text.c_str(), "%x %X", &moment);
  if (end == nullptr || *end != '\0' || std::mktime(&moment) == -1) return std::nullopt;
  std::array<char, 64> form{};
  std::string iso(form.data(), std::strftime(form.data(), form.size(), "%Y-%m-%dT%H:%M:%S%z", &moment));
  iso.insert(iso.size() - 2, ":");
  return iso;
}

std::string IsoOfMoment(std::int64_t seconds) {
  const std::time_t time = seconds;
  std::tm moment{};
  if (::gmtime_r(&time, &moment) == nullptr) return std::to_string(seconds);
  std::array<char, 64> form{};
  return {form.data(), std::strftime(form.data(), form.size(), "%Y-%m-%dT%H:%M:%SZ", &moment)};
}

}  // namespace tarnel
