#include "tools/soak/interposer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <cstdarg>

// The definitions below take the place of the C library's, so that even a forgotten call is counted as long
// as it goes through one of them. They end in system calls of their own.

namespace tarnel::test {

namespace {

long g_killAt = 0;
Moment g_moment = Moment::Before;
long g_changes = 0;

[[noreturn]] void Die() {
  ::syscall(SYS_kill, ::getpid(), SIGKILL);
  for (;;)
    ::pause();
}

template <class Call, class Half>
auto Changing(const Call& call, const Half& half) {
  const bool isLast = ++g_changes == g_killAt;
  if (isLast && g_moment == Moment::Half) half();
  if (isLast && g_moment != Moment::After) Die();
  const auto result = call();
  if (isLast) Die();
  return result;
}

template <class... Arguments>
int System(long number, Arguments... arguments) {
  return Changing([&] { return static_cast<int>(::syscall(number, arguments...)); }, [] {});
}

int Open(int folder, const char* path, int flags, va_list arguments) {
  const bool creates = (flags & O_CREAT) != 0;
  const mode_t mode = creates ? va_arg(arguments, mode_t) : 0;
  return creates ? System(SYS_openat, folder, path, flags, mode)
                 : static_cast<int>(::syscall(SYS_openat, folder, path, flags, mode));
}

}  // namespace

void KillAt(long n, Moment moment) {
  g_killAt = n;
  g_moment = moment;
  g_changes = 0;
}

long ChangesSeen() {
  return g_changes;
}

}  // namespace tarnel::test

extern "C" {

using tarnel::test::Changing;
using tarnel::test::System;

ssize_t pwrite(int file, const void* bytes, size_t length, off_t offset) {
  const auto write = [&](size_t count) { return ::syscall(SYS_pwrite64, file, bytes, count, offset); };
  return Changing([&] { return write(length); }, [&] { write(length / 2); });
}

ssize_t copy_file_range(int source, off64_t* from, int target, off64_t* to, size_t length, unsigned flags) {
  const auto copy = [&](size_t count) {
    return ::syscall(SYS_copy_file_range, source, from, target, to, count, flags);
  };
  return Changing([&] { return copy(length); }, [&] { copy(length / 2); });
}

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const int file = tarnel::test::Open(AT_FDCWD, path, flags, arguments);
  va_end(arguments);
  return file;
}

int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const int file = tarnel::test::Open(folder, path, flags, arguments);
  va_end(arguments);
  return file;
}

int ftruncate(int file, off_t length) noexcept {
  return System(SYS_ftruncate, file, length);
}

int fsync(int file) {
  return System(SYS_fsync, file);
}

int fchmod(int file, mode_t mode) noexcept {
  return System(SYS_fchmod, file, mode);
}

int chmod(const char* path, mode_t mode) noexcept {
  return System(SYS_fchmodat, AT_FDCWD, path, mode);
}

int rename(const char* from, const char* to) noexcept {
  return System(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
  return System(SYS_renameat2, fromFolder, from, toFolder, to, 0);
}

int unlink(const char* path) noexcept {
  return System(SYS_unlinkat, AT_FDCWD, path, 0);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
  return System(SYS_unlinkat, folder, path, flags);
}

}  // extern "C"
