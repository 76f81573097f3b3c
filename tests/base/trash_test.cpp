#include "base/trash.h"

#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/destruction.h"
#include "tests/support/faulty_files.h"
#include "tests/support/scripted_dialogue.h"
#include "tests/support/temp_folder.h"

namespace tarnel {
namespace {

using test::FaultyFiles;
using test::ReadAll;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;

const std::string user = std::to_string(::geteuid());

// Lets a folder look like the top of a file system of its own.
class MountedFiles : public PosixFiles {
 public:
  explicit MountedFiles(Path top) : m_top(std::move(top)) {}

  std::optional<FileStat> Stat(const Path& path, Links links) override {
    std::optional<FileStat> stat = PosixFiles::Stat(path, links);
    if (stat && path.native().starts_with(m_top.native())) stat->device = 12345;
    return stat;
  }

 private:
  Path m_top;
};

class TrashTest : public ::testing::Test {
 protected:
  TrashTest() { ::setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1); }
  ~TrashTest() override { ::unsetenv("XDG_DATA_HOME"); }

  std::string Info(const std::string& name) {
    return ReadAll(folder / ("data/Trash/info/" + name + ".trashinfo"));
  }
  bool IsThere(const std::string& name) {
    return posix.Stat(folder / name, Files::Links::DontFollow).has_value();
  }

  ShellDeleteResult Delete(const std::vector<Path>& paths, Files& files) {
    return ShellDelete(paths, person, files);
  }

