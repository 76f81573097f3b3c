#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/posix_calls.h"
#include "tests/base/files_bench.h"

namespace {

int g_syncError = 0, g_lockError = 0;
bool g_isReluctant = false;  ///< every second call is interrupted, and none moves more than three bytes
int g_calls = 0;

bool IsInterrupted() {
  if (!g_isReluctant || ++g_calls % 2 == 0) return false;
  errno = EINTR;
  return true;
}
std::size_t Most(std::size_t length) {
  return g_isReluctant ? std::min<std::size_t>(length, 3) : length;
}

int Failing(int& error, long result) {
  if (error == 0) return static_cast<int>(result);
  errno = std::exchange(error, 0);
  return -1;
}

}  // namespace

// Stand before the C library's: what a medium or a network folder says once.
extern "C" int fsync(int file) {
  return Failing(g_syncError, ::syscall(SYS_fsync, file));
}
extern "C" ssize_t pread(int file, void* into, size_t length, off_t offset) {
  return IsInterrupted() ? -1 : ::syscall(SYS_pread64, file, into, Most(length), offset);
}
extern "C" ssize_t pwrite(int file, const void* bytes, size_t length, off_t offset) {
  return IsInterrupted() ? -1 : ::syscall(SYS_pwrite64, file, bytes, Most(length), offset);
}
extern "C" ssize_t copy_file_range(int source, off64_t* from, int target, off64_t* to, size_t length,
                                   unsigned flags) {
  return IsInterrupted() ? -1 : ::syscall(SYS_copy_file_range, source, from, target, to, Most(length), flags);
}
extern "C" int StandInForFlock(int file, int operation) __asm__("flock");
extern "C" int StandInForFlock(int file, int operation) {
  return Failing(g_lockError, ::syscall(SYS_flock, file, operation));
}

