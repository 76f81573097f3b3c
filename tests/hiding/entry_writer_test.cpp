#include "hiding/entry_writer.h"

#include <gtest/gtest.h>

#include "base/attempt.h"
#include "tests/hiding/hide_bench.h"

namespace tarnel::test {

namespace {

struct WriterBench {
  explicit WriterBench(std::size_t carrierSize = 100) {
    path = folder.Put("carrier", std::string(carrierSize, 'c'));
    file = files.OpenToChange(path);
  }

  TempFolder folder;
  Path path;
  PosixFiles posix;
  FaultyFiles files{posix};
  std::unique_ptr<File> file;
  NotingHideScreen screen;
  HideProgress progress;
};

}  // namespace

TEST(EntryWriter, WritesFullBlocksWithAYieldEachAndTheRestWithout) {
  const std::size_t block = kCopyBlock;
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{1}, block - 1, block, block + 1, 16 * block, 33 * block + 1}) {
    for (const std::size_t piece : {std::size_t{1000}, block, 4 * block}) {
      WriterBench bench;
      EntryWriter writer(*bench.file, 100, bench.screen, bench.progress);
      const std::string payload = Pattern(size);
      for (std::size_t at = 0; at < size; at += piece)
        writer.Write(AsBytes(std::string_view(payload).substr(at, piece)));
      EXPECT_EQ(writer.FinishPayload(), static_cast<Length>(size));
      writer.FinishEntry("tail");
      writer.Write(AsBytes("unfinished"));
      writer.Rewind();
      EXPECT_EQ(ReadAll(bench.path), std::string(100, 'c') + payload + "tail");
      EXPECT_EQ(bench.screen.script.Yields(), size / block);
      EXPECT_EQ(bench.screen.value, static_cast<double>(size));
    }
  }
}

TEST(EntryWriter, LooksForACancelBeforeAFullBlockAndNotBeforeTheRest) {
  WriterBench bench;
  bench.screen.script.CancelAtYield(1);
  EntryWriter writer(*bench.file, 100, bench.screen, bench.progress);
  writer.Write(AsBytes(Pattern(kCopyBlock + 10)));
  EXPECT_EQ(writer.FinishPayload(), static_cast<Length>(kCopyBlock + 10));
  try {
    writer.Write(AsBytes(Pattern(kCopyBlock)));
    FAIL() << "wrote on";
  } catch (const Stop& stop) {
    EXPECT_EQ(stop.reason, StopReason::Cancelled);
  }
}

TEST(EntryWriter, EndsExactlyAtTheLimitAndNeverBehindIt) {
  const Length end = kCarrierLimit - 2 * static_cast<Length>(kCopyBlock) - 4;
  for (const std::size_t excess : {std::size_t{0}, std::size_t{1}}) {
    WriterBench bench;
    std::filesystem::resize_file(bench.path, static_cast<std::uintmax_t>(end));  // sparse
    EntryWriter writer(*bench.file, end, bench.screen, bench.progress);
    const auto write = [&] {
      writer.Write(AsBytes(Pattern(2 * kCopyBlock)));
      writer.FinishPayload();
      writer.FinishEntry(std::string(4 + excess, 't'));
    };
    if (excess == 0)
      EXPECT_NO_THROW(write());
    else
      EXPECT_THROW(write(), Stop);
    EXPECT_EQ(static_cast<Length>(std::filesystem::file_size(bench.path)), kCarrierLimit - (excess ? 4 : 0));
  }
}

}  // namespace tarnel::test
