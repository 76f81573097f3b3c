#include "tests/proof/interposer.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <string>

// The definitions below take the place of the C library's, so that even a forgotten call is counted as long
// as it goes through one of them. They end in system calls of their own.

namespace tarnel::test {

namespace {

using Moment = Interposition::Moment;

Interposition g_settings;
long g_changes = 0;
long g_transfers = 0;
long g_interruptible = 0;

[[noreturn]] void Die() {
  ::syscall(SYS_kill, ::getpid(), SIGKILL);
  for (;;)
    ::pause();
}

bool IsDue(long& counter, long every) {
  return every > 0 && ++counter % every == 0;
}

bool IsInterrupted() {
  if (!IsDue(g_interruptible, g_settings.interruptEvery)) return false;
  errno = EINTR;
  return true;
}

std::size_t Shortened(std::size_t length) {
  return length > 1 && IsDue(g_transfers, g_settings.shortEvery) ? length / 2 : length;
}

template <class Call, class Half>
auto Changing(const Call& call, const Half& half) {
  const bool isLast = ++g_changes == g_settings.killAt;
  if (isLast && g_settings.moment == Moment::Half) half();
  if (isLast && g_settings.moment != Moment::After) Die();
  const auto result = call();
  if (isLast) Die();
  return result;
}

template <class Call>
auto Changing(const Call& call) {
  return Changing(call, [] {});
}

template <class... Arguments>
int System(long number, Arguments... arguments) {
  return static_cast<int>(::syscall(number, arguments...));
}

int Open(int folder, const char* path, int flags, mode_t mode) {
  if (IsInterrupted()) return -1;
  const auto call = [&] { return System(SYS_openat, folder, path, flags, mode); };
  return (flags & O_CREAT) != 0 ? Changing(call) : call();
}

mode_t ModeOf(int flags, va_list arguments) {
  return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

long NumberIn(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? 0 : std::atol(value);
}

__attribute__((constructor)) void ReadEnvironment() {
  Interpose({.killAt = NumberIn("TARNEL_KILL_AT"),
             .moment = static_cast<Moment>(NumberIn("TARNEL_KILL_MOMENT")),
             .shortEvery = NumberIn("TARNEL_SHORT_EVERY"),
             .interruptEvery = NumberIn("TARNEL_INTERRUPT_EVERY"),
             .countTo = std::getenv("TARNEL_COUNT_TO")});
}

__attribute__((destructor)) void WriteCount() {
  if (g_settings.countTo == nullptr) return;
  const std::string text = std::to_string(g_changes);
  const int file = System(SYS_openat, AT_FDCWD, g_settings.countTo, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  ::syscall(SYS_write, file, text.data(), text.size());
  ::syscall(SYS_close, file);
}

}  // namespace

void Interpose(const Interposition& settings) {
  g_settings = settings;
  g_changes = g_transfers = g_interruptible = 0;
}

long ChangesSeen() {
  return g_changes;
}

}  // namespace tarnel::test

extern "C" {

using tarnel::test::Changing;
using tarnel::test::IsInterrupted;
using tarnel::test::Shortened;
using tarnel::test::System;

ssize_t pwrite(int file, const void* bytes, size_t length, off_t offset) {
  if (IsInterrupted()) return -1;
  length = Shortened(length);
  return Changing([&] { return ::syscall(SYS_pwrite64, file, bytes, length, offset); },
                  [&] { ::syscall(SYS_pwrite64, file, bytes, length / 2, offset); });
}

ssize_t write(int file, const void* bytes, size_t length) {
  const auto call = [&] { return ::syscall(SYS_write, file, bytes, length); };
  if (file <= STDERR_FILENO) return call();
  if (IsInterrupted()) return -1;
  length = Shortened(length);
  return Changing(call, [&] { ::syscall(SYS_write, file, bytes, length / 2); });
}

ssize_t copy_file_range(int source, off64_t* from, int target, off64_t* to, size_t length, unsigned flags) {
  if (IsInterrupted()) return -1;
  length = Shortened(length);
  const auto copy = [&](size_t bytes) {
    return ::syscall(SYS_copy_file_range, source, from, target, to, bytes, flags);
  };
  return Changing([&] { return copy(length); }, [&] { copy(length / 2); });
}

ssize_t pread(int file, void* bytes, size_t length, off_t offset) {
  if (IsInterrupted()) return -1;
  return ::syscall(SYS_pread64, file, bytes, Shortened(length), offset);
}

ssize_t read(int file, void* bytes, size_t length) {
  if (IsInterrupted()) return -1;
  return ::syscall(SYS_read, file, bytes, Shortened(length));
}

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = tarnel::test::ModeOf(flags, arguments);
  va_end(arguments);
  return tarnel::test::Open(AT_FDCWD, path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = tarnel::test::ModeOf(flags, arguments);
  va_end(arguments);
  return tarnel::test::Open(folder, path, flags, mode);
}

int ftruncate(int file, off_t length) noexcept {
  if (IsInterrupted()) return -1;
  return Changing([&] { return System(SYS_ftruncate, file, length); });
}

int fsync(int file) {
  if (IsInterrupted()) return -1;
  return Changing([&] { return System(SYS_fsync, file); });
}

int flock(int file, int operation) noexcept {
  return IsInterrupted() ? -1 : System(SYS_flock, file, operation);
}

int fchmod(int file, mode_t mode) noexcept {
  return Changing([&] { return System(SYS_fchmod, file, mode); });
}

int chmod(const char* path, mode_t mode) noexcept {
  return Changing([&] { return System(SYS_fchmodat, AT_FDCWD, path, mode); });
}

int rename(const char* from, const char* to) noexcept {
  return Changing([&] { return System(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0); });
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
  return Changing([&] { return System(SYS_renameat2, fromFolder, from, toFolder, to, 0); });
}

int unlink(const char* path) noexcept {
  return Changing([&] { return System(SYS_unlinkat, AT_FDCWD, path, 0); });
}

int unlinkat(int folder, const char* path, int flags) noexcept {
  return Changing([&] { return System(SYS_unlinkat, folder, path, flags); });
}

int mkdir(const char* path, mode_t mode) noexcept {
  return Changing([&] { return System(SYS_mkdirat, AT_FDCWD, path, mode); });
}

int mkdirat(int folder, const char* path, mode_t mode) noexcept {
  return Changing([&] { return System(SYS_mkdirat, folder, path, mode); });
}

int rmdir(const char* path) noexcept {
  return Changing([&] { return System(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR); });
}

}  // extern "C"
