#include "base/copy_file.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "base/file_streams.h"
#include "tests/support/faulty_files.h"
#include "tests/support/temp_folder.h"

namespace tarnel {
namespace {

using test::FaultyFiles;
using test::Pattern;
using test::ReadAll;
using ::testing::ElementsAre;

constexpr std::size_t block = std::size_t{256} * 1024;
constexpr std::int64_t blockLength = block;

class CopyFileTest : public ::testing::Test {
 protected:
  bool Copy(Files& through) {
    try {
      CopyFile(through, folder / "from", folder / "to", Durability::WrittenThrough);
      return true;
    } catch (const Error&) {
      return false;
    }
  }

  test::TempFolder folder;
  PosixFiles posix;
};

TEST_F(CopyFileTest, CopiesEverySizeAroundABlockWithItsMode) {
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{1}, block - 1, block, block + 1, 2 * block + 7}) {
    const std::string bytes = Pattern(size);
    const Path from = folder.Put("from", bytes, 0400);
    const Path to = folder / ("to" + std::to_string(size));
    std::vector<Length> seen;
    CopyFile(posix, from, to, Durability::Cached, [&](Length soFar) { seen.push_back(soFar); });
    EXPECT_EQ(ReadAll(to), bytes);
    EXPECT_EQ(posix.Stat(to)->mode, 0400U);
    EXPECT_EQ(seen.size(), (size + block - 1) / block);
    EXPECT_EQ(seen.empty() ? 0 : seen.back(), static_cast<Length>(size));
  }
}

TEST_F(CopyFileTest, AFailureAnywhereLeavesNoPart) {
  folder.Put("from", Pattern(2 * block + 7));
  FaultyFiles quiet(posix);
  ASSERT_TRUE(Copy(quiet));
  posix.Remove(folder / "to");
  for (std::size_t k = 1; k <= quiet.Count(); ++k) {
    FaultyFiles files(posix);
    files.Fail({.at = k, .writes = test::Writes::FirstHalf});
    EXPECT_FALSE(Copy(files)) << quiet.Record()[k - 1].name;
    EXPECT_THAT(folder.Names(), ElementsAre("from")) << quiet.Record()[k - 1].name;
  }
}

TEST_F(CopyFileTest, ADiskThatFillsUpLeavesNoPart) {
  folder.Put("from", Pattern(2 * block));
  for (const std::int64_t space : {std::int64_t{0}, blockLength - 1, blockLength, 2 * blockLength - 1}) {
    FaultyFiles files(posix);
    files.LimitSpace(space);
    EXPECT_FALSE(Copy(files));
    EXPECT_EQ(files.FreeSpace(folder.Where()), space);
    EXPECT_THAT(folder.Names(), ElementsAre("from"));
  }
}

TEST_F(CopyFileTest, AHookThatThrowsLeavesNoPart) {
  folder.Put("from", "x");
  EXPECT_THROW(CopyFile(posix, folder / "from", folder / "to", Durability::Cached, [](Length) { throw 1; }),
               int);
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
  files.before = [&](const test::Operation& operation) {
    if (operation.name == "File.WriteAt") folder.Put("from", Pattern(20));
  };
  EXPECT_FALSE(Copy(files));
  EXPECT_THAT(folder.Names(), ElementsAre("from"));
}

TEST_F(CopyFileTest, WrittenThroughSyncsBeforeTheClose) {
  folder.Put("from", "x");
  FaultyFiles files(posix);
  ASSERT_TRUE(Copy(files));
  std::vector<std::string> names;
  for (const test::Operation& operation : files.Record())
    if (operation.path == folder / "to") names.push_back(operation.name);
  EXPECT_THAT(names, ElementsAre("Files.CreateNew", "File.WriteAt", "File.Sync", "File.Close"));
}

TEST_F(CopyFileTest, ASourceReadsItsStretchAndNoByteMore) {
  const auto file = posix.OpenToRead(folder.Put("f", "0123456789"));
  for (std::size_t room = 1; room <= 8; ++room) {
    FileSource source(*file, "f", {4}, 5);
    std::string all;
    std::vector<std::uint8_t> into(room);
    while (const std::size_t got = source.Read(into))
      all += AsText(Bytes(into).first(got));
    EXPECT_EQ(all, "34567");
    EXPECT_EQ(source.Read(into), 0U);
  }
}

TEST_F(CopyFileTest, AHostileStretchIsAnErrorWhereverItPoints) {
  const auto file = posix.OpenToRead(folder.Put("f", "0123456789"));
  const std::pair<std::int64_t, Length> nonsense[] = {{0, 1},         {-1, 5},        {1, -1},
                                                      {INT64_MAX, 1}, {2, INT64_MAX}, {INT64_MIN, INT64_MIN}};
  for (const auto& [from, length] : nonsense)
    EXPECT_THROW(FileSource(*file, "f", {from}, length), Error) << from << " " << length;
  std::vector<std::uint8_t> into(100);
  for (const auto& [from, length] :
       {std::pair<std::int64_t, Length>{5, 7}, {11, 1}, {1000, 1}, {1, 1LL << 40}}) {
    FileSource source(*file, "f", {from}, length);
    try {
      source.Read(into);
      ADD_FAILURE();
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::DeviceIo);
      EXPECT_EQ(error.Description(), "cannot read f: the file ends early");
    }
  }
}

TEST_F(CopyFileTest, ASinkWritesOnAndCountsOnlyWhatItWrote) {
  folder.Put("f", "0123456789");
  FaultyFiles files(posix);
  const auto file = files.OpenToChange(folder / "f");
  FileSink sink(*file, {9});
  sink.Write(AsBytes("abc"));
  files.Fail({.number = ErrorNumber::DiskFull, .writes = test::Writes::FirstHalf});
  EXPECT_THROW(sink.Write(AsBytes("defg")), Error);
  EXPECT_EQ(sink.Written(), 3);
  sink.Write(AsBytes("DEFG"));
  EXPECT_EQ(ReadAll(folder / "f"), "01234567abcDEFG");
  EXPECT_EQ(sink.Next(), Position{16});
}

}  // namespace
}  // namespace tarnel
