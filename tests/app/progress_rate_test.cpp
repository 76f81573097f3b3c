#include "app/progress_rate.h"

#include <gtest/gtest.h>

namespace tarnel::test {
namespace {

constexpr Length kMiB = 1 << 20;

TEST(ProgressRate, TellsRateAndRestAtMostFourTimesASecond) {
  using namespace std::chrono_literals;
  const struct {
    std::chrono::milliseconds at;
    Length mebibytes;
    const char* line;  ///< null for none
  } steps[] = {
      {0ms, 0, "0 B of 100.0 MiB"},
      {100ms, 5, nullptr},
      {1000ms, 10, "10.0 MiB of 100.0 MiB, 10.0 MiB/s, about 9 s left"},
      {2000ms, 95, "95.0 MiB of 100.0 MiB, 47.5 MiB/s"},  // below a second
      {2100ms, 100, "100.0 MiB of 100.0 MiB, 47.6 MiB/s"},
      {3000ms, 0, "0 B of 100.0 MiB"},  // begun anew
      {4000ms, 10, "10.0 MiB of 100.0 MiB, 10.0 MiB/s, about 9 s left"},
  };
  ProgressRate rate;
  const ProgressRate::Time start{};
  for (const auto& [at, mebibytes, line] : steps)
    EXPECT_EQ(rate.Line(mebibytes * kMiB, 100 * kMiB, start + at).value_or(""), line ? line : "")
        << at.count();
  EXPECT_EQ(RestText(7500), "2 h 5 min");
}

}  // namespace
}  // namespace tarnel::test
