#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "base/files.h"

namespace tarnel::posix {

/// Owns a file descriptor.
class Descriptor {
 public:
  explicit Descriptor(int number) : m_number(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor();

  int Get() const { return m_number; }
  bool IsOpen() const { return m_number >= 0; }
  int Release() { return std::exchange(m_number, -1); }

 private:
  int m_number;
};

/// Repeats a system call that a signal interrupted.
template <class Call>
auto Uninterrupted(Call&& call) {
  for (;;) {
    const auto result = call();
    if (result >= 0 || errno != EINTR) return result;
  }
}

/// Throws ErrnoError from errno where `result` says that the call failed.
template <class Result>
Result Checked(Result result, std::string_view verb, const Path& path) {
  if (result < 0) throw ErrnoError(errno, verb, path);
  return result;
}

/// The path for a system call. A zero byte in it, which would cut it short, is a BadFileName.
const char* ForCall(const Path& path);

FileKind KindOf(mode_t mode);

/// fstatat, with the time of birth. Negative with errno set if it fails.
int StatAt(int folder, const char* name, int flags, FileStat& into);

/// Takes the advisory lock of an open file or folder. Where there are no locks, that is done.
void TakeLock(int descriptor, const Path& path);

/// "it is a folder" and the like, as a PathFileAccess.
Error NotRegular(FileKind kind, const Path& path);

/// RenameNoReplace where the platform can't do it in one step: the new name is taken first, by a link or by
/// an empty file or folder, and then only that is replaced. Negative with errno set if it fails.
int RenameByTakingTheName(const char* from, const char* to);

std::unique_ptr<File> MakeFile(Descriptor descriptor, const Path& path);
std::unique_ptr<Folder> MakeFolder(Descriptor descriptor, const Path& path);

/// Makes the new file `name` below the folder `folder` (AT_FDCWD: the current one) with exactly `mode`.
std::unique_ptr<File> CreateFileIn(int folder, const char* name, mode_t mode, const Path& path);

/// The entries of the folder `name` below `folder`, sorted by name bytes.
std::vector<FolderEntry> ListFolder(int folder, const char* name, const Path& path);

}  // namespace tarnel::posix
