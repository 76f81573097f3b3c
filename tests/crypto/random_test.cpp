#include "crypto/random.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace tarnel {
namespace {

TEST(Random, GivesEveryValueOfARangeAndNoOther) {
  std::set<int> values;
  for (int i = 0; i < 10000; ++i)
    values.insert(RandomBetween(100, 220));
  EXPECT_EQ(values.size(), 121U);
  EXPECT_EQ(*values.begin(), 100);
  EXPECT_EQ(*values.rbegin(), 220);
  EXPECT_EQ(RandomBetween(7, 7), 7);
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

}  // namespace
}  // namespace tarnel
