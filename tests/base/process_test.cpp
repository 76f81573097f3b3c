#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/core_dumps.h"
#include "base/size_limit.h"
#include "base/temp_names.h"
#include "tests/support/surroundings.h"
#include "tests/support/temp_folder.h"

namespace tarnel {
namespace {

TEST(CoreDumps, ThePipedHandlerIsStoppedTooAndPortalsWorkInTheWindow) {
  const auto isForbidden = [](Dumpable dumpable) {
    ::prctl(PR_SET_DUMPABLE, 1, 0, 0, 0);
    rlimit limit{};
    return ForbidCoreDumps(dumpable) && ::getrlimit(RLIMIT_CORE, &limit) == 0 && limit.rlim_cur == 1 &&
           limit.rlim_max == 1 && ::prctl(PR_GET_DUMPABLE) == (dumpable == Dumpable::Kept ? 1 : 0);
  };
  for (const Dumpable dumpable : {Dumpable::Kept, Dumpable::Off})
    EXPECT_EXIT(::_exit(isForbidden(dumpable) ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(FileSizeLimit, IsAnErrorOfTheWriteAndNotTheEndOfTheProcess) {
  const auto isError = [] {
    SurviveFileSizeLimit();
    const test::TempFolder folder;
    const rlimit one = {1, 1};
    const auto file = PosixFiles().CreateNew(folder / "f", 0600);
    ::setrlimit(RLIMIT_FSIZE, &one);
    try {
      file->WriteAt({2}, AsBytes("x"));
    } catch (const Error& error) {
      return error.Number() == ErrorNumber::DiskFull;
    }
    return false;
  };
  EXPECT_EXIT(::_exit(isError() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(TempNames, TheFolderIsPrivateWhateverTheUmaskAndItsNameIsRandom) {
  const test::TempFolder root;
  PosixFiles files;
  const test::Variable temp("TMPDIR", root.Where());
  const test::Umask none(0);
  const Path folder = MakeTempFolder(files, "some-");
  EXPECT_EQ(files.Stat(folder)->mode, 0700U);
  EXPECT_EQ(folder.parent_path(), root.Where());
  EXPECT_NE(MakeTempFolder(files, "some-"), folder);
  const std::string named = folder.filename();
  EXPECT_EQ(named.substr(0, 5), "some-");
  const std::string name = named.substr(5);
  EXPECT_EQ(name.size(), 16U);
  EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz234567"), std::string::npos);
  const test::Variable relative("TMPDIR", "relative");
  EXPECT_EQ(SystemTempFolder(), "/tmp");
}

}  // namespace
}  // namespace tarnel
