#include "base/copy_file.h"

#include <sys/stat.h>

#include "base/partial_file.h"
#include "base/permissions.h"
#include "base/printable.h"

namespace tarnel {

namespace {

Length CopyBlocks(File& source, File& target, const CopyHook& hook) {
  Length copied = 0;
  for (;;) {
    const Length got = target.CopyAt(Position{} + copied, source, Position{} + copied, kCopyPiece);
    if (got == 0) return copied;
    copied += got;
    if (hook) hook(copied);
  }
}

}  // namespace

void CopyFile(Files& files, File& source, const Path& from, const Path& to, mode_t mode,
              Durability durability, const CopyHook& hook) {
  const Length size = source.Size();
  const std::unique_ptr<File> target = files.CreateNew(to, S_IRUSR | S_IWUSR);
  PartialFile partial(files, to);
  if (durability == Durability::WrittenThrough) target->ExpectSync();
  if (CopyBlocks(source, *target, hook) != size)
    throw Error(ErrorNumber::DeviceIo,
                "cannot copy " + Printable(from.native()) + ": its length changed meanwhile", from);
  TakeAccessOf(source, *target, mode);
  if (durability == Durability::WrittenThrough) target->Sync();
  target->Close();
  partial.Keep();
}

void CopyFile(Files& files, const Path& from, const Path& to, Durability durability, const CopyHook& hook) {
  const std::unique_ptr<File> source = files.OpenToRead(from);
  CopyFile(files, *source, from, to, source->Stat().mode & kPermissionBits, durability, hook);
}

}  // namespace tarnel
