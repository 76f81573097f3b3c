#include "base/permissions.h"

#include <cerrno>

#include "tests/base/files_bench.h"

namespace tarnel::test {
namespace {

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

}  // namespace
}  // namespace tarnel::test
