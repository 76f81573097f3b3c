#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/error.h"

namespace tarnel {

/// What tarnel-cli tells a script.
enum class ExitCode : int {
  Done = 0,
  Failed = 1,
  Usage = 2,
  PartlyDone = 3,
  OutputExists = 4,
  NoSpace = 5,
  Permission = 6,
  Damaged = 7,
  Busy = 8,
  Unreadable = 9,
  CarrierNotFound = 10,
  NoHideout = 12,
  EntryNotFound = 13,
  Cancelled = 130,
  ReaderGone = 141,
};

struct ExitCodeRow {
  ExitCode code;
  const char* meaning;  ///< for the manual page
};
const std::vector<ExitCodeRow>& ExitCodeTable();

/// Ends a verb: the sentence for the person, the code for the script.
class CliFailure : public std::runtime_error {
 public:
  CliFailure(ExitCode code, const std::string& message) : std::runtime_error(message), m_code(code) {}

  /// With the code that CodeOf gives the error's number.
  explicit CliFailure(const Error& error);
  CliFailure(ExitCode code, const Error& error);

  ExitCode Code() const { return m_code; }
  /// The runtime's number where an Error was the cause.
  const std::optional<ErrorNumber>& Number() const { return m_number; }

 private:
  ExitCode m_code;
  std::optional<ErrorNumber> m_number;
};

/// The one table from error numbers to exit codes. That it is the carrier that is missing, locked or damaged
/// only the verb knows.
ExitCode CodeOf(ErrorNumber number);

}  // namespace tarnel
