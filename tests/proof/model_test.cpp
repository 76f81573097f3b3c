#include "tests/proof/model.h"

#include <gtest/gtest.h>

namespace tarnel::test {

TEST(Model, EveryHideoutHoldsWhatWasPutInWhateverOperationsFollowEachOther) {
  for (unsigned seed = 1; seed <= 25; ++seed)
    EXPECT_NO_THROW(RandomSequence(seed).Run(20)) << "seed " << seed;
}

}  // namespace tarnel::test
