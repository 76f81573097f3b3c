#include "base/trash.h"

#include <unistd.h>

#include "base/destruction.h"
#include "tests/base/files_bench.h"

namespace tarnel::test {
namespace {

using testing::HasSubstr;

const std::string user = std::to_string(::geteuid());

/// Lets a folder look like the top of a file system of its own.
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

class TrashTest : public FilesBench {
 protected:
  std::string Info(const std::string& name) {
    return ReadAll(folder / ("data/Trash/info/" + name + ".trashinfo"));
  }
  bool IsThere(const std::string& name) {
    return posix.Stat(folder / name, Files::Links::DontFollow).has_value();
  }

  Variable dataHome{"XDG_DATA_HOME", folder / "data"};
  MountedFiles mounted{folder / "mnt"};
};

TEST_F(TrashTest, AFileCanBeFoundAndBroughtBack) {
  Trash(posix, HomeTrash()).Put(folder.Put("with blank/a%\n\xff.txt", "kept"));
  EXPECT_EQ(ReadAll(folder / "data/Trash/files/a%\n\xff.txt"), "kept");
  EXPECT_FALSE(IsThere("with blank/a%\n\xff.txt"));
  EXPECT_THAT(Info("a%\n\xff.txt"),
              testing::MatchesRegex(
                  "\\[Trash Info\\]\nPath=" + folder.Where().native() +
                  "/with%20blank/a%25%0A%FF\\.txt\nDeletionDate=[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}\n"));
  for (const char* name : {"data/Trash", "data/Trash/files", "data/Trash/info"})
    EXPECT_EQ(posix.Stat(folder / name)->mode, 0700U);
}

TEST_F(TrashTest, EveryKindGoesAndEqualNamesAndOrphansNeverReplaceEachOther) {
  folder.Put("data/Trash/files/a", "orphan without info");
  folder.Put("data/Trash/info/b.trashinfo", "orphan without file");
  Trash trash(posix, HomeTrash());
  for (const std::string& name :
       {std::string("a"), std::string("a"), std::string("b"), std::string(255, 'n')})
    trash.Put(folder.Put(name, "new"));
  EXPECT_EQ(ReadAll(folder / "data/Trash/files/a"), "orphan without info");
  EXPECT_EQ(Info("b"), "orphan without file");
  folder.Put("dir/f", "x");
  Link("dir", "link");
  trash.Put(folder / "link");
  trash.Put(folder / "dir/");
  EXPECT_THAT(Info("dir"), HasSubstr("/dir\n"));
  EXPECT_TRUE(IsThere("data/Trash/files/dir/f"));
  EXPECT_EQ(posix.List(folder / "data/Trash/files").size(), 7U);
  EXPECT_EQ(posix.List(folder / "data/Trash/info").size(), 7U);
}

TEST_F(TrashTest, AnotherFileSystemHasItsOwnTrashAtItsTopButNoneThatAnAttackerCouldOwn) {
  Trash trash(mounted, HomeTrash());
  trash.Put(folder.Put("mnt/sub/a b", "x"));
  const std::string own = "mnt/.Trash-" + user;
  EXPECT_THAT(ReadAll(folder / (own + "/info/a b.trashinfo")), HasSubstr("\nPath=sub/a%20b\n"));
  EXPECT_FALSE(IsThere("data"));
  folder.Put("elsewhere/f", "x");
  posix.SetMode(folder / "elsewhere", 01777);
  Link("../elsewhere", "mnt/.Trash");
  trash.Put(folder.Put("mnt/through a link", "x"));
  posix.Remove(folder / "mnt/.Trash");
  posix.CreateFolder(folder / "mnt/.Trash", 0777);
  trash.Put(folder.Put("mnt/not sticky", "x"));
  posix.SetMode(folder / "mnt/.Trash", 01777);
  trash.Put(folder.Put("mnt/shared", "x"));
  for (const char* name : {"a b", "through a link", "not sticky"})
    EXPECT_TRUE(IsThere(own + "/files/" + name)) << name;
  EXPECT_TRUE(IsThere("mnt/.Trash/" + user + "/files/shared"));
}

TEST_F(TrashTest, WithoutAUsableTrashTheFileStaysAndTheResultSaysSo) {
  folder.Put("elsewhere/f", "x");
  const Path path = folder.Put("mnt/a", "x"), other = folder.Put("b", "x"), last = folder.Put("c", "x");
  Link("../elsewhere", "mnt/.Trash-" + user);
  person.script.Expect("trash.confirm", Answer::Yes).Expect("trash.error", Answer::Ignore);
  person.script.Expect("trash.error", Answer::Abort);
  const ShellDeleteResult result = ShellDelete({path, other, path, last}, person, mounted);
  EXPECT_FALSE(result.Succeeded());
  EXPECT_TRUE(result.isAborted);
  EXPECT_THAT(result.outcomes, ElementsAre(TrashOutcome::Failed, TrashOutcome::Moved, TrashOutcome::Failed,
                                           TrashOutcome::NotTried));
  EXPECT_EQ(person.script.Asked().at(1).text,
            "Error: 75\n\rcannot move " + path.native() +
                " to the trash: its file system has no trash that can be used");
  EXPECT_TRUE(IsThere("mnt/a") && IsThere("c"));
}

TEST_F(TrashTest, NoMovesNothingAndIsNoFailure) {
  person.script.Expect("trash.confirm", Answer::No);
  const ShellDeleteResult result = ShellDelete({folder.Put("a\n", "x")}, person, posix);
  EXPECT_TRUE(result.Succeeded() && result.isAborted);
  EXPECT_EQ(person.script.Asked().at(0).text, "Are you sure you want to move \"a\\n\" to the trash?");
  EXPECT_THAT(folder.Names(), ElementsAre("a\n"));
}

TEST_F(TrashTest, AFailureAnywhereLeavesTheFileAndNoInfo) {
  FailEach([this](FaultyFiles& files, bool fails) {
    Trash trash(files, folder / "data/Trash");
    const Path path = folder.Put("f", "x");
    if (fails) {
      EXPECT_THROW(trash.Put(path), Error);
      EXPECT_TRUE(IsThere("f"));
      EXPECT_FALSE(IsThere("data/Trash/info/f.trashinfo"));
    } else {
      trash.Put(path);
    }
    std::filesystem::remove_all(folder / "data");
  });
}

}  // namespace
}  // namespace tarnel::test
