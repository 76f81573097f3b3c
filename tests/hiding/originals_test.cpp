#include <gtest/gtest.h>

#include "tests/hiding/hide_bench.h"
#include "tests/support/surroundings.h"

namespace tarnel::test {

namespace {

/// Rows in "sources", of which "sources" itself was chosen; the trash lies beside it.
struct OriginalsBench : HideBench {
  OriginalsBench() {
    request.chosen = {folder / "sources"};
    script.Always("trash.confirm", Answer::Yes);
  }

  /// The originals that are left.
  std::vector<Path> Run(Originals originals) {
    request.originals = originals;
    return RunHide().originalsLeft;
  }
  bool Stands(const std::string& name) const { return std::filesystem::exists(folder / name); }

  Variable dataHome{"XDG_DATA_HOME", folder / "data"};
};

}  // namespace

TEST(HiddenOriginals, AreDestroyedAndThenChosenFoldersWithoutDirectFiles) {
  OriginalsBench bench;
  bench.Row("a.txt", "content").Row("deep/b.txt", "more");
  bench.folder.Put("sources/deep/never-selected", "x");
  bench.request.chosen.push_back(bench.folder.Put("second/never-selected", "x").parent_path());
  EXPECT_TRUE(bench.Run(Originals::Destroy).empty());
  EXPECT_FALSE(bench.Stands("sources"));  // with the subfolder and what was in it
  EXPECT_TRUE(bench.Stands("second/never-selected"));
}

TEST(HiddenOriginals, GoToTheTrashAsChosenAndNotRowsFromElsewhere) {
  OriginalsBench bench;
  bench.Row("a.txt", "content").Row("b.txt", "more");
  bench.request.chosen = {bench.Source("a.txt"), bench.folder.Put("sources/removed-row", "x")};
  EXPECT_EQ(bench.Run(Originals::Trash), std::vector<Path>{bench.Source("b.txt")})
      << "the person hears of it";
  EXPECT_EQ(bench.script.Asked().at(0).id, "trash.confirm");
  EXPECT_FALSE(bench.Stands("sources/a.txt"));
  EXPECT_FALSE(bench.Stands("sources/removed-row"));
  EXPECT_TRUE(bench.Stands("sources/b.txt"));
  EXPECT_EQ(ReadAll(bench.folder / "data/Trash/files/a.txt"), "content");
}

TEST(HiddenOriginals, AreNamedWhereTheTrashFails) {
  OriginalsBench bench;
  bench.Row("a.txt", "content");
  bench.files.Fail(FailingCall("Files.Rename", bench.folder / "sources"));
  bench.script.Expect("trash.error", Answer::Ignore).Expect("hide.trash-failed", Answer::Ok);
  EXPECT_EQ(bench.Run(Originals::Trash), bench.request.chosen);
}

TEST(HiddenOriginals, StayIfTheirEntryDoesNotReadBackAsTheyAre) {
  // The original itself, that it has grown, the payload of the first row, its record, and the payload of the
  // second.
  for (const Length position : {0, 1, 1001 + 16, 1001 + 32 + 7, 1001 + 32 + 7 + 30}) {
    for (const Originals originals : {Originals::Destroy, Originals::Trash}) {
      OriginalsBench bench;
      bench.Row("deep/a.txt", "content").Row("b.txt", "more");
      bench.files.before = [&](const Operation& operation) {  // between the sync and the reading back
        if (operation.name != "Files.Remove" || operation.path != BackupPath(bench.carrier)) return;
        if (position == 0) return WriteAll(bench.Source("deep/a.txt"), "CONTENT");
        if (position == 1) return WriteAll(bench.Source("deep/a.txt"), "content and more");
        bench.FlipBit(position, 3);
      };
      const std::vector<Path> left = bench.Run(originals);
      EXPECT_TRUE(bench.Stands("sources/deep/a.txt"));
      EXPECT_EQ(bench.Stands("sources/b.txt"), originals == Originals::Trash);
      EXPECT_EQ(left.at(0), bench.Source("deep/a.txt"));
      EXPECT_EQ(left.at(1), bench.folder / "sources");
    }
  }
}

TEST(HiddenOriginals, StayIfTheyChangedAfterTheyWereComparedWithAllFoldersAbove) {
  for (const Originals originals : {Originals::Destroy, Originals::Trash}) {
    OriginalsBench bench;
    bench.Row("b.txt", "more").Row("deep/a.txt", "content");
    int looks = 0;  // the first row is opened for reading back behind the second
    bench.files.before = [&](const Operation& operation) {
      if (operation.path != bench.Source("b.txt") || operation.name != "Files.OpenToRead" || ++looks < 2)
        return;
      WriteAll(bench.Source("deep/a.txt"), "CONTENT");
    };
    EXPECT_EQ(bench.Run(originals).at(0),
              originals == Originals::Trash ? bench.folder / "sources" : bench.Source("deep/a.txt"));
    EXPECT_EQ(ReadAll(bench.Source("deep/a.txt")), "CONTENT");
  }
}

TEST(HiddenOriginals, OfOneFileWithTwoNamesStayIfOneNameWasLeftOutAndElseGo) {
  for (const bool isLeftOut : {true, false}) {
    OriginalsBench bench;
    bench.Row("a.txt", "content");
    std::filesystem::create_hard_link(bench.Source("a.txt"), bench.Source("b.txt"));
    bench.RowOf(bench.Source("b.txt"));
    if (isLeftOut) {
      bench.files.Fail(FailingCall("Files.OpenToRead", bench.Source("b.txt")));
      bench.script.Expect("hide.error", Answer::Ignore);
    }
    bench.Run(Originals::Destroy);
    EXPECT_EQ(bench.Stands("sources/b.txt"), isLeftOut);
    EXPECT_TRUE(!isLeftOut || ReadAll(bench.Source("a.txt")) == "content");
  }
}

TEST(HiddenOriginals, StayIfTheirRowWasLeftOutWithAllFoldersAbove) {
  OriginalsBench bench;
  bench.Row("deep/a.txt", "content").Row("b.txt", "more");
  bench.files.Fail(FailingCall("Files.OpenToRead", bench.Source("deep/a.txt")));
  bench.script.Expect("hide.error", Answer::Ignore);
  bench.request.originals = Originals::Destroy;
  const HideResult result = bench.RunHide();
  EXPECT_EQ(result.leftOut, std::vector<Path>{bench.Source("deep/a.txt")});
  EXPECT_TRUE(bench.Stands("sources/deep/a.txt"));
  EXPECT_FALSE(bench.Stands("sources/b.txt"));
  EXPECT_EQ(result.originalsLeft, std::vector<Path>{bench.folder / "sources"});
}

TEST(HiddenOriginals, OfAChosenFolderAboveTheCarrierNeverTakeTheCarrierAlong) {
  for (const Originals originals : {Originals::Destroy, Originals::Trash}) {
    OriginalsBench bench;
    bench.folder.Put("sources/sub/carrier.png", Pattern(500));
    std::filesystem::create_directory_symlink(bench.folder / "sources/sub", bench.folder / "shortcut");
    bench.current.CurrentCarrierPath = bench.folder / "shortcut/carrier.png";
    bench.Row("a.txt", "content");
    EXPECT_EQ(bench.Run(originals), bench.request.chosen);
    EXPECT_TRUE(bench.Stands("sources/sub/carrier.png"));
  }
}

TEST(HiddenOriginals, ThatAreLinksGoWithoutWhatTheyPointTo) {
  OriginalsBench bench;
  const Path target = bench.folder.Put("target", "content");
  std::filesystem::create_directory(bench.folder / "sources");
  std::filesystem::create_symlink(target, bench.Source("link"));
  bench.RowOf(bench.Source("link"));
  EXPECT_EQ(bench.Run(Originals::Destroy), std::vector<Path>{target}) << "the plain bytes are not gone";
  EXPECT_FALSE(std::filesystem::is_symlink(bench.Source("link")));
  EXPECT_EQ(ReadAll(target), "content");
  EXPECT_EQ(bench.Found(), (ContentsByName{{"link", "content"}}));
}

TEST(HiddenOriginals, ThatCannotBeOverwrittenAreDeletedAllTheSame) {
  OriginalsBench bench;
  bench.Row("a.txt", "content");
  bench.files.Fail(FailingCall("Files.OpenToChange", bench.Source("a.txt")));
  bench.script.Expect("destroy.error", Answer::Abort);
  EXPECT_TRUE(bench.Run(Originals::Destroy).empty());
  EXPECT_FALSE(bench.Stands("sources/a.txt"));
}

}  // namespace tarnel::test
