#include "carrier/open_hideout.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "carrier/tags.h"
#include "tests/carrier/carrier_bench.h"

namespace tarnel::test {

namespace {

std::size_t TriesShown(const CarrierBench& bench) {
  const Strings& shown = bench.screen.script.Transcript();
  return static_cast<std::size_t>(std::count_if(
      shown.begin(), shown.end(), [](const std::string& line) { return line.starts_with("try "); }));
}

}  // namespace

TEST(TryPassword, FindsEveryOfferedAlgorithmWithinItsTries) {
  const struct {
    Algorithm algorithm;
    std::size_t failedBefore;
  } cases[] = {{Algorithm::Rijndael256, 0}, {Algorithm::Cast5, 1},      {Algorithm::Des, 2},
               {Algorithm::Blowfish, 6},    {Algorithm::Serpent256, 7}, {Algorithm::TripleDes, 8},
               {Algorithm::Twofish, 9}};
  for (const auto& c : cases) {
    CarrierBench bench(1000);
    bench.Hide({"a"}, {"secret", c.algorithm});
    EXPECT_EQ(bench.TryPassword("secret"), LoadResult::Loaded);
    EXPECT_EQ(TriesShown(bench), c.failedBefore);
    EXPECT_EQ(bench.current.CurrentAlgorithmId, c.algorithm);
    bench.Hide({"b"}, {"other"});
    bench.catalogue.RemoveCarrier(bench.carrier);
    bench.screen.script.ForgetTranscript();
    EXPECT_EQ(bench.TryPassword("secret"), LoadResult::Loaded);
    EXPECT_EQ(TriesShown(bench), 10 + c.failedBefore) << "behind a newer entry it takes the second ten";
  }
}

TEST(TryPassword, FailsAfterTwentyWalksAndLeavesTheGuardsClear) {
  CarrierBench bench(1000);
  bench.Hide({"a"}).Hide({"b"}, {"other"});
  EXPECT_EQ(bench.TryPassword("wrong"), LoadResult::NotFound);
  EXPECT_EQ(TriesShown(bench), 20u);
  EXPECT_FALSE(bench.guards.ReadingBusy || bench.guards.TreeClickBlocked || bench.guards.AbortReadingFlag);
}

TEST(TryPassword, OnceAbortedReadsNoMoreEntriesAndClearsTheFlag) {
  CarrierBench bench(1000);
  bench.Hide({"a"}).Hide({"b"}, {"other"});
  bool blocked = true;
  bench.screen.script.onYield = [&](std::size_t) {
    bench.guards.AbortReadingFlag = true;
    blocked = blocked && bench.guards.TreeClickBlocked && bench.guards.ReadingBusy;
  };
  EXPECT_EQ(bench.TryPassword("secret"), LoadResult::NotFound);
  EXPECT_TRUE(blocked) << "reading counts as running from the key derivation on";
  EXPECT_EQ(TriesShown(bench), 20u);
  EXPECT_TRUE(bench.catalogue.Roots().empty());
  EXPECT_FALSE(bench.guards.AbortReadingFlag);
}

TEST(TryPassword, EndsAsASuccessWhereTheOpenHideoutIsKept) {
  CarrierBench bench(1000);
  bench.Hide({"a"});
  bench.Load();
  bench.screen.script.Expect("load.reload", Answer::No);
  EXPECT_EQ(bench.TryPassword("secret"), LoadResult::KeptOpen);
}

TEST(CreateHideout, ReplacesTheNodeAndNotTheEntries) {
  CarrierBench bench(1000);
  bench.Hide({"a"});
  bench.Load();
  const std::string before = ReadAll(bench.carrier);
  TreeNode& root = CreateHideout(bench.carrier, Secret("pa>ss"), " \xC3\x84 \xD0\x96", Algorithm::TripleDes,
                                 "TripleDES", bench.reading);
  EXPECT_EQ(bench.Names(), Strings{});
  EXPECT_EQ(bench.catalogue.Roots().size(), 1u);
  EXPECT_EQ(std::string_view(root.Tag()),
            "?CarrierFile=<" + bench.carrier.native() +
                ">?CarrierTitel=<carrier.bin>?Passwort=<pa\2010+\235ss>?Algorithm=<TripleDES>"
                "?HideoutTitel=< \304 \201GM\235>");
  EXPECT_EQ(bench.current.CurrentAlgorithmId, Algorithm::TripleDes);
  EXPECT_EQ(ReadAll(bench.carrier), before);
  EXPECT_EQ(bench.TryPassword("secret"), LoadResult::Loaded) << "the old entries are still there";
  EXPECT_EQ(bench.Names(), Strings{"a"});
}

TEST(CheckNewHideout, NamesTheFirstFault) {
  CarrierBench bench(10);
  const Path missing = bench.folder / "missing", folder = bench.folder.Where();
  const struct {
    Path carrier;
    const char *password, *confirmation, *title;
    std::optional<NewHideoutFault> fault;
  } cases[] = {{missing, "", "x", " ", NewHideoutFault::NoPassword},
               {missing, "p", "x", "  ", NewHideoutFault::NoTitle},
               {missing, "p", "P", " t", NewHideoutFault::ConfirmationDiffers},
               {missing, "p", "p", " t", NewHideoutFault::CarrierMissing},
               {folder, "p", "p", "t", NewHideoutFault::CarrierMissing},
               {bench.carrier, "p", "p", " t", std::nullopt}};
  for (const auto& c : cases)
    EXPECT_EQ(CheckNewHideout(c.carrier, Secret(c.password), Secret(c.confirmation), c.title, bench.posix),
              c.fault);
}

TEST(NewHideoutFilters, RefuseWhatWouldBreakTags) {
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
