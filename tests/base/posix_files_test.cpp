#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <functional>

#include "base/files.h"
#include "tests/support/temp_folder.h"

namespace tarnel {
namespace {

using test::OrdinaryUser;
using test::ReadAll;
using test::TempFolder;
using ::testing::ElementsAre;
using ::testing::EndsWith;

struct Umask {
  explicit Umask(mode_t mask) : old(::umask(mask)) {}
  ~Umask() { ::umask(old); }
  mode_t old;
};

class PosixFilesTest : public ::testing::Test {
 protected:
  static Error ErrorOf(const std::function<void()>& statement) {
    try {
      statement();
    } catch (const Error& error) {
      return error;
    }
    ADD_FAILURE() << "nothing was thrown";
    return Error(ErrorNumber::ObjectNotSet, "");
  }

  static std::string SocketAt(const Path& path) {
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    EXPECT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(socket);
    return path.filename();
  }

  // Runs `body` in a process of its own; its result is the exit code.
  static int InChild(const std::function<int()>& body) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(body());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  TempFolder folder;
  PosixFiles files;
};

TEST_F(PosixFilesTest, OpensNothingButRegularFilesAndNeverBlocks) {
  ::mkfifo((folder / "pipe").c_str(), 0600);
  ::mkdir((folder / "dir").c_str(), 0700);
  EXPECT_EQ(::symlink("dir", (folder / "link").c_str()), 0);
  SocketAt(folder / "socket");
  for (const char* name : {"pipe", "dir", "link", "socket", "/dev/zero"}) {
    for (const auto open : {&Files::OpenToRead, &Files::OpenToChange}) {
      const Error error = ErrorOf([&] { (files.*open)(folder / name); });
      EXPECT_EQ(error.Number(), ErrorNumber::PathFileAccess) << error.what();
    }
  }
  EXPECT_EQ(ErrorOf([&] { files.OpenToRead(folder / "dir"); }).Description(),
            "cannot open " + (folder / "dir").native() + ": it is a folder");
}

TEST_F(PosixFilesTest, NewFilesAndFoldersHaveExactlyTheirModeWhateverTheUmask) {
  for (const mode_t umask : {0000U, 0022U, 0077U, 0777U}) {
    const Umask guard(umask);
    for (const mode_t mode : {0400U, 0600U, 0644U, 0666U, 0755U}) {
      const std::string name = "f" + std::to_string(umask) + "-" + std::to_string(mode);
      files.CreateNew(folder / name, mode)->Close();
      files.OpenFolder(folder.Where())->CreateNew(name + "b", mode)->Close();
      EXPECT_EQ(files.Stat(folder / name)->mode, mode);
      EXPECT_EQ(files.Stat(folder / (name + "b"))->mode, mode);
    }
  }
  const Umask guard(0077);
  files.CreateFolder(folder / "d", 0755);
  EXPECT_EQ(files.Stat(folder / "d")->mode, 0755U);
}

TEST_F(PosixFilesTest, CreateNewTakesNoNameThatIsTakenNotEvenByADanglingLink) {
  folder.Put("file", "old");
  EXPECT_EQ(::symlink("nowhere", (folder / "link").c_str()), 0);
  for (const char* name : {"file", "link"}) {
    EXPECT_EQ(ErrorOf([&] { files.CreateNew(folder / name, 0600); }).Number(), ErrorNumber::FileExists);
    EXPECT_EQ(ErrorOf([&] { files.OpenFolder(folder.Where())->CreateNew(name, 0600); }).Number(),
              ErrorNumber::FileExists);
  }
  EXPECT_EQ(ReadAll(folder / "file"), "old");
  EXPECT_THAT(folder.Names(), ElementsAre("file", "link"));
}

TEST_F(PosixFilesTest, FolderLeadsNowhereOutside) {
  folder.Put("in/real/file", "x");
  folder.Put("outside/secret", "x");
  EXPECT_EQ(::symlink("../outside", (folder / "in/link").c_str()), 0);
  const auto in = files.OpenFolder(folder / "in");
  const std::string zero("a\0b", 3);
  for (const std::string& name :
       {std::string(), std::string("."), std::string(".."), std::string("a/b"), std::string("/etc"), zero}) {
    for (const std::function<void()>& statement : std::initializer_list<std::function<void()>>{
             [&] { in->Enter(name, Folder::IfMissing::Create); }, [&] { in->Stat(name); },
             [&] { in->CreateNew(name, 0600); }, [&] { in->Remove(name); }, [&] { in->RemoveFolder(name); },
             [&] { in->Rename("real", name); }, [&] { in->Rename(name, "real"); }})
      EXPECT_EQ(ErrorOf(statement).Number(), ErrorNumber::BadFileName) << name;
  }
  for (const auto ifMissing : {Folder::IfMissing::Fail, Folder::IfMissing::Create}) {
    const Error link = ErrorOf([&] { in->Enter("link", ifMissing); });
    EXPECT_EQ(link.Number(), ErrorNumber::BadFileName);
    EXPECT_THAT(link.Description(), EndsWith("it is a symbolic link"));
  }
  const auto real = in->Enter("real", Folder::IfMissing::Fail);
  EXPECT_EQ(ErrorOf([&] { real->Enter("file", Folder::IfMissing::Fail); }).Number(),
            ErrorNumber::BadFileName);
  EXPECT_EQ(ErrorOf([&] { real->Enter("new", Folder::IfMissing::Fail); }).Number(),
            ErrorNumber::PathNotFound);
  EXPECT_EQ(in->Stat("link")->kind, FileKind::SymbolicLink);
  EXPECT_FALSE(in->Stat("missing").has_value());
}

TEST_F(PosixFilesTest, FolderStaysTheSameOneWhenItsPathIsTakenOver) {
  folder.Put("target/keep", "x");
  folder.Put("elsewhere/keep", "x");
  const auto target = files.OpenFolder(folder / "target")->Enter("sub", Folder::IfMissing::Create);
  files.Rename(folder / "target", folder / "moved");
  EXPECT_EQ(::symlink("elsewhere", (folder / "target").c_str()), 0);
  target->CreateNew("file", 0600)->Close();
  EXPECT_TRUE(files.Stat(folder / "moved/sub/file").has_value());
  EXPECT_THAT(files.List(folder / "elsewhere"), ::testing::SizeIs(1));
}

TEST_F(PosixFilesTest, NamesComeBackByteForByteAndSorted) {
  const std::vector<std::string> names = {"\x01\x1b[31m", "a\nb", "ab", "b\\c", "z\xff\xfe", "\xc3\xa9"};
  for (const std::string& name : names)
    files.CreateNew(folder / name, 0600)->Close();
  std::vector<std::string> listed, inFolder;
  for (const FolderEntry& entry : files.List(folder.Where()))
    listed.push_back(entry.name);
  for (const FolderEntry& entry : files.OpenFolder(folder.Where())->List())
    inFolder.push_back(entry.name);
  EXPECT_EQ(listed, (std::vector<std::string>{names[0], names[1], names[2], names[3], names[4], names[5]}));
  EXPECT_EQ(inFolder, listed);
}

TEST_F(PosixFilesTest, AMessageQuotesANameWithoutDrivingTheTerminal) {
  EXPECT_EQ(ErrorOf([&] { files.OpenToRead("no\x1b[2J\n\xff"); }).Description(),
            "cannot open no\\x1b[2J\\n\\xff: no such file or directory");
  EXPECT_EQ(ErrorOf([&] { files.OpenToRead(Path(std::string("a\0b", 3))); }).Number(),
            ErrorNumber::BadFileName);
}

TEST_F(PosixFilesTest, PermissionsCount) {
  folder.Put("locked", "x", 0000);
  folder.Put("read-only", "x", 0444);
  const OrdinaryUser user(folder);
  EXPECT_EQ(ErrorOf([&] { files.OpenToRead(folder / "locked"); }).Description(),
            "cannot open " + (folder / "locked").native() + ": permission denied");
  EXPECT_EQ(ErrorOf([&] { files.OpenToChange(folder / "read-only"); }).Number(),
            ErrorNumber::PermissionDenied);
  const auto file = files.CreateNew(folder / "new", 0400);
  file->WriteAt({1}, AsBytes("born read-only, written all the same"));
  file->Close();
}

TEST_F(PosixFilesTest, ALockHoldsAgainstAnotherProcessUntilClose) {
  const Path path = folder.Put("photo.png", "x");
  const auto tryLock = [&] {
    return InChild([&] {
      try {
        PosixFiles().OpenToChange(path)->Lock();
        return 0;
      } catch (const Error& error) {
        const bool isWorded =
            error.Description() == "cannot lock " + path.native() + ": another Tarnel is working on it";
        return isWorded ? static_cast<int>(error.Number()) : 1;
      }
    });
  };
  const auto file = files.OpenToChange(path);
  file->Lock();
  file->Lock();  // our own lock is no obstacle
  EXPECT_EQ(tryLock(), 70);
  file->Close();
  EXPECT_EQ(tryLock(), 0);
}

TEST_F(PosixFilesTest, AFullDiskIsNumber61AndLeavesTheFrontPart) {
  const int code = InChild([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {1000, 1000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    try {
      PosixFiles().CreateNew(folder / "f", 0600)->WriteAt({501}, AsBytes(std::string(2000, 'a')));
    } catch (const Error& error) {
      return static_cast<int>(error.Number());
    }
    return 0;
  });
  EXPECT_EQ(code, 61);
  EXPECT_EQ(ReadAll(folder / "f"), std::string(500, '\0') + std::string(500, 'a'));
}

TEST_F(PosixFilesTest, ReadsAndWritesAtPositionsFromOne) {
  const auto file = files.CreateNew(folder / "f", 0600);
  file->WriteAt({1}, AsBytes("abcdef"));
  file->WriteAt({3}, AsBytes("XY"));
  std::string into(10, '-');
  const MutableBytes room{reinterpret_cast<std::uint8_t*>(into.data()), into.size()};
  EXPECT_EQ(file->ReadAt({2}, room), 5U);
  EXPECT_EQ(into, "bXYef-----");
  EXPECT_EQ(file->ReadAt({7}, room), 0U);
  EXPECT_EQ(file->ReadAt({1000}, room), 0U);
  for (const std::int64_t position : {std::int64_t{0}, std::int64_t{-5}, INT64_MIN}) {
    EXPECT_EQ(ErrorOf([&] { file->ReadAt({position}, room); }).Number(), ErrorNumber::BadRecordNumber);
    EXPECT_EQ(ErrorOf([&] { file->WriteAt({position}, AsBytes("x")); }).Number(),
              ErrorNumber::BadRecordNumber);
  }
  EXPECT_THROW(file->ReadAt({INT64_MAX}, room), Error);
  file->Truncate(2);
  EXPECT_EQ(file->Size(), 2);
  file->Close();
  file->Close();
  EXPECT_EQ(ReadAll(folder / "f"), "ab");
}

TEST_F(PosixFilesTest, LooksThroughLinksOnlyWhenAsked) {
  EXPECT_EQ(::symlink("nowhere", (folder / "dangling").c_str()), 0);
  EXPECT_FALSE(files.Stat(folder / "dangling").has_value());
  EXPECT_EQ(files.Stat(folder / "dangling", Files::Links::DontFollow)->kind, FileKind::SymbolicLink);
  EXPECT_FALSE(files.Stat(folder.Put("file", "x") / "below").has_value());
}

TEST_F(PosixFilesTest, WorksInTheCurrentFolderByBareNames) {
  const Path old = std::filesystem::current_path();
  std::filesystem::current_path(folder.Where());
  folder.Put("bare", "x");
  EXPECT_NO_THROW(files.SyncFolder(Path("bare").parent_path()));
  EXPECT_THAT(files.List(""), ::testing::SizeIs(1));
  EXPECT_GT(files.FreeSpace(""), 0);
  EXPECT_TRUE(files.OpenFolder("")->Stat("bare").has_value());
  std::filesystem::current_path(old);
}

}  // namespace
}  // namespace tarnel
