#include "carrier/companions.h"

#include "base/printable.h"

namespace tarnel {

namespace {

Path WithSuffix(const Path& carrier, const char* suffix) {
  Path path = carrier;
  path += suffix;
  return path;
}

bool StillNames(const Path& path, File& file, Files& files) {
  const std::optional<FileStat> named = files.Stat(path);
  return named && named->IsSameFile(file.Stat());
}

}  // namespace

Path BackupPath(const Path& carrier) {
  return WithSuffix(carrier, ".bak");
}

Path TemporaryCarrierPath(const Path& carrier) {
  return WithSuffix(carrier, ".tmp");
}

std::vector<Path> LeftoversBeside(const Path& carrier, Files& files) {
  std::vector<Path> found;
  for (const Path& path : {BackupPath(carrier), TemporaryCarrierPath(carrier)}) {
    if (files.Stat(path, Files::Links::DontFollow)) found.push_back(path);
  }
  return found;
}

std::unique_ptr<File> OpenLocked(const Path& carrier, Files& files, LockAccess access) {
  constexpr int tries = 5;
  for (int i = 0; i < tries; ++i) {
    std::unique_ptr<File> file =
        access == LockAccess::Change ? files.OpenToChange(carrier) : files.OpenToRead(carrier);
    file->Lock();
    if (StillNames(carrier, *file, files)) return file;
  }
  throw Error(ErrorNumber::PermissionDenied,
              "cannot lock " + Printable(carrier.native()) + ": it is being replaced all the time", carrier);
}

}  // namespace tarnel
