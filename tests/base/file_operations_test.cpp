#include <unistd.h>

#include <cerrno>

#include "base/copy_file.h"
#include "base/destruction.h"
#include "base/file_streams.h"
#include "base/permissions.h"
#include "base/trash.h"
#include "tests/base/files_bench.h"

namespace tarnel::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::size_t block = std::size_t{1024} * 1024;

class CopyFileTest : public FilesBench {
 protected:
  bool Copy(Files& through) {
    try {
      CopyFile(through, folder / "from", folder / "to", Durability::WrittenThrough);
      return true;
    } catch (const Error&) {
      return false;
    }
  }
};

TEST_F(CopyFileTest, CopiesEverySizeAroundABlockWithItsMode) {
  for (const std::size_t size : {std::size_t{0}, block - 1, block, block + 1, 2 * block + 7}) {
    const std::string bytes = Pattern(size);
    std::vector<Length> seen = {0};
    CopyFile(posix, folder.Put("from", bytes, 0400), folder / "to", Durability::Cached,
             [&](Length soFar) { seen.push_back(soFar); });
    EXPECT_FALSE(Copy(posix)) << "the name is taken";
    EXPECT_EQ(ReadAll(folder / "to"), bytes);
    EXPECT_EQ(posix.Stat(folder / "to")->mode, 0400U);
    EXPECT_GE(seen.size(), 1 + (size + block - 1) / block);
    EXPECT_EQ(seen.back(), static_cast<Length>(size));
    posix.Remove(folder / "to");
  }
}

TEST_F(CopyFileTest, AFailureAnywhereLeavesNoPart) {
  folder.Put("from", Pattern(2 * block + 7));
  FailEach([this](FaultyFiles& files, bool fails) {
    EXPECT_EQ(Copy(files), !fails);
    if (!fails) posix.Remove(folder / "to");
    EXPECT_THAT(folder.Names(), ElementsAre("from"));
  });
  const auto stop = [](Length) { throw 1; };
  EXPECT_THROW(CopyFile(posix, folder / "from", folder / "to", Durability::Cached, stop), int);
  EXPECT_THAT(folder.Names(), ElementsAre("from"));
}

TEST_F(CopyFileTest, ASourceThatGrowsMeanwhileIsNoBackup) {
  folder.Put("from", Pattern(10));
  FaultyFiles files(posix);
  files.before = [&](const Operation& operation) {
    if (operation.name == "File.WriteAt") folder.Put("from", Pattern(20));
  };
  EXPECT_FALSE(Copy(files));
  EXPECT_THAT(folder.Names(), ElementsAre("from"));
}

TEST_F(CopyFileTest, WrittenThroughSyncsBeforeTheClose) {
  folder.Put("from", "x");
  FaultyFiles files(posix);
  ASSERT_TRUE(Copy(files));
  std::vector<std::string> names = OperationsOf(files);
  names.erase(names.begin(), names.end() - 2);
  EXPECT_THAT(names, ElementsAre("File.Sync", "File.Close"));
}

TEST_F(CopyFileTest, AHostileStretchIsAnErrorWhereverItPoints) {
  const auto file = posix.OpenToRead(folder.Put("f", "0123456789"));
  const std::pair<std::int64_t, Length> nonsense[] = {
      {0, 1}, {1, -1}, {INT64_MAX, 1}, {2, INT64_MAX}, {INT64_MIN, INT64_MIN}};
  for (const auto& [from, length] : nonsense)
    EXPECT_THROW(FileSource(*file, "f", {from}, length), Error) << from << " " << length;
  std::vector<std::uint8_t> into(100);
  for (const auto& [from, length] : {std::pair<std::int64_t, Length>{5, 7}, {1000, 1}, {1, 1LL << 40}})
    EXPECT_THROW(FileSource(*file, "f", {from}, length).Read(into), Error) << from;
}

class PermissionsTest : public FilesBench {
 protected:
  /// The mode of a new file after TakeAccessOf a model with this mode, where `refused` says EPERM.
  mode_t Taken(mode_t mode, const std::string& refused, gid_t group = 12345) {
    const auto model = posix.OpenToRead(folder.Put("model", "", mode));
    if (::geteuid() == 0) posix.OpenToChange(folder / "model")->SetOwner(1234, group);
    FaultyFiles files(posix);
    files.Fail({.number = ErrorNumber::PermissionDenied,
                .code = EPERM,
                .times = Times::FromThenOn,
                .counts = [&](const Operation& operation) { return operation.name == refused; }});
    posix.SetMode(folder / "model", mode);
    const auto file = files.CreateNew(folder / "new", 0600);
    TakeAccessOf(*model, *file, mode);
    const FileStat stat = file->Stat();
    EXPECT_EQ(stat.group == group, refused != "File.SetOwner");
    posix.Remove(folder / "new");
    return stat.mode;
  }
};

TEST_F(PermissionsTest, NobodyGainsWhereTheGroupCannotBeGiven) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root gives files away";
  EXPECT_EQ(Taken(0640, ""), 0640U);
  EXPECT_EQ(Taken(0640, "File.SetOwner"), 0600U);
  EXPECT_EQ(Taken(0664, "File.SetOwner"), 0644U);
  EXPECT_EQ(Taken(0604, "File.SetOwner"), 0600U);
}

TEST_F(PermissionsTest, AFileSystemWithoutModesIsGoodEnoughUnlessItAllowsLess) {
  FaultyFiles files(posix);
  files.Fail({.number = ErrorNumber::PermissionDenied,
              .code = EPERM,
              .times = Times::FromThenOn,
              .counts = [](const Operation& operation) { return operation.name == "File.SetMode"; }});
  const auto file = files.OpenToRead(folder.Put("f", "", 0755));
  EXPECT_NO_THROW(SettleMode(*file, 0644));
  EXPECT_THROW(SettleMode(*file, 0775), Error);
}

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
  posix.CreateFolder(folder / "tree/closed", 0700);
  posix.SetMode(folder / "tree/closed", 0000);
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
