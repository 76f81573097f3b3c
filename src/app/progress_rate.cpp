#include "app/progress_rate.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "base/formats.h"

namespace tarnel {

namespace {

constexpr auto kLeastGap = std::chrono::milliseconds(250);
constexpr auto kMeasured = std::chrono::seconds(5);

double Seconds(std::chrono::steady_clock::duration duration) {
  return std::chrono::duration<double>(duration).count();
}

}  // namespace

std::optional<std::string> ProgressRate::Line(Length value, Length maximum, Time now) {
  const bool isLast = value >= maximum;
  if (!m_samples.empty() && !isLast && now - m_samples.back().time < kLeastGap) return std::nullopt;
  if (!m_samples.empty() && value < m_samples.back().value) m_samples.clear();
  m_samples.push_back({now, value});
  while (m_samples.size() > 2 && now - m_samples[1].time >= kMeasured)
    m_samples.pop_front();
  std::string line = HumanSize(value) + " of " + HumanSize(std::max<Length>(0, maximum));
  const double seconds = Seconds(now - m_samples.front().time);
  const Length bytes = value - m_samples.front().value;
  if (seconds < Seconds(kLeastGap) || bytes <= 0) return line;
  line += ", " + Rate(bytes, seconds);
  const double rest = static_cast<double>(maximum - value) / static_cast<double>(bytes) * seconds;
  return rest < 1 ? line : line + ", about " + RestText(rest) + " left";
}

std::string RestText(double seconds) {
  constexpr int minute = 60;
  const auto whole = static_cast<std::int64_t>(std::ceil(std::min(seconds, 1e9)));
  if (whole < 2 * minute) return std::to_string(whole) + " s";
  const std::int64_t minutes = (whole + minute - 1) / minute;
  if (minutes < 2 * minute) return std::to_string(minutes) + " min";
  return std::to_string(minutes / minute) + " h " + std::to_string(minutes % minute) + " min";
}

}  // namespace tarnel
