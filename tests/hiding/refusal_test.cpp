#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#include "tests/hiding/hide_bench.h"

namespace tarnel::test {

namespace {

struct Refusal {
  const char* what;
  ErrorNumber number;
  std::function<void(HideBench&)> arrange;
};

void AddRow(HideBench& bench, const Path& source) {
  bench.request.rows.push_back({.source = source, .name = source.filename().native(), .folder = {}});
}

}  // namespace

TEST(HideRefusal, ComesBeforeAnythingChanges) {
  const Refusal refusals[] = {
      {"the carrier", ErrorNumber::PathFileAccess, [](HideBench& b) { AddRow(b, b.carrier); }},
      {"the carrier by a detour", ErrorNumber::PathFileAccess,
       [](HideBench& b) { AddRow(b, b.folder / "sources/../carrier.bin"); }},
      {"a link to the carrier", ErrorNumber::PathFileAccess,
       [](HideBench& b) {
         std::filesystem::create_symlink(b.carrier, b.folder / "link");
         AddRow(b, b.folder / "link");
       }},
      {"another name of the carrier", ErrorNumber::PathFileAccess,
       [](HideBench& b) {
         std::filesystem::create_hard_link(b.carrier, b.folder / "second");
         AddRow(b, b.folder / "second");
       }},
      {"the backup", ErrorNumber::PathFileAccess,
       [](HideBench& b) { AddRow(b, b.folder.Put("carrier.bin.bak", "old backup")); }},
      {"a link to the backup", ErrorNumber::PathFileAccess,
       [](HideBench& b) {
         std::filesystem::create_symlink(b.folder.Put("carrier.bin.bak", "old backup"), b.folder / "link");
         AddRow(b, b.folder / "link");
       }},
      {"the temporary carrier", ErrorNumber::PathFileAccess,
       [](HideBench& b) { AddRow(b, b.folder.Put("carrier.bin.tmp", "left over")); }},
      {"a missing carrier", ErrorNumber::FileNotFound,
       [](HideBench& b) { b.current.CurrentCarrierPath = b.folder / "missing"; }},
      {"a folder as carrier", ErrorNumber::PathFileAccess,
       [](HideBench& b) { b.current.CurrentCarrierPath = b.folder / "sources"; }},
      {"an algorithm without cipher", ErrorNumber::InvalidPropertyValue,
       [](HideBench& b) { b.current.CurrentAlgorithmId = Algorithm::Rc4; }},
  };
  for (const Refusal& refusal : refusals) {
    HideBench bench;
    bench.Row("a.txt", "content");
    ::chmod(bench.carrier.c_str(), 0444);
    bench.Remember();
    refusal.arrange(bench);
    const Strings namesBefore = bench.folder.Names();
    try {
      bench.RunHide();
      ADD_FAILURE() << "hid in spite of " << refusal.what;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), refusal.number) << refusal.what << ": " << error.Description();
    }
    EXPECT_TRUE(bench.IsOld()) << refusal.what;
    EXPECT_EQ(bench.folder.Names(), namesBefore) << refusal.what;
  }
}

TEST(HideRefusal, ComesForACarrierThatAnotherProcessHasLocked) {
  HideBench bench;
  bench.Row("a.txt", "content");
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const int file = ::open(bench.carrier.c_str(), O_RDONLY);
    const char byte = ::flock(file, LOCK_EX) == 0 ? 'y' : 'n';
    if (::write(ready[1], &byte, 1) == 1) ::pause();
    ::_exit(0);
  }
  char byte = 0;
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  EXPECT_THROW(bench.RunHide(), Error);
  EXPECT_TRUE(bench.IsOld());
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(bench.RunHide().ending, HideEnding::Done);
}

TEST(HideRefusal, ComesForACarrierThatTheUserMayNotWrite) {
  HideBench bench;
  bench.Row("a.txt", "content");
  const OrdinaryUser user(bench.folder);
  for (const mode_t mode : {0444U, 0400U}) {  // one's own write-protected carrier is no obstacle
    ::chmod(bench.carrier.c_str(), mode);
    EXPECT_EQ(bench.RunHide().ending, HideEnding::Done);
    EXPECT_EQ(HideBench::ModeOf(bench.carrier), mode);
  }
  if (!std::filesystem::exists("/etc/hostname")) GTEST_SKIP() << "no file of somebody else";
  bench.current.CurrentCarrierPath = "/etc/hostname";
  EXPECT_THROW(bench.RunHide(), Error);
}

TEST(HideRefusal, AFolderThatTakesNoBackupLeavesTheCarrierAsItIs) {
  for (const Answer answer : {Answer::Abort, Answer::Ignore}) {
    HideBench bench;
    bench.Row("a.txt", "content");
    ::chmod(bench.carrier.c_str(), 0444);
    bench.Remember();
    FaultyFiles files(bench.posix);
    files.LimitSpace(500);
    bench.request.originals = Originals::Destroy;
    bench.hideScreen.script.Expect("hide.error", answer);
    const HideResult result = bench.RunHideOn(files);
    EXPECT_EQ(result.ending, answer == Answer::Abort ? HideEnding::Aborted : HideEnding::Done);
    EXPECT_EQ(result.leftOut.size(), answer == Answer::Abort ? 0U : 1U);
    EXPECT_EQ(result.backup, Path());
    EXPECT_TRUE(bench.IsOld());
    EXPECT_FALSE(bench.BackupExists());
    EXPECT_EQ(ReadAll(bench.Source("a.txt")), "content");
  }
}

}  // namespace tarnel::test
