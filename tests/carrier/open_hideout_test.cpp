#include "carrier/open_hideout.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/carrier/carrier_bench.h"

namespace tarnel::test {

namespace {

std::ptrdiff_t TriesShown(const CarrierBench& bench) {
  const Strings& shown = bench.screen.script.Transcript();
  return std::count_if(shown.begin(), shown.end(), [](auto& line) { return line.starts_with("try "); });
}

}  // namespace

TEST(TryPassword, FindsEveryOfferedAlgorithmWithinItsTries) {
  const std::pair<Algorithm, int> failedBefore[] = {{Algorithm::Rijndael256, 0}, {Algorithm::Cast5, 1},
                                                    {Algorithm::Des, 2},         {Algorithm::Blowfish, 6},
                                                    {Algorithm::Serpent256, 7},  {Algorithm::TripleDes, 8},
                                                    {Algorithm::Twofish, 9}};
  for (const auto& [algorithm, tries] : failedBefore) {
    CarrierBench bench(1000);
    bench.Hide({"a"}, {"secret", algorithm});
    EXPECT_EQ(bench.TryPassword("secret"), LoadResult::Loaded);
    EXPECT_EQ(TriesShown(bench), tries);
    EXPECT_EQ(bench.current.CurrentAlgorithmId, algorithm);
    bench.Hide({"b"}, {"other"});
    bench.catalogue.RemoveCarrier(bench.carrier);
    bench.screen.script.ForgetTranscript();
    EXPECT_EQ(bench.TryPassword("secret"), LoadResult::Loaded);
    EXPECT_EQ(TriesShown(bench), 10 + tries) << "behind a newer entry it takes the second ten";
  }
}

TEST(TryPassword, FailsAfterTwentyWalksAndOnceAbortedReadsNoMoreEntries) {
  for (const bool isAborted : {false, true}) {
    CarrierBench bench(1000);
    bench.Hide({"a"}).Hide({"b"}, {"other"});
    bool blocked = true;
    bench.screen.script.onYield = [&](std::size_t) {
      bench.guards.AbortReadingFlag = isAborted;
      blocked = blocked && bench.guards.TreeClickBlocked && bench.guards.ReadingBusy;
    };
    EXPECT_EQ(bench.TryPassword(isAborted ? "secret" : "wrong"), LoadResult::NotFound);
    EXPECT_TRUE(blocked) << "reading counts as running from the key derivation on";
    EXPECT_EQ(TriesShown(bench), 20);
    EXPECT_TRUE(bench.catalogue.Roots().empty());
    EXPECT_FALSE(bench.guards.ReadingBusy || bench.guards.TreeClickBlocked || bench.guards.AbortReadingFlag);
  }
}

TEST(TryPassword, EndsAsASuccessWhereTheOpenHideoutIsKept) {
  CarrierBench bench(1000);
  bench.Hide({"a"}).Load();
  bench.screen.script.Expect("load.reload", Answer::No);
  EXPECT_EQ(bench.TryPassword("secret"), LoadResult::KeptOpen);
}

TEST(NewHideout, IsRefusedWhereItsCarrierIsMissingOrItsTextsWouldBreakTags) {
  CarrierBench bench(10);
  const std::pair<Path, std::optional<NewHideoutFault>> cases[] = {
      {bench.folder / "missing", NewHideoutFault::CarrierMissing},
      {bench.folder.Where(), NewHideoutFault::CarrierMissing},
      {bench.carrier, std::nullopt}};
  for (const auto& [carrier, fault] : cases)
    EXPECT_EQ(CheckNewHideout(carrier, Secret("p"), Secret("p"), " t", bench.posix), fault);
  std::string title, password;
  for (int code = 1; code < 256; ++code) {
    const char c = static_cast<char>(code);
    if (TitleRefuses(c)) title += c;
    if (NewPasswordRefuses(c)) password += c;
  }
  EXPECT_EQ(title, "/<>\\");
  EXPECT_EQ(password, "<>");
}

}  // namespace tarnel::test
