#include "base/destruction.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/faulty_files.h"
#include "tests/support/scripted_dialogue.h"
#include "tests/support/temp_folder.h"

namespace tarnel {
namespace {

using test::FaultyFiles;
using test::Operation;
using test::Pattern;
using test::ReadAll;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DestructionTest : public ::testing::Test {
 protected:
  // Keeps the bytes that the last sync before the deletion put on the medium.
  FaultyFiles Watched() {
    FaultyFiles files(posix);
    files.before = [this](const Operation& operation) {
      if (operation.name == "File.Close") atClose = ReadAll(operation.path);
    };
    return files;
  }

  std::vector<std::string> NamesOf(const FaultyFiles& files) {
    std::vector<std::string> names;
    for (const Operation& operation : files.Record())
      names.push_back(operation.name);
    return names;
  }

  test::TempFolder folder;
  PosixFiles posix;
  test::Scripted<> person;
  std::string atClose;
};

TEST_F(DestructionTest, BlanksReachBeyondTheOldEndBeforeTheFileGoes) {
  const std::pair<std::size_t, std::size_t> blocksOf[] = {{0, 1},    {1, 1},    {4095, 1},
                                                          {4096, 2}, {8192, 3}, {3 * 1024 * 1024 + 5, 769}};
  for (const auto& [size, blocks] : blocksOf) {
    const Path path = folder.Put("f", Pattern(size));
    FaultyFiles files = Watched();
    EXPECT_TRUE(OverwriteAndKill(path, person, files));
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
  EXPECT_THAT(NamesOf(files), ElementsAre("Files.Stat", "Files.OpenToChange", "File.Stat", "File.Stat",
                                          "File.WriteAt", "File.WriteAt", "File.WriteAt", "File.WriteAt",
                                          "File.Sync", "File.Close", "Files.Remove", "Files.Stat"));
}

TEST_F(DestructionTest, ALinkGoesAndItsTargetKeepsItsBytes) {
  const Path target = folder.Put("target", "keep");
  EXPECT_EQ(::symlink("target", (folder / "link").c_str()), 0);
  EXPECT_TRUE(OverwriteAndKill(folder / "link", person, posix));
  EXPECT_THAT(folder.Names(), ElementsAre("target"));
  EXPECT_EQ(ReadAll(target), "keep");
}

TEST_F(DestructionTest, ALinkSlippedInBeforeTheOpenIsNotFollowed) {
  const Path target = folder.Put("target", "keep");
  const Path path = folder.Put("f", "x");
  FaultyFiles files(posix);
  files.before = [&](const Operation& operation) {
    if (operation.name != "Files.OpenToChange") return;
    posix.Remove(path);
    EXPECT_EQ(::symlink("target", path.c_str()), 0);
  };
  person.script.Expect("destroy.error", Answer::Abort);
  EXPECT_FALSE(OverwriteAndKill(path, person, files));
  EXPECT_EQ(ReadAll(target), "keep");
}

TEST_F(DestructionTest, AllNamesOfAFileShowTheBlanks) {
  const Path path = folder.Put("f", "secret");
  EXPECT_EQ(::link(path.c_str(), (folder / "other").c_str()), 0);
  EXPECT_TRUE(OverwriteAndKill(path, person, posix));
  EXPECT_EQ(ReadAll(folder / "other"), std::string(4096, ' '));
}

TEST_F(DestructionTest, AReadOnlyFileStaysAfterAbortAndGoesUnwipedAfterIgnore) {
  const Path path = folder.Put("f", "secret", 0444);
  const test::OrdinaryUser user(folder);
  person.script.Expect("destroy.error", Answer::Abort);
  EXPECT_FALSE(OverwriteAndKill(path, person, posix));
  EXPECT_EQ(ReadAll(path), "secret");
  EXPECT_EQ(person.script.Asked()[0].text,
            "Error: 70\n\rcannot open " + path.native() + ": permission denied");
  person.script.Expect("destroy.error", Answer::Ignore);
  EXPECT_TRUE(OverwriteAndKill(path, person, posix));
}

TEST_F(DestructionTest, AFolderIsNeverMistakenForAFile) {
  folder.Put("d/f", "x");
  person.script.Expect("destroy.error", Answer::Ignore).Expect("destroy.error", Answer::Ignore);
  EXPECT_FALSE(OverwriteAndKill(folder / "d", person, posix));
  EXPECT_THAT(folder.Names(), ElementsAre("d", "d/f"));
}

TEST_F(DestructionTest, TheResultTellsTheTruthWhicheverStepFailsAndWhateverIsAnswered) {
  FaultyFiles quiet(posix);
  ASSERT_TRUE(OverwriteAndKill(folder.Put("f", Pattern(5000)), person, quiet));
  for (const Answer answer : {Answer::Retry, Answer::Ignore, Answer::Abort}) {
    for (std::size_t k = 1; k <= quiet.Count(); ++k) {
      const Path path = folder.Put("f", Pattern(5000));
      FaultyFiles files = Watched();
      files.Fail({.at = k, .writes = test::Writes::FirstHalf});
      test::Scripted<> one;
      one.script.Always("destroy.error", answer);
      const bool result = OverwriteAndKill(path, one, files);
      const bool isGone = !posix.Stat(path).has_value();
      EXPECT_FALSE(result && !isGone) << k;
      EXPECT_FALSE(one.script.Asked().empty()) << k;
      EXPECT_FALSE(result && answer == Answer::Abort) << k;
      if (answer != Answer::Retry) continue;
      EXPECT_TRUE(result) << k;
      EXPECT_EQ(atClose, std::string(8192, ' ')) << k;
    }
  }
}

TEST_F(DestructionTest, NothingThereIsGoneAlready) {
  EXPECT_TRUE(OverwriteAndKill(folder / "missing", person, posix));
  RemovePath(folder / "missing", person, posix);
  RemovePath(folder / "missing/deeper/", person, posix);
}

TEST_F(DestructionTest, RemovePathTakesAWriteProtectedTreeAndLeavesWhatLinksPointTo) {
  folder.Put("tree/a/b/c/f", "x", 0400);
  folder.Put("tree/\n\xff", "x");
  folder.Put("outside/keep", "x");
  EXPECT_EQ(::symlink("../outside", (folder / "tree/link").c_str()), 0);
  ::mkfifo((folder / "tree/pipe").c_str(), 0600);
  posix.SetMode(folder / "tree/a/b", 0555);
  const test::OrdinaryUser user(folder);
  RemovePath(folder / "tree/", person, posix);
  EXPECT_THAT(folder.Names(), ElementsAre("outside", "outside/keep"));
}

TEST_F(DestructionTest, RemovePathOnALinkToAFolderTakesTheLink) {
  folder.Put("outside/keep", "x");
  EXPECT_EQ(::symlink("outside", (folder / "link").c_str()), 0);
  RemovePath(folder / "link", person, posix);
  EXPECT_THAT(folder.Names(), ElementsAre("outside", "outside/keep"));
}

TEST_F(DestructionTest, RemovePathFinishesOnRetryWhereverItFailed) {
  const auto tree = [this] {
    folder.Put("tree/a/f", "x");
    folder.Put("tree/g", "x");
    return folder / "tree";
  };
  FaultyFiles quiet(posix);
  RemovePath(tree(), person, quiet);
  for (std::size_t k = 1; k <= quiet.Count(); ++k) {
    FaultyFiles files(posix);
    files.Fail({.at = k});
    person.script.Expect("remove.error", Answer::Retry);
    RemovePath(tree(), person, files);
    EXPECT_THAT(folder.Names(), IsEmpty()) << k;
  }
}

TEST_F(DestructionTest, SlowMediaDontStopTheYields) {
  for (const auto& [slow, microseconds] : {std::pair{"File.WriteAt", 1000U}, {"File.Sync", 300000U}}) {
    FaultyFiles files(posix);
    files.before = [name = slow, time = microseconds](const Operation& operation) {
      if (operation.name == name) ::usleep(time);
    };
    person.script.ForgetTranscript();
    EXPECT_TRUE(OverwriteAndKill(folder.Put("f", Pattern(std::size_t{150} * 4096)), person, files));
    EXPECT_GE(person.script.Yields(), 3U) << slow;  // 300 ms of work
  }
}

}  // namespace
}  // namespace tarnel
