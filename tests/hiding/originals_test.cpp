#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/hiding/hide_bench.h"

namespace tarnel::test {

namespace {

/// Rows in "sources", of which "sources" itself was chosen; the trash lies beside it.
class OriginalsTest : public testing::Test {
 protected:
  OriginalsTest() {
    ::setenv("XDG_DATA_HOME", (bench.folder / "data").c_str(), 1);
    bench.request.chosen = {bench.folder / "sources"};
  }
  ~OriginalsTest() override { ::unsetenv("XDG_DATA_HOME"); }

  HideResult Run(Originals originals) {
    bench.request.originals = originals;
    if (originals == Originals::Trash) bench.hideScreen.script.Expect("trash.confirm", Answer::Yes);
    return bench.RunHideOn(files);
  }

  /// Lets the carrier rot at `position` in the moment between its sync and the reading back.
  void FlipBitBehindSync(Length position) {
    files.before = [this, position](const Operation& operation) {
      if (operation.name == "Files.Remove" && operation.path == BackupPath(bench.carrier))
        bench.FlipBit(position, 3);
    };
  }

  bool Stands(const std::string& name) const {
    return std::filesystem::is_symlink(bench.folder / name) || std::filesystem::exists(bench.folder / name);
  }

  HideBench bench;
  FaultyFiles files{bench.posix};
};

}  // namespace

TEST_F(OriginalsTest, DestroyTakesTheRowsAndThenChosenFoldersWithoutDirectFiles) {
  bench.Row("a.txt", "content").Row("deep/b.txt", "more");
  bench.folder.Put("sources/deep/never-selected", "x");
  bench.request.chosen.push_back(bench.folder.Put("second/never-selected", "x").parent_path());
  EXPECT_TRUE(Run(Originals::Destroy).originalsLeft.empty());
  EXPECT_FALSE(Stands("sources"));  // with the subfolder and what was in it
  EXPECT_TRUE(Stands("second/never-selected"));
}

TEST_F(OriginalsTest, TrashTakesWhatWasChosenAndNotRowsFromElsewhere) {
  bench.Row("a.txt", "content").Row("b.txt", "more");
  bench.request.chosen = {bench.Source("a.txt"), bench.folder.Put("sources/removed-row", "x")};
  EXPECT_TRUE(Run(Originals::Trash).originalsLeft.empty());
  EXPECT_FALSE(Stands("sources/a.txt"));
  EXPECT_FALSE(Stands("sources/removed-row"));
  EXPECT_TRUE(Stands("sources/b.txt"));
  EXPECT_EQ(ReadAll(bench.folder / "data/Trash/files/a.txt"), "content");
}

TEST_F(OriginalsTest, ATrashThatFailsIsToldAndNamed) {
  bench.Row("a.txt", "content");
  files.Fail({.at = 1, .times = Times::FromThenOn, .counts = [](const Operation& operation) {
                return operation.name == "Files.Rename";
              }});
  bench.hideScreen.script.Expect("trash.confirm", Answer::Yes)
      .Expect("trash.error", Answer::Ignore)
      .Expect("hide.trash-failed", Answer::Ok);
  bench.request.originals = Originals::Trash;
  const HideResult result = bench.RunHideOn(files);
  EXPECT_EQ(result.ending, HideEnding::Done);
  EXPECT_EQ(result.originalsLeft, bench.request.chosen);
}

TEST_F(OriginalsTest, StayIfTheirEntryDoesNotReadBack) {
  // The payload of the first row, its record, and the payload of the second.
  for (const Length position : {1001 + 16, 1001 + 32 + 7, 1001 + 32 + 7 + 30}) {
    for (const Originals originals : {Originals::Destroy, Originals::Trash}) {
      OriginalsTest_StayIfTheirEntryDoesNotReadBack_Test test;
      test.bench.Row("deep/a.txt", "content").Row("b.txt", "more");
      test.FlipBitBehindSync(position);
      const bool isTrash = originals == Originals::Trash;
      test.bench.request.originals = originals;
      if (isTrash) test.bench.hideScreen.script.Always("trash.confirm", Answer::Yes);
      const HideResult result = test.bench.RunHideOn(test.files);
      EXPECT_EQ(ReadAll(test.bench.Source("deep/a.txt")), "content");
      EXPECT_EQ(test.Stands("sources/b.txt"), isTrash);
      EXPECT_EQ(result.originalsLeft.at(0), test.bench.Source("deep/a.txt"));
      EXPECT_EQ(result.originalsLeft.at(1), test.bench.folder / "sources");
    }
  }
}

TEST_F(OriginalsTest, StayIfTheirRowWasLeftOutWithAllFoldersAbove) {
  bench.Row("deep/a.txt", "content").Row("b.txt", "more");
  files.Fail({.at = 1, .counts = [this](const Operation& operation) {
                return operation.name == "Files.OpenToRead" && operation.path == bench.Source("deep/a.txt");
              }});
  bench.hideScreen.script.Expect("hide.error", Answer::Ignore);
  const HideResult result = Run(Originals::Destroy);
  EXPECT_EQ(result.leftOut, std::vector<Path>{bench.Source("deep/a.txt")});
  EXPECT_TRUE(Stands("sources/deep/a.txt"));
  EXPECT_FALSE(Stands("sources/b.txt"));
  EXPECT_EQ(result.originalsLeft, std::vector<Path>{bench.folder / "sources"});
}

TEST_F(OriginalsTest, OfAChosenFolderAboveTheCarrierNeverTakeTheCarrierAlong) {
  for (const Originals originals : {Originals::Destroy, Originals::Trash}) {
    OriginalsTest_OfAChosenFolderAboveTheCarrierNeverTakeTheCarrierAlong_Test test;
    HideBench& inner = test.bench;
    const Path carrier = inner.folder.Put("sources/sub/carrier.png", Pattern(500));
    std::filesystem::create_directory_symlink(inner.folder / "sources/sub", inner.folder / "shortcut");
    inner.current.CurrentCarrierPath = inner.folder / "shortcut/carrier.png";
    inner.Row("a.txt", "content");
    inner.request.originals = originals;
    const HideResult result = inner.RunHide();
    EXPECT_TRUE(std::filesystem::exists(carrier));
    EXPECT_EQ(result.originalsLeft, inner.request.chosen);
  }
}

TEST_F(OriginalsTest, ThatAreLinksGoWithoutWhatTheyPointTo) {
  bench.Row("b.txt", "other");
  const Path target = bench.folder.Put("target", "content");
  std::filesystem::create_symlink(target, bench.Source("link"));
  bench.request.rows.push_back({.source = bench.Source("link"), .name = "link", .folder = {}});
  EXPECT_TRUE(Run(Originals::Destroy).originalsLeft.empty());
  EXPECT_FALSE(Stands("sources/link"));
  EXPECT_EQ(ReadAll(target), "content");
  EXPECT_EQ(bench.Found(), (Contents{{"b.txt", "other"}, {"link", "content"}}));
}

TEST_F(OriginalsTest, ThatChangedAfterTheyWereHiddenStay) {
  bench.Row("a.txt", "content");
  files.before = [this](const Operation& operation) {
    if (operation.name == "Files.Remove") WriteAll(bench.Source("a.txt"), "CONTENT");
  };
  EXPECT_EQ(Run(Originals::Destroy).originalsLeft, std::vector<Path>{bench.Source("a.txt")});
  EXPECT_EQ(ReadAll(bench.Source("a.txt")), "CONTENT");
}

TEST_F(OriginalsTest, ThatCannotBeOverwrittenAreDeletedAllTheSame) {
  bench.Row("a.txt", "content");
  files.Fail({.at = 1, .counts = [this](const Operation& operation) {
                return operation.name == "Files.OpenToChange" && operation.path == bench.Source("a.txt");
              }});
  bench.hideScreen.script.Expect("destroy.error", Answer::Abort);
  EXPECT_TRUE(Run(Originals::Destroy).originalsLeft.empty());
  EXPECT_FALSE(Stands("sources/a.txt"));
}

}  // namespace tarnel::test
