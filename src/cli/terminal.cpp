#include "cli/terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>

#include "base/error.h"
#include "cli/exit_codes.h"
#include "cli/signals.h"

namespace tarnel {

namespace {

/// 0, or the errno value of the write that failed.
int WriteAll(int stream, std::string_view text) {
  while (!text.empty()) {
    const ssize_t put = ::write(stream, text.data(), text.size());
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) return errno;
    text.remove_prefix(static_cast<std::size_t>(put));
  }
  return 0;
}

/// The controlling terminal, opened for one prompt.
class Tty {
 public:
  Tty() : m_number(::open("/dev/tty", O_RDWR | O_CLOEXEC)) {}
  ~Tty() {
    if (IsOpen()) ::close(m_number);
  }
  Tty(const Tty&) = delete;
  Tty& operator=(const Tty&) = delete;

  bool IsOpen() const { return m_number >= 0; }
  int Number() const { return m_number; }

 private:
  int m_number;
};

/// No echo, and no stopping by Ctrl+Z, which would leave the shell without one.
class EchoOff {
 public:
  explicit EchoOff(int tty) : m_tty(tty) {
    m_isSet = ::tcgetattr(tty, &m_before) == 0;
    if (!m_isSet) return;
    termios silent = m_before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    silent.c_lflag |= ECHONL;
    silent.c_cc[VSUSP] = _POSIX_VDISABLE;
    ::tcsetattr(tty, TCSAFLUSH, &silent);
  }
  ~EchoOff() {
    if (m_isSet) ::tcsetattr(m_tty, TCSADRAIN, &m_before);
  }
  EchoOff(const EchoOff&) = delete;
  EchoOff& operator=(const EchoOff&) = delete;

 private:
  int m_tty;
  bool m_isSet = false;
  termios m_before{};
};

/// False once the person cancelled.
bool WaitForInput(int tty) {
  const HoldSignals hold;
  while (!CancelSignalled()) {
    pollfd wait{tty, POLLIN, 0};
    if (::ppoll(&wait, 1, nullptr, hold.Waiting()) > 0) return true;
  }
  return false;
}

/// One line from the terminal without its end. Nothing on a cancel or where the input ends.
std::optional<Secret> ReadTtyLine(int tty) {
  Secret line;
  for (;;) {
    if (!WaitForInput(tty)) return std::nullopt;
    char c = 0;
    const ssize_t got = ::read(tty, &c, 1);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return std::nullopt;
    if (c == '\n') return line;
    line.Append(c);
    Wipe(&c, 1);
  }
}

}  // namespace

void ProcessTerminal::Write(std::string_view text) {
  if (m_writeError == 0) m_writeError = WriteAll(STDOUT_FILENO, text);
}

void ProcessTerminal::FinishOutput() {
  // Some file systems report a full disk only at close.
  const int copy = ::dup(STDOUT_FILENO);
  if (copy >= 0 && ::close(copy) != 0 && m_writeError == 0) m_writeError = errno;
  if (m_writeError == EPIPE) throw CliFailure(ExitCode::ReaderGone, "the reader of standard output is gone");
  if (m_writeError != 0) throw ErrnoError(m_writeError, "write to", "standard output");
}

void ProcessTerminal::WriteError(std::string_view text) {
  WriteAll(STDERR_FILENO, text);
}

bool ProcessTerminal::OutputIsTerminal() const {
  return ::isatty(STDOUT_FILENO) == 1;
}

bool ProcessTerminal::ErrorIsTerminal() const {
  return ::isatty(STDERR_FILENO) == 1;
}

std::size_t ProcessTerminal::Width() const {
  winsize size{};
  const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col : 80;
}

bool ProcessTerminal::CanAsk() {
  return Tty().IsOpen();
}

std::optional<std::string> ProcessTerminal::ReadLine(std::string_view prompt) {
  const Tty tty;
  if (!tty.IsOpen()) return std::nullopt;
  WriteAll(tty.Number(), prompt);
  const std::optional<Secret> line = ReadTtyLine(tty.Number());
  if (!line) return std::nullopt;
  return std::string(line->View());
}

std::optional<Secret> ProcessTerminal::ReadSecret(std::string_view prompt) {
  const Tty tty;
  if (!tty.IsOpen()) return std::nullopt;
  const EchoOff silence(tty.Number());
  WriteAll(tty.Number(), prompt);
  return ReadTtyLine(tty.Number());
}

bool ProcessTerminal::CancelRequested() const {
  return CancelSignalled();
}

}  // namespace tarnel