namespace tarnel::test {
namespace {

using namespace std::string_literals;

class PosixFilesTest : public FilesBench {
 protected:
  static ErrorNumber NumberOf(const std::function<void()>& statement) { return ErrorOf(statement).Number(); }
};

TEST_F(PosixFilesTest, OpensNothingButRegularFilesAndNeverBlocks) {
  ::mkfifo((folder / "pipe").c_str(), 0600);
  folder.Put("dir/f", "x");
  Link("dir", "link");
  for (const char* name : {"pipe", "dir", "link", "/dev/zero"}) {
    EXPECT_EQ(NumberOf([&] { posix.OpenToRead(folder / name); }), ErrorNumber::PathFileAccess) << name;
    EXPECT_EQ(NumberOf([&] { posix.OpenToChange(folder / name); }), ErrorNumber::PathFileAccess) << name;
  }
}

TEST_F(PosixFilesTest, MovesAllBytesHoweverOftenItIsInterruptedAndHoweverLittleACallMoves) {
  const std::string text = "some twenty bytes or more";
  folder.Put("source", text);
  const auto source = posix.OpenToRead(folder / "source");
  const auto target = posix.CreateNew(folder / "target", 0600);
  std::string read(text.size() + 5, '.');
  g_isReluctant = true;
  const std::size_t got =
      source->ReadAt(Position{1}, {reinterpret_cast<std::uint8_t*>(read.data()), read.size()});
  target->WriteAt(Position{1}, AsBytes(text));
  const Length copied =
      target->CopyAt(Position{} + static_cast<Length>(text.size()), *source, Position{6}, 100);
  g_isReluctant = false;
  EXPECT_EQ(read.substr(0, got), text);
  EXPECT_EQ(copied, static_cast<Length>(text.size()) - 5);
  EXPECT_EQ(ReadAll(folder / "target"), text + text.substr(5));
}

TEST_F(PosixFilesTest, CanonicalIsOnePathForEverySpelling) {
  folder.Put("dir/f", "x");
  Link("dir/f", "link");
  const Path real = posix.Canonical(folder.Where()) / "dir/f";
  for (const char* spelling : {"dir/f", "./dir/../dir//f", "link"})
    EXPECT_EQ(posix.Canonical(folder / spelling), real) << spelling;
  EXPECT_EQ(NumberOf([&] { posix.Canonical(folder / "gone"); }), ErrorNumber::FileNotFound);
}

TEST_F(PosixFilesTest, NewFilesAndFoldersHaveExactlyTheirModeWhateverTheUmask) {
  for (const mode_t umask : {0000U, 0377U}) {
    const Umask changed(umask);
    for (const mode_t mode : {0400U, 0600U, 0644U, 0777U}) {
      const std::string name = std::to_string(umask) + "-" + std::to_string(mode);
      posix.CreateNew(folder / name, mode);
      posix.OpenFolder(folder.Where())->CreateNew(name + "b", mode);
      posix.CreateFolder(folder / (name + "d"), mode);
      for (const char* kind : {"", "b", "d"})
        EXPECT_EQ(posix.Stat(folder / (name + kind))->mode, mode) << name << kind;
    }
  }
}

TEST_F(PosixFilesTest, CreateNewTakesNoNameThatIsTakenNotEvenByADanglingLink) {
  folder.Put("file", "old");
  Link("nowhere", "link");
  const auto opened = posix.OpenFolder(folder.Where());
  for (const char* name : {"file", "link"}) {
    EXPECT_EQ(NumberOf([&] { posix.CreateNew(folder / name, 0600); }), ErrorNumber::FileExists);
    EXPECT_EQ(NumberOf([&] { opened->CreateNew(name, 0600); }), ErrorNumber::FileExists);
  }
  EXPECT_EQ(ReadAll(folder / "file"), "old");
  EXPECT_THAT(folder.Names(), ElementsAre("file", "link"));
}

TEST_F(PosixFilesTest, RenameNoReplaceReplacesNothingAlsoWhereThePlatformCantDoItAlone) {
  using Rename = std::function<void(const Path&, const Path&)>;
  const Rename renames[] = {[&](const Path& from, const Path& to) { posix.RenameNoReplace(from, to); },
                            [](const Path& from, const Path& to) {
                              if (posix::RenameByTakingTheName(from.c_str(), to.c_str()) != 0)
                                throw ErrnoError(errno, "rename", from);
                            }};
  for (const Rename& rename : renames) {
    for (const char* from : {"file", "dir", "link"}) {
      const TempFolder place;
      place.Put("file", "new");
      place.Put("dir/inside", "new");
      std::filesystem::create_symlink("nowhere", place / "link");
      place.Put("taken", "old");
      std::filesystem::create_directory(place / "empty");
      std::filesystem::create_symlink("nowhere", place / "dangling");
      std::filesystem::create_hard_link(place / "file", place / "second name");
      for (const char* to : {"taken", "empty", "dangling", "second name"})
        EXPECT_EQ(NumberOf([&] { rename(place / from, place / to); }), ErrorNumber::FileExists) << from << to;
      EXPECT_EQ(ReadAll(place / "taken"), "old");
      EXPECT_EQ(place.Names().size(), 8U);
      rename(place / from, place / "free");
      EXPECT_EQ(place.Names().size(), 8U);
      EXPECT_FALSE(posix.Stat(place / from, Files::Links::DontFollow)) << from;
      EXPECT_EQ(NumberOf([&] { rename(place / from, place / "other"); }), ErrorNumber::FileNotFound);
      if (posix.Stat(place / "dir")) {
        EXPECT_ANY_THROW(rename(place / "dir", place / "dir/below itself"));
        EXPECT_FALSE(posix.Stat(place / "dir/below itself"));
      }
    }
  }
}

TEST_F(PosixFilesTest, AFileIsAsOldAsItsBirthNotItsLastChange) {
  const Path path = folder.Put("f", "x");
  const std::time_t born = posix.Stat(path)->created;
  posix.OpenToChange(path)->SetModified(1000);
  const FileStat stats[] = {*posix.Stat(path), posix.OpenToRead(path)->Stat(),
                            *posix.OpenFolder(folder.Where())->Stat("f")};
  for (const FileStat& stat : stats) {
    EXPECT_EQ(stat.modified, 1000);
    EXPECT_THAT(stat.created, testing::AnyOf(born, 1000));  // what file systems without it show
  }
}

TEST_F(PosixFilesTest, FolderLeadsNowhereOutside) {
  folder.Put("in/real/file", "x");
  folder.Put("outside/secret", "x");
  Link("../outside", "in/link");
  const auto in = posix.OpenFolder(folder / "in");
  const std::function<void(const std::string&)> statements[] = {
      [&](auto& name) { in->Enter(name, Folder::IfMissing::Create); },
      [&](auto& name) { in->Stat(name); },
      [&](auto& name) { in->CreateNew(name, 0600); },
      [&](auto& name) { in->Remove(name); },
      [&](auto& name) { in->RemoveFolder(name); },
      [&](auto& name) { in->Rename("real", name); },
      [&](auto& name) { in->Rename(name, "real"); }};
  for (const std::string& name : {""s, "."s, ".."s, "a/b"s, "/etc"s, "a\0b"s}) {
    for (const auto& statement : statements)
      EXPECT_EQ(NumberOf([&] { statement(name); }), ErrorNumber::BadFileName) << name;
  }
  for (const auto ifMissing : {Folder::IfMissing::Fail, Folder::IfMissing::Create})
    EXPECT_THAT(ErrorOf([&] { in->Enter("link", ifMissing); }).Description(),
                testing::EndsWith("it is a symbolic link"));
  const auto real = in->Enter("real", Folder::IfMissing::Fail);
  EXPECT_EQ(NumberOf([&] { real->Enter("file", Folder::IfMissing::Fail); }), ErrorNumber::BadFileName);
  EXPECT_EQ(NumberOf([&] { real->Enter("new", Folder::IfMissing::Fail); }), ErrorNumber::PathNotFound);
  EXPECT_EQ(in->Stat("link")->kind, FileKind::SymbolicLink);
}

TEST_F(PosixFilesTest, AMessageQuotesANameWithoutDrivingTheTerminal) {
  EXPECT_EQ(ErrorOf([&] { posix.OpenToRead("no\x1b[2J\n\xff"); }).Description(),
            "cannot open no\\x1b[2J\\n\\xff: no such file or directory");
  EXPECT_EQ(NumberOf([&] { posix.OpenToRead(Path(std::string("a\0b", 3))); }), ErrorNumber::BadFileName);
}

TEST_F(PosixFilesTest, ALockHoldsUntilClose) {
  const Path path = folder.Put("photo.png", "x");
  const auto file = posix.OpenToChange(path), other = posix.OpenToChange(path);
  file->Lock();
  file->Lock();  // our own lock is no obstacle
  const Error error = ErrorOf([&] { other->Lock(); });
  EXPECT_EQ(error.Number(), ErrorNumber::PermissionDenied);
  EXPECT_EQ(error.Description(), "cannot lock " + path.native() + ": another Tarnel is working on it");
  file->Close();
  other->Lock();
}

TEST_F(PosixFilesTest, ASyncThatFailedGoesOnFailingUntilAllIsWrittenAgain) {
  const auto file = posix.OpenToChange(folder.Put("f", "x"));
  g_syncError = EIO;
  for (int i = 0; i < 2; ++i)
    EXPECT_EQ(NumberOf([&] { file->Sync(); }), ErrorNumber::DeviceIo);
  file->ForgetFailedSync();
  EXPECT_NO_THROW(file->Sync());
  g_syncError = EIO;
  EXPECT_EQ(NumberOf([&] { posix.SyncFolder(folder.Where()); }), ErrorNumber::DeviceIo);
  g_syncError = EINVAL;
  EXPECT_NO_THROW(posix.SyncFolder(folder.Where())) << "platforms without that are passed over";
}

TEST_F(PosixFilesTest, AFolderOnTheNetworkThatLocksNoReaderIsNoObstacle) {
  g_lockError = EBADF;
  EXPECT_NO_THROW(posix.OpenToRead(folder.Put("f", "x"))->Lock());
}

TEST_F(PosixFilesTest, ReadsAndWritesAtPositionsFromOne) {
  const auto file = posix.CreateNew(folder / "f", 0400);
  file->WriteAt({1}, AsBytes("abcdef"));
  file->WriteAt({3}, AsBytes("XY"));
  std::string into(10, '-');
  const MutableBytes room{reinterpret_cast<std::uint8_t*>(into.data()), into.size()};
  EXPECT_EQ(file->ReadAt({2}, room), 5U);
  EXPECT_EQ(into, "bXYef-----");
  EXPECT_EQ(file->ReadAt({7}, room), 0U);
  for (const std::int64_t position : {std::int64_t{0}, std::int64_t{-5}, INT64_MIN}) {
    EXPECT_EQ(NumberOf([&] { file->ReadAt({position}, room); }), ErrorNumber::BadRecordNumber);
    EXPECT_EQ(NumberOf([&] { file->WriteAt({position}, AsBytes("x")); }), ErrorNumber::BadRecordNumber);
  }
  file->Truncate(2);
  file->Close();
  file->Close();
  EXPECT_EQ(ReadAll(folder / "f"), "ab");
}

TEST_F(PosixFilesTest, CopyAtPutsWhatReadingAndWritingWould) {
  FaultyFiles notThePlatforms(posix);
  const std::string bytes = Pattern(700'000);
  folder.Put("source", bytes);
  for (Files* const files : std::initializer_list<Files*>{&posix, &notThePlatforms}) {
    folder.Put("target", "ten bytes.");
    const auto source = files->OpenToRead(folder / "source");
    const auto target = posix.OpenToChange(folder / "target");
    EXPECT_EQ(target->CopyAt({4}, *source, {2}, 600'000), 600'000);
    EXPECT_EQ(ReadAll(folder / "target"), "ten" + bytes.substr(1, 600'000));
    EXPECT_EQ(target->CopyAt({1}, *source, {699'998}, 10), 3);
    EXPECT_EQ(ReadAll(folder / "target"), bytes.substr(699'997) + bytes.substr(1, 600'000));
    EXPECT_EQ(NumberOf([&] { target->CopyAt({1}, *source, {0}, 1); }), ErrorNumber::BadRecordNumber);
  }
}

TEST_F(PosixFilesTest, TakesNoPathForTheCurrentFolderAndListsByteForByteInOrder) {
  const CurrentFolder here(folder.Where());
  for (const char* name : {"a\n", "b\xff", "bare", "c"})
    folder.Put(name, "x");
  EXPECT_NO_THROW(posix.SyncFolder(""));
  std::string listed;
  for (const FolderEntry& entry : posix.List(""))
    listed += entry.name + "|";
  EXPECT_EQ(listed, "a\n|bare|b\xff|c|");
  EXPECT_GT(posix.FreeSpace(""), 0);
  EXPECT_TRUE(posix.OpenFolder("")->Stat("bare"));
}

}  // namespace
}  // namespace tarnel::test
