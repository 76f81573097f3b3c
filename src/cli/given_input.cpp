#include "cli/given_input.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "base/posix_calls.h"
#include "base/printable.h"
#include "base/secret.h"
#include "cli/exit_codes.h"
#include "cli/signals.h"

namespace tarnel {

namespace {

constexpr std::size_t kLongestList = std::size_t{64} * 1024 * 1024;

CliFailure CannotRead(const std::string& name) {
  return CliFailure(ExitCode::Failed, ErrnoError(errno, "read", name));
}

/// Hands on all that can be read, piece by piece.
void ReadToTheEnd(int descriptor, const std::string& name,
                  const std::function<void(std::string_view)>& take) {
  std::array<char, 65536> piece{};
  for (;;) {
    const ssize_t got = ::read(descriptor, piece.data(), piece.size());
    if (got < 0 && errno == EINTR && !CancelSignalled()) continue;
    if (CancelSignalled()) throw CliFailure(ExitCode::Cancelled, "cancelled");
    if (got < 0) throw CannotRead(name);
    if (got == 0) break;
    take({piece.data(), static_cast<std::size_t>(got)});
  }
  Wipe(piece.data(), piece.size());
}

std::vector<std::string> Split(const std::string& text) {
  const char end = text.find('\0') == std::string::npos ? '\n' : '\0';
  std::vector<std::string> names;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t next = std::min(text.find(end, at), text.size());
    if (next > at) names.push_back(text.substr(at, next - at));
    at = next + 1;
  }
  return names;
}

}  // namespace

std::vector<std::string> ReadNameList(const std::string& file) {
  const bool isInput = file == "-";
  const posix::Descriptor opened(isInput ? ::dup(STDIN_FILENO) : ::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!opened.IsOpen()) throw CannotRead(file);
  std::string text;
  ReadToTheEnd(opened.Get(), isInput ? "standard input" : file, [&](std::string_view piece) {
    text += piece;
    if (text.size() > kLongestList)
      throw CliFailure(ExitCode::Usage, Printable(file) + " is too long for a list of names");
  });
  return Split(text);
}

HeldInput::HeldInput() : m_number(::memfd_create("tarnel", MFD_CLOEXEC)) {
  if (m_number < 0) throw CannotRead("standard input");
  try {
    ::fchmod(m_number, S_IRUSR | S_IWUSR);
    std::size_t size = 0;
    ReadToTheEnd(STDIN_FILENO, "standard input", [&](std::string_view piece) {
      size += piece.size();
      if (size > kLimit)
        throw CliFailure(ExitCode::NoSpace,
                         "more than 512 MiB came through standard input, which is the limit");
      while (!piece.empty()) {
        const ssize_t put = ::write(m_number, piece.data(), piece.size());
        if (put < 0 && errno == EINTR) continue;
        if (put < 0)
          throw CliFailure(ExitCode::NoSpace, ErrnoError(errno, "keep in memory", "standard input"));
        piece.remove_prefix(static_cast<std::size_t>(put));
      }
    });
  } catch (...) {
    ::close(m_number);
    throw;
  }
}

HeldInput::~HeldInput() {
  ::close(m_number);
}

std::string HeldInput::Path() const {
  return "/proc/self/fd/" + std::to_string(m_number);
}

}  // namespace tarnel
