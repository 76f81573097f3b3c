#include <gtest/gtest.h>

#include "tests/hiding/hide_bench.h"

namespace tarnel::test {

TEST(HideRefusal, ComesForWhatBelongsToTheCarrierBeforeAnythingChanges) {
  for (const std::string name : {"carrier.bin", "sources/../carrier.bin", "link", "second name",
                                 "carrier.bin.bak", "link to backup", "carrier.bin.tmp"}) {
    HideBench bench;
    bench.Row("a.txt", "content").Mode(0444);
    std::filesystem::create_symlink(bench.carrier, bench.folder / "link");
    std::filesystem::create_hard_link(bench.carrier, bench.folder / "second name");
    const Path backup = bench.folder.Put("carrier.bin.bak", "old backup");
    std::filesystem::create_symlink(backup, bench.folder / "link to backup");
    bench.folder.Put("carrier.bin.tmp", "left over");
    bench.RowOf(bench.folder / name);
    const Strings namesBefore = bench.folder.Names();
    try {
      bench.RunHide();
      ADD_FAILURE() << "hid " << name;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::PathFileAccess) << error.Description();
    }
    EXPECT_TRUE(bench.IsOld());
    EXPECT_EQ(ReadAll(backup), "old backup");
    EXPECT_EQ(bench.folder.Names(), namesBefore);
  }
}

TEST(HideRefusal, ComesForALockedCarrierAndForAnAlgorithmWithoutCipher) {
  for (const bool isLocked : {false, true}) {
    HideBench bench;
    bench.Row("a.txt", "content").Mode(0444);
    const auto held = isLocked ? OpenLocked(bench.carrier, bench.posix) : nullptr;
    if (!isLocked) bench.current.CurrentAlgorithmId = Algorithm::Rc4;
    EXPECT_THROW(bench.RunHide(), Error);
    EXPECT_TRUE(bench.IsOld());
    EXPECT_FALSE(bench.BackupExists());
  }
}

TEST(HideRefusal, WithoutABackupNothingIsHiddenEvenIfThatIsIgnored) {
  HideBench bench;
  bench.Row("a.txt", "content").Mode(0444);
  bench.files.LimitSpace(500);
  bench.request.originals = Originals::Destroy;
  bench.script.Expect("hide.error", Answer::Ignore);
  const HideResult result = bench.RunHide();
  EXPECT_EQ(result.leftOut, std::vector<Path>{bench.Source("a.txt")});
  EXPECT_EQ(result.backup, Path());
  EXPECT_TRUE(bench.IsOld());
  EXPECT_FALSE(bench.BackupExists());
  EXPECT_EQ(ReadAll(bench.Source("a.txt")), "content");
}

}  // namespace tarnel::test
