#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <string>

#include "base/posix_calls.h"
#include "base/printable.h"

namespace tarnel::posix {

namespace {

constexpr const char* kAccessList = "system.posix_acl_access";
constexpr std::size_t kMostOfAttribute = std::size_t{64} * 1024;  // Linux keeps no longer one

class PosixFile : public File {
 public:
  PosixFile(Descriptor descriptor, Path path)
      : m_descriptor(std::move(descriptor)), m_path(std::move(path)) {}

  std::size_t ReadAt(Position from, MutableBytes into) override;
  void WriteAt(Position to, Bytes bytes) override;
  Length CopyAt(Position to, File& source, Position from, Length length) override;
  FileStat Stat() override;
  void Truncate(Length length) override;
  void SetMode(mode_t mode) override;
  void SetModified(std::int64_t seconds) override;
  void SetOwner(uid_t owner, gid_t group) override;
  std::string AccessList() override;
  void SetAccessList(const std::string& list) override;
  void ExpectSync() override { m_expectsSync = true; }
  void Sync() override;
  void ForgetFailedSync() override { m_syncError = 0; }
  void Lock() override;
  void Close() override;

 private:
  int Number() const;
  off_t Offset(Position position, std::string_view verb) const;
  void BeginSync(Length written);

  Descriptor m_descriptor;
  Path m_path;
  int m_syncError = 0;
  bool m_expectsSync = false;
  Length m_unsynced = 0;  ///< written since the platform was last told to begin
};

int PosixFile::Number() const {
  assert(m_descriptor.IsOpen());
  return m_descriptor.Get();
}

off_t PosixFile::Offset(Position position, std::string_view verb) const {
  if (position.value >= 1) return position.value - 1;
  throw Error(ErrorNumber::BadRecordNumber,
              "cannot " + std::string(verb) + " " + Printable(m_path.native()) + ": position " +
                  std::to_string(position.value) + " lies before its start",
              m_path);
}

std::size_t PosixFile::ReadAt(Position from, MutableBytes into) {
  const off_t offset = Offset(from, "read");
  std::size_t done = 0;
  while (done < into.size()) {
    const ssize_t got = Checked(Uninterrupted([&] {
                                  return ::pread(Number(), into.data() + done, into.size() - done,
                                                 offset + static_cast<off_t>(done));
                                }),
                                "read", m_path);
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

void PosixFile::WriteAt(Position to, Bytes bytes) {
  const off_t offset = Offset(to, "write");
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t put = Checked(Uninterrupted([&] {
                                  return ::pwrite(Number(), bytes.data() + done, bytes.size() - done,
                                                  offset + static_cast<off_t>(done));
                                }),
                                "write", m_path);
    if (put == 0) throw ErrnoError(EIO, "write", m_path);
    done += static_cast<std::size_t>(put);
  }
  BeginSync(static_cast<Length>(done));
}

/// What goes wrong here is an error of the Sync that follows.
void PosixFile::BeginSync(Length written) {
  constexpr Length enough = Length{4} * 1024 * 1024;
  m_unsynced += written;
  if (!m_expectsSync || m_unsynced < enough) return;
  constexpr off_t start = 0, wholeFile = 0;
  ::sync_file_range(Number(), start, wholeFile, SYNC_FILE_RANGE_WRITE);
  m_unsynced = 0;
}

Length PosixFile::CopyAt(Position to, File& source, Position from, Length length) {
  auto* const other = dynamic_cast<PosixFile*>(&source);
  if (other == nullptr) return File::CopyAt(to, source, from, length);
  off_t read = other->Offset(from, "read");
  off_t written = Offset(to, "write");
  Length done = 0;
  while (done < length) {
    const auto wanted = static_cast<std::size_t>(length - done);
    const ssize_t got = Uninterrupted(
        [&] { return ::copy_file_range(other->Number(), &read, Number(), &written, wanted, 0); });
    // Some file systems can't, and some say that the source ends: reading and writing finds out what holds.
    if (got <= 0) return done + File::CopyAt(to + done, source, from + done, length - done);
    done += got;
    BeginSync(got);
  }
  return done;
}

FileStat PosixFile::Stat() {
  FileStat stat;
  Checked(StatAt(Number(), "", AT_EMPTY_PATH, stat), "look at", m_path);
  return stat;
}

void PosixFile::Truncate(Length length) {
  Checked(Uninterrupted([&] { return ::ftruncate(Number(), length); }), "cut", m_path);
}

void PosixFile::SetModified(std::int64_t seconds) {
  const std::timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, {.tv_sec = seconds, .tv_nsec = 0}};
  Checked(Uninterrupted([&] { return ::futimens(Number(), times); }), "set the time of", m_path);
}

void PosixFile::SetMode(mode_t mode) {
  Checked(Uninterrupted([&] { return ::fchmod(Number(), mode); }), "change the permissions of", m_path);
}

void PosixFile::SetOwner(uid_t owner, gid_t group) {
  Checked(Uninterrupted([&] { return ::fchown(Number(), owner, group); }), "change the owner of", m_path);
}

std::string PosixFile::AccessList() {
  std::string list(kMostOfAttribute, '\0');
  const ssize_t got = ::fgetxattr(Number(), kAccessList, list.data(), list.size());
  if (got < 0 && errno != ENODATA && errno != EOPNOTSUPP && errno != ENOSYS)
    throw ErrnoError(errno, "look at the access list of", m_path);
  list.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
  return list;
}

void PosixFile::SetAccessList(const std::string& list) {
  const int result = list.empty() ? ::fremovexattr(Number(), kAccessList)
                                  : ::fsetxattr(Number(), kAccessList, list.data(), list.size(), 0);
  const bool isGone = list.empty() && (errno == ENODATA || errno == EOPNOTSUPP || errno == ENOSYS);
  if (result != 0 && !isGone) throw ErrnoError(errno, "change the access list of", m_path);
}

void PosixFile::Sync() {
  if (m_syncError == 0 && Uninterrupted([&] { return ::fsync(Number()); }) != 0) m_syncError = errno;
  if (m_syncError != 0) throw ErrnoError(m_syncError, "write", m_path);
}

void PosixFile::Lock() {
  TakeLock(Number(), m_path);
}

void PosixFile::Close() {
  if (!m_descriptor.IsOpen()) return;
  // An interrupted close has closed the file all the same; repeating it could hit a file opened since.
  if (::close(m_descriptor.Release()) != 0 && errno != EINTR) throw ErrnoError(errno, "close", m_path);
}

// Undoes what the umask took away; an errno value on failure. A file system without modes is good enough.
int ForceMode(int descriptor, mode_t mode) {
  struct stat data {};
  if (::fstat(descriptor, &data) == 0 && (data.st_mode & 07777) == mode) return 0;
  if (::fchmod(descriptor, mode) == 0) return 0;
  return IsRefusalOfModes(errno) ? 0 : errno;
}

}  // namespace

std::unique_ptr<File> MakeFile(Descriptor descriptor, const Path& path) {
  return std::make_unique<PosixFile>(std::move(descriptor), path);
}

std::unique_ptr<File> CreateFileIn(int folder, const char* name, mode_t mode, const Path& path) {
  constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY;
  Descriptor descriptor(
      Checked(Uninterrupted([&] { return ::openat(folder, name, flags, mode); }), "create", path));
  const int code = ForceMode(descriptor.Get(), mode);
  if (code != 0) {
    ::unlinkat(folder, name, 0);
    throw ErrnoError(code, "create", path);
  }
  return MakeFile(std::move(descriptor), path);
}

}  // namespace tarnel::posix