  test::TempFolder folder;
  PosixFiles posix;
  MountedFiles mounted{folder / "mnt"};
  test::Scripted<> person;
};

TEST_F(TrashTest, AFileCanBeFoundAndBroughtBack) {
  const Path path = folder.Put("with blank/a%\n\xff.txt", "kept");
  Trash(posix, HomeTrash()).Put(path);
  EXPECT_EQ(ReadAll(folder / "data/Trash/files/a%\n\xff.txt"), "kept");
  EXPECT_FALSE(IsThere("with blank/a%\n\xff.txt"));
  EXPECT_THAT(
      Info("a%\n\xff.txt"),
      MatchesRegex("\\[Trash Info\\]\nPath=" + folder.Where().native() +
                   "/with%20blank/a%25%0A%FF\\.txt\nDeletionDate=[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}\n"));
  for (const char* name : {"data/Trash", "data/Trash/files", "data/Trash/info"})
    EXPECT_EQ(posix.Stat(folder / name)->mode, 0700U);
}

TEST_F(TrashTest, EqualNamesAndOrphansNeverReplaceEachOther) {
  folder.Put("data/Trash/files/a", "orphan without info");
  folder.Put("data/Trash/info/b.trashinfo", "orphan without file");
  Trash trash(posix, HomeTrash());
  for (const char* name : {"a", "a", "b"})
    trash.Put(folder.Put(name, "new"));
  EXPECT_EQ(ReadAll(folder / "data/Trash/files/a"), "orphan without info");
  EXPECT_EQ(Info("b"), "orphan without file");
  EXPECT_EQ(posix.List(folder / "data/Trash/files").size(), 4U);
  EXPECT_EQ(posix.List(folder / "data/Trash/info").size(), 4U);
}

TEST_F(TrashTest, FoldersLinksAndTheLongestNamesGoToo) {
  folder.Put("dir/f", "x");
  ASSERT_EQ(::symlink("dir", (folder / "link").c_str()), 0);
  const std::string longest(255, 'n');
  folder.Put(longest, "x");
  Trash trash(posix, HomeTrash());
  for (const std::string& name : {std::string("link"), std::string("dir/"), longest})
    trash.Put(folder / name);
  EXPECT_TRUE(IsThere("data/Trash/files/dir/f"));
  EXPECT_THAT(Info("dir"), HasSubstr("/dir\n"));
  EXPECT_EQ(posix.List(folder / "data/Trash/files").size(), 3U);
}

TEST_F(TrashTest, AnotherFileSystemHasItsOwnTrashAtItsTop) {
  Trash(mounted, HomeTrash()).Put(folder.Put("mnt/sub/a b", "x"));
  EXPECT_TRUE(IsThere("mnt/.Trash-" + user + "/files/a b"));
  EXPECT_THAT(ReadAll(folder / ("mnt/.Trash-" + user + "/info/a b.trashinfo")),
              HasSubstr("\nPath=sub/a%20b\n"));
  EXPECT_FALSE(IsThere("data"));

  posix.CreateFolder(folder / "mnt/.Trash", 01777);
  Trash(mounted, HomeTrash()).Put(folder.Put("mnt/c", "x"));
  EXPECT_TRUE(IsThere("mnt/.Trash/" + user + "/files/c"));
}

TEST_F(TrashTest, ASharedTrashThatAnAttackerCouldOwnIsPassedOver) {
  folder.Put("elsewhere/f", "x");
  posix.SetMode(folder / "elsewhere", 01777);
  folder.Put("mnt/a", "x");
  ASSERT_EQ(::symlink("../elsewhere", (folder / "mnt/.Trash").c_str()), 0);
  Trash(mounted, HomeTrash()).Put(folder / "mnt/a");
  posix.Remove(folder / "mnt/.Trash");
  posix.CreateFolder(folder / "mnt/.Trash", 0777);  // not sticky
  Trash(mounted, HomeTrash()).Put(folder.Put("mnt/b", "x"));
  EXPECT_TRUE(IsThere("mnt/.Trash-" + user + "/files/a"));
  EXPECT_TRUE(IsThere("mnt/.Trash-" + user + "/files/b"));
}

TEST_F(TrashTest, WithoutAUsableTrashTheFileStaysAndTheResultSaysSo) {
  folder.Put("elsewhere/f", "x");
  const Path path = folder.Put("mnt/a", "x");
  ASSERT_EQ(::symlink("../elsewhere", (folder / ("mnt/.Trash-" + user)).c_str()), 0);
  const Path other = folder.Put("b", "x");
  person.script.Expect("trash.confirm", Answer::Yes).Expect("trash.error", Answer::Ignore);
  const ShellDeleteResult result = Delete({path, other}, mounted);
  EXPECT_FALSE(result.Succeeded());
  EXPECT_FALSE(result.isAborted);
  EXPECT_THAT(result.outcomes, ElementsAre(TrashOutcome::Failed, TrashOutcome::Moved));
  EXPECT_EQ(person.script.Asked()[1].text,
            "Error: 75\n\rcannot move " + path.native() +
                " to the trash: its file system has no trash that can be used");
  EXPECT_TRUE(IsThere("mnt/a"));
}

TEST_F(TrashTest, NoMovesNothingAndIsNoFailure) {
  const Path path = folder.Put("a\n", "x");
  person.script.Expect("trash.confirm", Answer::No);
  const ShellDeleteResult result = Delete({path}, posix);
  EXPECT_TRUE(result.Succeeded() && result.isAborted);
  EXPECT_EQ(person.script.Asked()[0].text, "Are you sure you want to move \"a\\n\" to the trash?");
  EXPECT_THAT(folder.Names(), ElementsAre("a\n"));
  EXPECT_TRUE(Delete({}, posix).Succeeded());
}

TEST_F(TrashTest, AbortLeavesTheRestUntried) {
  const Path last = folder.Put("c", "x");
  person.script.Expect("trash.confirm", Answer::Yes).Expect("trash.error", Answer::Abort);
  const ShellDeleteResult result = Delete({folder.Put("a", "x"), folder / "missing", last}, posix);
  EXPECT_THAT(result.outcomes,
              ElementsAre(TrashOutcome::Moved, TrashOutcome::Failed, TrashOutcome::NotTried));
  EXPECT_TRUE(result.isAborted && IsThere("c"));
}

TEST_F(TrashTest, AFailureAnywhereLeavesTheFileAndNoInfo) {
  FaultyFiles quiet(posix);
  Trash(quiet, HomeTrash()).Put(folder.Put("first", "x"));
  for (std::size_t k = 1; k <= quiet.Count(); ++k) {
    const Path path = folder.Put("f", "x");
    const std::string home = "data" + std::to_string(k);
    FaultyFiles files(posix);
    files.Fail({.at = k, .number = ErrorNumber::DiskFull, .writes = test::Writes::FirstHalf});
    EXPECT_THROW(Trash(files, folder / home / "Trash").Put(path), Error) << quiet.Record()[k - 1].name;
    EXPECT_TRUE(IsThere("f"));
    EXPECT_FALSE(IsThere(home + "/Trash/info/f.trashinfo")) << quiet.Record()[k - 1].name;
  }
}

}  // namespace
}  // namespace tarnel
