#include "base/copy_file.h"

#include <cstdint>
#include <string>
#include <vector>

#include "base/partial_file.h"
#include "base/printable.h"

namespace tarnel {

namespace {

constexpr std::size_t blockSize = std::size_t{256} * 1024;

Length CopyBlocks(File& source, File& target, const CopyHook& hook) {
  std::vector<std::uint8_t> block(blockSize);
  Length copied = 0;
  for (;;) {
    const std::size_t got = source.ReadAt(Position{} + copied, block);
    if (got == 0) return copied;
    target.WriteAt(Position{} + copied, Bytes(block).first(got));
    copied += static_cast<Length>(got);
    if (hook) hook(copied);
  }
}

}  // namespace

void CopyFile(Files& files, const Path& from, const Path& to, Durability durability, const CopyHook& hook) {
  const std::unique_ptr<File> source = files.OpenToRead(from);
  const FileStat stat = source->Stat();
  const std::unique_ptr<File> target = files.CreateNew(to, stat.mode & 0777);
  PartialFile partial(files, to);
  if (CopyBlocks(*source, *target, hook) != stat.size)
    throw Error(ErrorNumber::DeviceIo,
                "cannot copy " + Printable(from.native()) + ": its length changed meanwhile", from);
  if (durability == Durability::WrittenThrough) target->Sync();
  target->Close();
  partial.Keep();
}

}  // namespace tarnel
