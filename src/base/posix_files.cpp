#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <limits>
#include <string>

#include "base/posix_calls.h"

namespace tarnel {

using posix::Checked;
using posix::Descriptor;
using posix::ForCall;
using posix::Uninterrupted;

namespace {

void MustBeRegular(const struct stat& data, const Path& path) {
  const FileKind kind = posix::KindOf(data.st_mode);
  if (kind != FileKind::Regular) throw posix::NotRegular(kind, path);
}

// Looks before it opens, because opening some devices does something, and again after it, because the name
// may have changed hands. O_NONBLOCK keeps a pipe that took the name in between from blocking.
std::unique_ptr<File> OpenRegular(const Path& path, int access) {
  const char* name = ForCall(path);
  struct stat data {};
  Checked(::stat(name, &data), "open", path);
  MustBeRegular(data, path);
  const int flags = access | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  Descriptor descriptor(Checked(Uninterrupted([&] { return ::open(name, flags); }), "open", path));
  Checked(::fstat(descriptor.Get(), &data), "open", path);
  MustBeRegular(data, path);
  return posix::MakeFile(std::move(descriptor), path);
}

const Path& OrHere(const Path& folder) {
  static const Path here = ".";
  return folder.empty() ? here : folder;
}

bool CantSyncFolders(int code) {
  return code == EINVAL || code == EBADF || code == EOPNOTSUPP || code == ENOSYS || code == EACCES;
}

}  // namespace

std::optional<FileStat> PosixFiles::Stat(const Path& path, Links links) {
  FileStat stat;
  const int flags = links == Links::Follow ? 0 : AT_SYMLINK_NOFOLLOW;
  if (posix::StatAt(AT_FDCWD, ForCall(path), flags, stat) == 0) return stat;
  if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
  throw ErrnoError(errno, "look at", path);
}

Path PosixFiles::Canonical(const Path& path) {
  std::error_code failed;
  Path real = std::filesystem::canonical(ForCall(path), failed);
  if (failed) throw ErrnoError(failed.value(), "open", path);
  return real;
}

std::unique_ptr<File> PosixFiles::OpenToRead(const Path& path) {
  return OpenRegular(path, O_RDONLY);
}

std::unique_ptr<File> PosixFiles::OpenToChange(const Path& path) {
  return OpenRegular(path, O_RDWR);
}

std::unique_ptr<File> PosixFiles::CreateNew(const Path& path, mode_t mode) {
  return posix::CreateFileIn(AT_FDCWD, ForCall(path), mode, path);
}

void PosixFiles::Remove(const Path& path) {
  Checked(::unlink(ForCall(path)), "delete", path);
}

void PosixFiles::RemoveFolder(const Path& path) {
  Checked(::rmdir(ForCall(path)), "delete", path);
}

void PosixFiles::CreateFolder(const Path& path, mode_t mode) {
  Checked(::mkdir(ForCall(path), mode), "create", path);
  const Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  Checked(folder.Get(), "create", path);
  Checked(::fchmod(folder.Get(), mode), "change the permissions of", path);
}

void PosixFiles::Rename(const Path& from, const Path& to) {
  Checked(::rename(ForCall(from), ForCall(to)), "rename", from);
}

void PosixFiles::SetMode(const Path& path, mode_t mode) {
  Checked(::chmod(ForCall(path), mode), "change the permissions of", path);
}

void PosixFiles::SyncFolder(const Path& folder) {
  const char* name = ForCall(OrHere(folder));
  const Descriptor descriptor(
      Uninterrupted([&] { return ::open(name, O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (descriptor.IsOpen() && Uninterrupted([&] { return ::fsync(descriptor.Get()); }) == 0) return;
  if (!CantSyncFolders(errno)) throw ErrnoError(errno, "write the folder", folder);
}

void PosixFiles::SyncFileSystem(const Path& folder) {
  const char* name = ForCall(OrHere(folder));
  const Descriptor descriptor(
      Uninterrupted([&] { return ::open(name, O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (descriptor.IsOpen() && Uninterrupted([&] { return ::syncfs(descriptor.Get()); }) == 0) return;
  if (!CantSyncFolders(errno)) throw ErrnoError(errno, "write what lies in", folder);
}

std::vector<FolderEntry> PosixFiles::List(const Path& folder) {
  return posix::ListFolder(AT_FDCWD, ForCall(OrHere(folder)), folder);
}

std::int64_t PosixFiles::FreeSpace(const Path& path) {
  struct statvfs data {};
  const char* name = ForCall(OrHere(path));
  Checked(Uninterrupted([&] { return ::statvfs(name, &data); }), "ask for the free space of", path);
  std::int64_t bytes = 0;
  if (__builtin_mul_overflow(data.f_bavail, data.f_frsize, &bytes))
    return std::numeric_limits<std::int64_t>::max();
  return bytes;
}

std::unique_ptr<Folder> PosixFiles::OpenFolder(const Path& path) {
  const char* name = ForCall(OrHere(path));
  Descriptor descriptor(
      Checked(Uninterrupted([&] { return ::open(name, O_PATH | O_DIRECTORY | O_CLOEXEC); }), "open", path));
  return posix::MakeFolder(std::move(descriptor), path);
}

}  // namespace tarnel
