#include "tests/proof/power_loss.h"

#include <gtest/gtest.h>

namespace tarnel::test {

TEST(PowerLoss, BehindAnyStepLosesNothing) {
  EXPECT_GT(RunPowerLosses(1, 1), 100U);
}

}  // namespace tarnel::test
