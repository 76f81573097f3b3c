#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include "base/posix_calls.h"
#include "base/printable.h"

namespace tarnel {

namespace {

bool IsUnknown(int code) {
  return code == EINVAL || code == ENOSYS || code == EOPNOTSUPP;
}

bool Looks(const char* name, struct stat& data) {
  return ::fstatat(AT_FDCWD, name, &data, AT_SYMLINK_NOFOLLOW) == 0;
}

/// Whether both names lead to one entry of a folder, and not to two links of one file.
bool IsOneEntry(const char* a, const char* b) {
  struct stat one {
  }, other{};
  if (!Looks(a, one) || !Looks(b, other)) return false;
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino &&
         (S_ISDIR(one.st_mode) || one.st_nlink == 1);
}

int Failed(int code) {
  errno = code;
  return -1;
}

int RenameFolder(const char* from, const char* to) {
  if (::mkdir(to, 0700) != 0) return -1;
  if (::rename(from, to) == 0) return 0;
  const int code = errno;
  ::rmdir(to);
  return Failed(code);
}

int RenameByLink(const char* from, const char* to) {
  if (::linkat(AT_FDCWD, from, AT_FDCWD, to, 0) != 0) return -1;
  if (::unlink(from) == 0) return 0;
  const int code = errno;
  ::unlink(to);
  return Failed(code);
}

int RenameOverEmptyFile(const char* from, const char* to) {
  const posix::Descriptor taken(::open(to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!taken.IsOpen()) return -1;
  if (::rename(from, to) == 0) return 0;
  const int code = errno;
  ::unlink(to);
  return Failed(code);
}

int RenameIfFree(const char* from, const char* to) {
  int result = ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
  if (result != 0 && IsUnknown(errno)) result = posix::RenameByTakingTheName(from, to);
  if (result != 0 && errno == EEXIST && IsOneEntry(from, to)) result = ::rename(from, to);
  return result;
}

}  // namespace

int posix::RenameByTakingTheName(const char* from, const char* to) {
  struct stat data {};
  if (!Looks(from, data)) return -1;
  if (S_ISDIR(data.st_mode)) return RenameFolder(from, to);
  const int result = RenameByLink(from, to);
  return result == 0 || errno == EEXIST ? result : RenameOverEmptyFile(from, to);
}

void PosixFiles::RenameNoReplace(const Path& from, const Path& to) {
  if (RenameIfFree(posix::ForCall(from), posix::ForCall(to)) == 0) return;
  if (errno != EEXIST) throw ErrnoError(errno, "rename", from);
  throw Error(
      ErrorNumber::FileExists,
      "cannot rename " + Printable(from.native()) + ": " + Printable(to.native()) + " is there already",
      from);
}

}  // namespace tarnel
