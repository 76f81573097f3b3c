#include "base/copy_file.h"

#include "base/file_streams.h"
#include "tests/base/files_bench.h"

namespace tarnel::test {
namespace {

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

TEST_F(CopyFileTest, ATakenNameIsLeftAlone) {
  folder.Put("from", "new");
  folder.Put("to", "old");
  EXPECT_FALSE(Copy(posix));
  EXPECT_EQ(ReadAll(folder / "to"), "old");
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

}  // namespace
}  // namespace tarnel::test
