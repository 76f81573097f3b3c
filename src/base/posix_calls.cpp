#include "base/posix_calls.h"

#include <unistd.h>

#include <string>

#include "base/printable.h"

namespace tarnel::posix {

Descriptor::~Descriptor() {
  if (IsOpen()) ::close(m_number);
}

const char* ForCall(const Path& path) {
  if (path.native().find('\0') == std::string::npos) return path.c_str();
  throw Error(ErrorNumber::BadFileName, "cannot use " + Printable(path.native()) + ": it holds a zero byte",
              path);
}

namespace {

std::int64_t Nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

FileStat ToFileStat(const struct stat& data) {
  FileStat result;
  result.kind = S_ISREG(data.st_mode)   ? FileKind::Regular
                : S_ISDIR(data.st_mode) ? FileKind::Folder
                : S_ISLNK(data.st_mode) ? FileKind::SymbolicLink
                                        : FileKind::Other;
  result.size = data.st_size;
  result.mode = data.st_mode & 07777;
  result.device = data.st_dev;
  result.inode = data.st_ino;
  result.modified = data.st_mtime;
  result.accessed = data.st_atime;
  result.owner = data.st_uid;
  result.group = data.st_gid;
  result.modifiedNanoseconds = Nanoseconds(data.st_mtim);
  result.changedNanoseconds = Nanoseconds(data.st_ctim);
  return result;
}

Error NotRegular(FileKind kind, const Path& path) {
  const char* reason = kind == FileKind::Folder ? "it is a folder" : "it is a device, pipe or socket";
  return Error(ErrorNumber::PathFileAccess, "cannot open " + Printable(path.native()) + ": " + reason, path);
}

}  // namespace tarnel::posix
