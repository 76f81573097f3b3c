#include "base/destruction.h"

#include "tests/base/files_bench.h"

namespace tarnel::test {
namespace {

using testing::IsEmpty;

class DestructionTest : public FilesBench {
 protected:
  /// Keeps the bytes that the last sync before the deletion put on the medium.
  void Watch(FaultyFiles& files) {
    files.before = [this](const Operation& operation) {
      if (operation.name == "File.Close") atClose = ReadAll(operation.path);
    };
  }

  std::string atClose;
};

TEST_F(DestructionTest, BlanksReachBeyondTheOldEndBeforeTheFileGoes) {
  const std::pair<std::size_t, std::size_t> blocksOf[] = {
      {0, 1}, {1, 1}, {4095, 1}, {4096, 2}, {3 * 1024 * 1024 + 5, 769}};
  for (const auto& [size, blocks] : blocksOf) {
    FaultyFiles files(posix);
    Watch(files);
    EXPECT_TRUE(OverwriteAndKill(folder.Put("f", Pattern(size)), person, files));
    EXPECT_EQ(atClose, std::string(blocks * 4096, ' ')) << size;
    EXPECT_THAT(folder.Names(), IsEmpty());
  }
}

TEST_F(DestructionTest, EachBlockGetsLettersThenBlanksAndAllIsSyncedBeforeTheDeletion) {
  const Path path = folder.Put("f", Pattern(4096));
  FaultyFiles files(posix);
  std::vector<std::string> firstBlock;
  files.before = [&](const Operation& operation) {
    if (operation.name == "File.WriteAt" || operation.name == "File.Sync")
      firstBlock.push_back(ReadAll(path).substr(0, 2));
  };
  EXPECT_TRUE(OverwriteAndKill(path, person, files));
  EXPECT_THAT(firstBlock, ElementsAre(Pattern(4096).substr(0, 2), "XX", "  ", "  ", "  "));
  EXPECT_THAT(OperationsOf(files),
              ElementsAre("Files.Stat", "Files.OpenToChange", "File.Stat", "File.Stat", "File.WriteAt",
                          "File.WriteAt", "File.WriteAt", "File.WriteAt", "File.Sync", "File.Close",
                          "Files.Stat", "Files.Remove", "Files.Stat"));
}

TEST_F(DestructionTest, ALinkIsNotFollowedNotEvenOneSlippedInBeforeTheOpen) {
  const Path target = folder.Put("target", "keep");
  Link("target", "link");
  EXPECT_TRUE(OverwriteAndKill(folder / "link", person, posix));
  const Path path = folder.Put("f", "x");
  FaultyFiles files(posix);
  files.before = [&](const Operation& operation) {
    if (operation.name != "Files.OpenToChange") return;
    posix.Remove(path);
    Link("target", "f");
  };
  person.script.Expect("destroy.error", Answer::Abort);
  EXPECT_FALSE(OverwriteAndKill(path, person, files));
  EXPECT_EQ(ReadAll(target), "keep");
}

TEST_F(DestructionTest, AReadOnlyFileStaysAfterAbortAndGoesUnwipedAfterIgnore) {
  const Path path = folder.Put("f", "secret", 0444);
  const OrdinaryUser user;
  person.script.Expect("destroy.error", Answer::Abort).Expect("destroy.error", Answer::Ignore);
  EXPECT_FALSE(OverwriteAndKill(path, person, posix));
  EXPECT_EQ(ReadAll(path), "secret");
  EXPECT_EQ(person.script.Asked().at(0).text,
            "Error: 70\n\rcannot open " + path.native() + ": permission denied");
  EXPECT_TRUE(OverwriteAndKill(path, person, posix));
}

TEST_F(DestructionTest, AFolderIsNeverMistakenForAFileAndNothingIsGoneAlready) {
  folder.Put("d/f", "x");
  person.script.Expect("destroy.error", Answer::Ignore).Expect("destroy.error", Answer::Ignore);
  EXPECT_FALSE(OverwriteAndKill(folder / "d", person, posix));
  EXPECT_THAT(folder.Names(), ElementsAre("d", "d/f"));
  EXPECT_TRUE(OverwriteAndKill(folder / "missing", person, posix));
}

TEST_F(DestructionTest, TheResultTellsTheTruthWhicheverStepFailsAndWhateverIsAnswered) {
  for (const Answer answer : {Answer::Retry, Answer::Ignore, Answer::Abort}) {
    FailEach([this, answer](FaultyFiles& files, bool fails) {
      const Path path = folder.Put("f", Pattern(5000));
      Watch(files);
      Scripted<> one;
      one.script.Always("destroy.error", answer);
      const bool result = OverwriteAndKill(path, one, files);
      EXPECT_FALSE(result && posix.Stat(path));
      EXPECT_EQ(one.script.Asked().empty(), !fails);
      EXPECT_FALSE(result && fails && answer == Answer::Abort);
      if (fails && answer != Answer::Retry) return;
      EXPECT_TRUE(result);
      EXPECT_EQ(atClose, std::string(8192, ' '));
    });
  }
}

TEST_F(DestructionTest, AFileThatChangedSinceItWasSeenIsLeftAlone) {
  const struct {
    const char* moment;
    std::string name, left;
    bool isReplaced;
  } cases[] = {{"Files.Stat", "in place", "NEW", false},
               {"Files.OpenToChange", "in place late", "NEW", false},
               {"Files.Stat", "by another", "NEW", true}};
  for (const auto& c : cases) {
    const Path path = folder.Put(c.name, "old");
    const FileStat seen = posix.OpenToRead(path)->Stat();
    FaultyFiles files(posix);
    files.before = [&](const Operation& operation) {
      if (operation.name != c.moment) return;
      if (c.isReplaced) posix.Rename(folder.Put("saved", c.left), path);
      if (!c.isReplaced) folder.Put(c.name, c.left);
      files.before = {};
    };
    EXPECT_EQ(OverwriteAndKillAsSeen(path, seen, person, files), Destroyed::Changed) << c.name;
    EXPECT_EQ(ReadAll(path), c.left);
  }
}

TEST_F(DestructionTest, AFileSavedInPlaceOfTheOverwrittenOneStays) {
  const Path path = folder.Put("f", "old");
  FaultyFiles files(posix);
  files.before = [&](const Operation& operation) {
    if (operation.name == "File.Close") posix.Rename(folder.Put("saved", "NEW"), path);
  };
  person.script.Expect("destroy.error", Answer::Ignore);
  EXPECT_FALSE(OverwriteAndKill(path, person, files));
  EXPECT_EQ(ReadAll(path), "NEW");
}

TEST_F(DestructionTest, AMediumThatFailsForGoodIsAskedAboutTwiceNotForEachPiece) {
  const Path path = folder.Put("f", Pattern(20 * 1024 * 1024));
  FaultyFiles files(posix);
  files.Fail({.times = Times::FromThenOn,
              .counts = [](const Operation& operation) { return operation.name == "File.Sync"; }});
  person.script.Expect("destroy.error", Answer::Ignore).Expect("destroy.error", Answer::Ignore);
  EXPECT_TRUE(OverwriteAndKill(path, person, files));
}

TEST_F(DestructionTest, RemovePathTakesAWriteProtectedTreeAndLeavesWhatLinksPointTo) {
  folder.Put("tree/a/b/c/f", "x", 0400);
  folder.Put("tree/\n\xff", "x");
  folder.Put("outside/keep", "x");
  Link("../outside", "tree/link");
  Link("outside", "link");
  posix.SetMode(folder / "tree/a/b", 0555);
  posix.CreateFolder(folder / "tree/closed", 0000);
  const OrdinaryUser user;
  for (const char* name : {"tree/", "link", "missing/deeper/"})
    RemovePath(folder / name, person, posix);
  EXPECT_THAT(folder.Names(), ElementsAre("outside", "outside/keep"));
}

TEST_F(DestructionTest, RemovePathFinishesOnRetryWhereverItFailed) {
  FailEach([this](FaultyFiles& files, bool fails) {
    folder.Put("tree/a/f", "x");
    folder.Put("tree/g", "x");
    if (fails) person.script.Expect("remove.error", Answer::Retry);
    RemovePath(folder / "tree", person, files);
    EXPECT_THAT(folder.Names(), IsEmpty());
  });
}

}  // namespace
}  // namespace tarnel::test
