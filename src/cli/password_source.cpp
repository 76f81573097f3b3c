#include "cli/password_source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>

#include "base/error.h"
#include "base/posix_calls.h"
#include "base/printable.h"
#include "carrier/questions.h"
#include "cli/signals.h"
#include "crypto/phrase_strength.h"

namespace tarnel {

namespace {

constexpr std::size_t kLongestLine = std::size_t{64} * 1024;

CliFailure Unreadable(const std::string& name) {
  return CliFailure(ExitCode::Usage, ErrnoError(errno, "read the password from", name));
}

CliFailure CancelledAtPrompt() {
  return CliFailure(ExitCode::Cancelled, "cancelled at the password prompt");
}

void WarnIfOthersMayRead(int descriptor, const std::string& name, Messages& messages) {
  struct stat data {};
  if (::fstat(descriptor, &data) != 0 || !S_ISREG(data.st_mode)) return;
  if ((data.st_mode & (S_IRWXG | S_IRWXO)) == 0) return;
  messages.Warn("others may read the password file " + Printable(name) + "; chmod 600 shuts them out");
}

/// Waits for the other end of a pipe; only a signal that asks to stop ends that.
int OpenToRead(const std::string& name) {
  for (;;) {
    const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor >= 0 || errno != EINTR) return descriptor;
    if (CancelSignalled()) throw CancelledAtPrompt();
  }
}

Secret FromFile(const std::string& name, Messages& messages) {
  if (name == "-") return ReadFirstLine(STDIN_FILENO, "standard input");
  const posix::Descriptor file(OpenToRead(name));
  if (!file.IsOpen()) throw Unreadable(name);
  WarnIfOthersMayRead(file.Get(), name, messages);
  return ReadFirstLine(file.Get(), name);
}

Secret FromDescriptor(int number) {
  return ReadFirstLine(number, "file descriptor " + std::to_string(number));
}

std::optional<Secret> FromPlaces(const GlobalOptions& options, const Variables& variables,
                                 Messages& messages) {
  if (options.passwordFile) return FromFile(*options.passwordFile, messages);
  if (options.passwordFd) return FromDescriptor(*options.passwordFd);
  if (const auto name = variables("TARNEL_PASSWORD_FILE"); name && !name->empty())
    return FromFile(*name, messages);
  return std::nullopt;
}

Secret Prompted(Terminal& terminal, const char* prompt) {
  std::optional<Secret> typed = terminal.ReadSecret(prompt);
  if (!typed) throw CancelledAtPrompt();
  return std::move(*typed);
}

}  // namespace

void CheckNewPassword(const Secret& password) {
  const std::string_view text = password.View();
  if (text.empty()) throw CliFailure(ExitCode::Usage, "the new password is empty");
  if (std::any_of(text.begin(), text.end(), NewPasswordRefuses)) {
    throw CliFailure(ExitCode::Usage, "a new password can't hold \"<\" or \">\"");
  }
}

void SayStrength(const Secret& password, Messages& messages) {
  const PhraseStrength strength = StrengthOf(password);
  std::string line = "The new password is " + std::string(WordOf(strength.grade)) + ", about " +
                     std::to_string(std::lround(strength.bits)) + " bits";
  if (strength.grade != Strength::Strong) line += "; " + std::string(kStrengthAdvice);
  messages.Note(line + ".");
}

Secret ReadFirstLine(int descriptor, const std::string& name) {
  Secret line;
  for (;;) {
    char c = 0;
    const ssize_t got = ::read(descriptor, &c, 1);
    if (got < 0 && errno == EINTR && !CancelSignalled()) continue;
    if (got < 0) throw errno == EINTR ? CancelledAtPrompt() : Unreadable(name);
    if (got == 0) return line;
    if (c == '\n') break;
    line.Append(c);
    Wipe(&c, 1);
    if (line.View().size() > kLongestLine) {
      throw CliFailure(ExitCode::Usage,
                       "the first line of " + Printable(name) + " is too long for a password");
    }
  }
  if (!line.IsEmpty() && line.View().back() == '\r') line.RemoveLast();
  return line;
}

GivenPassword ObtainPassword(const GlobalOptions& options, const Variables& variables, Terminal& terminal,
                             Messages& messages) {
  GivenPassword password;
  if (std::optional<Secret> given = FromPlaces(options, variables, messages)) {
    password = {std::move(*given), GivenPassword::Origin::Given};
  } else if (!options.noInput && terminal.CanAsk()) {
    password = {Prompted(terminal, "Password: "), GivenPassword::Origin::Typed};
  } else {
    throw CliFailure(
        ExitCode::Usage,
        "no password: give --password-file FILE, --password-fd N or TARNEL_PASSWORD_FILE, or run "
        "in a terminal");
  }
  if (password.secret.IsEmpty()) throw CliFailure(ExitCode::Usage, "the password is empty");
  return password;
}

Secret ObtainNewPassword(const NewPasswordOptions& options, bool noInput, Terminal& terminal,
                         Messages& messages) {
  Secret password;
  if (options.file) {
    password = FromFile(*options.file, messages);
  } else if (options.descriptor) {
    password = FromDescriptor(*options.descriptor);
  } else if (!noInput && terminal.CanAsk()) {
    password = Prompted(terminal, "New password: ");
    CheckNewPassword(password);
    ConfirmPassword(password, terminal);
  } else {
    throw CliFailure(ExitCode::Usage,
                     "no new password: give --new-password-file FILE or --new-password-fd N, or run in a "
                     "terminal");
  }
  CheckNewPassword(password);
  SayStrength(password, messages);
  return password;
}

void ConfirmPassword(const Secret& password, Terminal& terminal) {
  const std::optional<Secret> again = terminal.ReadSecret("Retype Password for Confirmation: ");
  if (!again) throw CancelledAtPrompt();
  if (*again == password) return;
  throw CliFailure(ExitCode::Usage, NewHideoutMessage(NewHideoutFault::ConfirmationDiffers).text);
}

}  // namespace tarnel
