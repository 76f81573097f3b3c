#include "base/copy_file.h"

#include "base/partial_file.h"
#include "base/printable.h"

namespace tarnel {

namespace {

constexpr Length blockSize = Length{1024} * 1024;

Length CopyBlocks(File& source, File& target, const CopyHook& hook) {
  Length copied = 0;
  for (;;) {
    const Length got = target.CopyAt(Position{} + copied, source, Position{} + copied, blockSize);
    if (got == 0) return copied;
    copied += got;
    if (hook) hook(copied);
  }
}

}  // namespace

void CopyFile(Files& files, const Path& from, const Path& to, Durability durability, const CopyHook& hook) {
  const std::unique_ptr<File> source = files.OpenToRead(from);
  const FileStat stat = source->Stat();
  const std::unique_ptr<File> target = files.CreateNew(to, stat.mode & 0777);
  PartialFile partial(files, to);
  if (durability == Durability::WrittenThrough) target->ExpectSync();
  if (CopyBlocks(*source, *target, hook) != stat.size)
    throw Error(ErrorNumber::DeviceIo,
                "cannot copy " + Printable(from.native()) + ": its length changed meanwhile", from);
  if (durability == Durability::WrittenThrough) target->Sync();
  target->Close();
  partial.Keep();
}

}  // namespace tarnel
