#include "cli/exit_codes.h"

namespace tarnel {

CliFailure::CliFailure(const Error& error) : CliFailure(CodeOf(error.Number()), error) {}

CliFailure::CliFailure(ExitCode code, const Error& error)
    : std::runtime_error(error.Description()), m_code(code), m_number(error.Number()) {}

ExitCode CodeOf(ErrorNumber number) {
  switch (number) {
    case ErrorNumber::FileExists:
      return ExitCode::OutputExists;
    case ErrorNumber::DiskFull:
      return ExitCode::NoSpace;
    case ErrorNumber::PermissionDenied:
      return ExitCode::Permission;
    case ErrorNumber::BadRecordNumber:
      return ExitCode::Damaged;
    default:
      return ExitCode::Failed;
  }
}

}  // namespace tarnel
