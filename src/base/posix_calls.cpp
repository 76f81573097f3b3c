#include "base/posix_calls.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/sysmacros.h>
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

std::int64_t Nanoseconds(const struct statx_timestamp& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

FileKind KindOf(mode_t mode) {
  return S_ISREG(mode)   ? FileKind::Regular
         : S_ISDIR(mode) ? FileKind::Folder
         : S_ISLNK(mode) ? FileKind::SymbolicLink
                         : FileKind::Other;
}

int StatAt(int folder, const char* name, int flags, FileStat& into) {
  struct statx data {};
  const int result = ::statx(folder, name, flags, STATX_BASIC_STATS | STATX_BTIME, &data);
  if (result != 0) return result;
  into.kind = KindOf(data.stx_mode);
  into.size = static_cast<Length>(data.stx_size);
  into.mode = data.stx_mode & 07777;
  into.device = ::makedev(data.stx_dev_major, data.stx_dev_minor);
  into.inode = data.stx_ino;
  into.modified = data.stx_mtime.tv_sec;
  into.accessed = data.stx_atime.tv_sec;
  into.created = (data.stx_mask & STATX_BTIME) != 0 ? data.stx_btime.tv_sec : data.stx_mtime.tv_sec;
  into.owner = data.stx_uid;
  into.group = data.stx_gid;
  into.modifiedNanoseconds = Nanoseconds(data.stx_mtime);
  into.changedNanoseconds = Nanoseconds(data.stx_ctime);
  return result;
}

void TakeLock(int descriptor, const Path& path) {
  if (Uninterrupted([&] { return ::flock(descriptor, LOCK_EX | LOCK_NB); }) == 0) return;
  const bool cantLock = errno == EOPNOTSUPP || errno == ENOSYS || errno == ENOLCK || errno == EBADF;
  if (cantLock) return;
  if (errno != EWOULDBLOCK) throw ErrnoError(errno, "lock", path);
  throw Error(ErrorNumber::PermissionDenied,
              "cannot lock " + Printable(path.native()) + ": another Tarnel is working on it", path);
}

Error NotRegular(FileKind kind, const Path& path) {
  const char* reason = kind == FileKind::Folder ? "it is a folder" : "it is a device, pipe or socket";
  return Error(ErrorNumber::PathFileAccess, "cannot open " + Printable(path.native()) + ": " + reason, path);
}

}  // namespace tarnel::posix
