#include "hiding/entry_writer.h"

#include <gtest/gtest.h>

#include "base/attempt.h"
#include "tests/hiding/hide_bench.h"

namespace tarnel::test {

TEST(EntryWriter, YieldsAndLooksForACancelAtEachFullBlockAndNotAtTheRest) {
  HideBench bench;
  bench.script.CancelAtYield(1);
  HideProgress progress;
  const auto carrier = bench.files.OpenToChange(bench.carrier);
  EntryWriter writer(*carrier, bench.Size(), bench.hideScreen, progress);
  writer.Write(AsBytes(Pattern(kCopyBlock + 10)));
  EXPECT_EQ(writer.FinishPayload(), static_cast<Length>(kCopyBlock + 10));
  EXPECT_THROW(writer.Write(AsBytes(Pattern(kCopyBlock))), Stop);
  EXPECT_EQ(bench.script.Yields(), 1U);
}

TEST(EntryWriter, EndsExactlyAtTheLimitAndNeverBehindIt) {
  const Length end = kCarrierLimit - 2 * static_cast<Length>(kCopyBlock) - 4;
  for (const std::size_t excess : {std::size_t{0}, std::size_t{1}}) {
    HideBench bench;
    bench.CutTo(end);  // sparse
    HideProgress progress;
    const auto carrier = bench.files.OpenToChange(bench.carrier);
    EntryWriter writer(*carrier, end, bench.hideScreen, progress);
    writer.Write(AsBytes(Pattern(2 * kCopyBlock)));
    writer.FinishPayload();
    const auto finish = [&] { writer.FinishEntry(std::string(4 + excess, 't')); };
    if (excess == 0)
      EXPECT_NO_THROW(finish());
    else
      EXPECT_THROW(finish(), Stop);
    EXPECT_EQ(bench.Size(), kCarrierLimit - (excess ? 4 : 0));
  }
}

}  // namespace tarnel::test
