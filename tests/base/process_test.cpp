#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <set>

#include "base/core_dumps.h"
#include "base/temp_names.h"
#include "tests/support/temp_folder.h"

namespace tarnel {
namespace {

// Run in a process of its own: 0 if the platform holds what was asked of it.
int LimitsAfter(Dumpable dumpable) {
  ::prctl(PR_SET_DUMPABLE, 1, 0, 0, 0);
  if (!ForbidCoreDumps(dumpable)) return 1;
  rlimit limit{};
  ::getrlimit(RLIMIT_CORE, &limit);
  if (limit.rlim_cur != 1 || limit.rlim_max != 1) return 2;
  return ::prctl(PR_GET_DUMPABLE) == (dumpable == Dumpable::Kept ? 1 : 0) ? 0 : 3;
}

TEST(CoreDumps, ThePipedHandlerIsStoppedTooAndPortalsWorkInTheWindow) {
  EXPECT_EXIT(::_exit(LimitsAfter(Dumpable::Kept)), ::testing::ExitedWithCode(0), "");
  EXPECT_EXIT(::_exit(LimitsAfter(Dumpable::Off)), ::testing::ExitedWithCode(0), "");
}

TEST(TempNames, NamesNeverRepeatAndAreSafeInAnyFileSystem) {
  std::set<std::string> names;
  for (int i = 0; i < 1000; ++i)
    names.insert(RandomName("."));
  EXPECT_EQ(names.size(), 1000U);
  EXPECT_EQ(names.begin()->size(), 17U);
  for (const std::string& name : names)
    EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz234567", 1), std::string::npos);
}

TEST(TempNames, TheFolderIsPrivateWhateverTheUmask) {
  const test::TempFolder root;
  ::setenv("TMPDIR", root.Where().c_str(), 1);
  const mode_t old = ::umask(0);
  PosixFiles files;
  const Path folder = MakeTempFolder(files);
  ::umask(old);
  EXPECT_EQ(files.Stat(folder)->mode, 0700U);
  EXPECT_EQ(folder.parent_path(), root.Where());
  EXPECT_FALSE(folder.has_extension());
  ::setenv("TMPDIR", "relative", 1);
  EXPECT_EQ(SystemTempFolder(), "/tmp");
  ::unsetenv("TMPDIR");
}

}  // namespace
}  // namespace tarnel
