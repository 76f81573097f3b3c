#include <gtest/gtest.h>

#include "tests/proof/kill_campaign.h"

namespace tarnel::test {

TEST(Kill, AtAnyFileCallLosesNothing) {
  EXPECT_EQ(SampleKills(Victim(), 100, 1), 100U);
}

TEST(Kill, OfTheRealProgramLosesNothing) {
  EXPECT_EQ(SampleKills(Victim(TARNEL_CLI, TARNEL_INTERPOSER), 10, 2), 10U);
}

}  // namespace tarnel::test
