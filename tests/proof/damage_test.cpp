#include "tests/proof/damage.h"

#include <gmock/gmock.h>

namespace tarnel::test {

using testing::IsEmpty;

TEST(Damage, IsToldAndCostsNoMoreThanItHits) {
  DamageCampaign campaign;
  campaign.FlipBits(509);
  campaign.FlipLengthBits(401);
  campaign.Cut(251);
  campaign.Append();
  campaign.CutOutAndInsert(1201);
  EXPECT_GT(campaign.Carriers(), 100U);
  EXPECT_THAT(campaign.Findings(), IsEmpty());
}

}  // namespace tarnel::test
