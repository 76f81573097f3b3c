#include "app/progress_rate.h"

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

std::string Size(double bytes) {
  return HumanSize(static_cast<std::int64_t>(std::max(0.0, bytes)));
}

}  // namespace

std::optional<std::string> ProgressRate::Line(double value, double maximum, Time now) {
  const bool isLast = value >= maximum;
  if (!m_samples.empty() && !isLast && now - m_samples.back().time < kLeastGap) return std::nullopt;
  if (!m_samples.empty() && value < m_samples.back().value) m_samples.clear();
  m_samples.push_back({now, value});
  while (m_samples.size() > 2 && now - m_samples[1].time >= kMeasured)
    m_samples.pop_front();
  std::string line = Size(value) + " of " + Size(maximum);
  const double seconds = Seconds(now - m_samples.front().time);
  const double bytes = value - m_samples.front().value;
  if (seconds < Seconds(kLeastGap) || bytes <= 0) return line;
  line += ", " + Rate(static_cast<std::int64_t>(bytes), seconds);
  const double rest = (maximum - value) / bytes * seconds;
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
