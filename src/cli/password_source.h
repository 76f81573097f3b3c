#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/secret.h"
#include "cli/messages.h"
#include "cli/options.h"
#include "cli/terminal.h"

namespace tarnel {

/// A variable of the environment, if it is set.
using Variables = std::function<std::optional<std::string>(const char* name)>;

/// A pass phrase and whether a person typed it just now, so that it may want confirming.
struct GivenPassword {
  Secret secret;
  enum class Origin { Typed, Given } origin = Origin::Given;
};

/// The pass phrase from, in this order: --password-file, --password-fd, the file that TARNEL_PASSWORD_FILE
/// names, a prompt. From files the first line without its line end counts. Warns of a file that others may
/// read. Throws CliFailure: Usage if it is empty, can't be read or if there is no way to get one, Cancelled
/// at the prompt.
GivenPassword ObtainPassword(const GlobalOptions& options, const Variables& variables, Terminal& terminal,
                             Messages& messages);

/// The same for the pass phrase that is to take an old one's place, from --new-password-file,
/// --new-password-fd or two prompts. Refuses what a new pass phrase can't hold.
Secret ObtainNewPassword(const NewPasswordOptions& options, bool noInput, Terminal& terminal,
                         Messages& messages);

/// Throws CliFailure(Usage) for an empty pass phrase and for characters that a new one can't hold.
void CheckNewPassword(const Secret& password);

/// A note that says how hard a new pass phrase is to guess, in one line.
void SayStrength(const Secret& password, Messages& messages);

/// Prompts once more. Throws CliFailure: Usage if the two differ, Cancelled.
void ConfirmPassword(const Secret& password, Terminal& terminal);

/// The first line of an open file, byte by byte so that what follows can still be read by others. Throws
/// CliFailure for a read error or a line of more than 64 KiB.
Secret ReadFirstLine(int descriptor, const std::string& name);

}  // namespace tarnel
