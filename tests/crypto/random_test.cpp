#include "crypto/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>

namespace tarnel {
namespace {

TEST(Random, EveryValueOfTheFillingRangeIsAboutAsFrequent) {
  constexpr int kRounds = 2000;
  std::array<int, 121> counts{};
  for (int i = 0; i < kRounds * 121; ++i) {
    const int value = RandomBetween(100, 220);
    ASSERT_GE(value, 100);
    ASSERT_LE(value, 220);
    ++counts[static_cast<std::size_t>(value - 100)];
  }
  for (const int count : counts)
    EXPECT_NEAR(count, kRounds, kRounds / 5);  // nine standard deviations
}

TEST(Random, TheRangeMayBeOneValueOrAllValues) {
  constexpr int kLowest = std::numeric_limits<int>::min();
  constexpr int kHighest = std::numeric_limits<int>::max();
  EXPECT_EQ(RandomBetween(7, 7), 7);
  EXPECT_EQ(RandomBetween(kHighest, kHighest), kHighest);
  bool negative = false;
  bool positive = false;
  for (int i = 0; i < 200; ++i)
    (RandomBetween(kLowest, kHighest) < 0 ? negative : positive) = true;
  EXPECT_TRUE(negative && positive);
}

// Three quarters of all words: without rejection the lower half of the range would come up twice as often.
TEST(Random, ARangeThatDoesNotDivideTheWordsIsNotBiased) {
  constexpr int kHigh = std::numeric_limits<int>::max();
  constexpr int kLow = kHigh - 0x60000000 - 0x5FFFFFFF;
  constexpr int kRounds = 20000;
  int lowerThird = 0;
  for (int i = 0; i < kRounds; ++i)
    if (RandomBetween(kLow, kHigh) < kLow + 0x40000000) ++lowerThird;
  EXPECT_NEAR(lowerThird, kRounds / 3, kRounds / 30);  // ten standard deviations; biased: a half
}

TEST(Random, FillsEveryByteAnew) {
  std::array<std::uint8_t, 64> first{};
  std::array<std::uint8_t, 64> second{};
  FillRandom(first);
  FillRandom(second);
  EXPECT_NE(first, second);
  EXPECT_FALSE(std::all_of(first.begin() + 32, first.end(), [](std::uint8_t b) { return b == 0; }));
}

}  // namespace
}  // namespace tarnel
