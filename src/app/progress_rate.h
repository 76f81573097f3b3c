#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>

#include "base/files.h"

namespace tarnel {

/// The line under a progress bar: "38.2 MiB of 1.2 GiB, 210.0 MiB/s, about 6 s left". The rate is that of the
/// last seconds, so that it follows the disk; what is left is not told below one second.
class ProgressRate {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// Another thing is being measured from here on.
  void Restart() { m_samples.clear(); }

  /// The line for `value` bytes of `maximum`; nothing while the last one is younger than a quarter of a
  /// second, so that it can be read. The first and the last value always give one.
  std::optional<std::string> Line(Length value, Length maximum, Time now);

 private:
  struct Sample {
    Time time;
    Length value;
  };
  std::deque<Sample> m_samples;
};

/// "6 s", "4 min", "2 h 5 min".
std::string RestText(double seconds);

}  // namespace tarnel
