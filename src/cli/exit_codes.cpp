#include "cli/exit_codes.h"

namespace tarnel {

CliFailure::CliFailure(const Error& error) : CliFailure(CodeOf(error.Number()), error) {}

CliFailure::CliFailure(ExitCode code, const Error& error)
    : std::runtime_error(error.Description()), m_code(code), m_number(error.Number()) {}

const std::vector<ExitCodeRow>& ExitCodeTable() {
  static const std::vector<ExitCodeRow> table = {
      {ExitCode::Done, "done"},
      {ExitCode::Failed, "another error"},
      {ExitCode::Usage, "wrong usage, or no way to get a password"},
      {ExitCode::PartlyDone, "partly done: something was left out, and named"},
      {ExitCode::OutputExists, "an existing file was kept"},
      {ExitCode::NoSpace, "no space; what doesn't fit was not hidden, and is named"},
      {ExitCode::Permission, "permission denied"},
      {ExitCode::Damaged, "damaged: an entry or the carrier is not whole"},
      {ExitCode::Busy, "another process works on the carrier"},
      {ExitCode::Unreadable, "the disk doesn't give all of the carrier, which may be whole"},
      {ExitCode::CarrierNotFound, "the carrier was not found"},
      {ExitCode::NoHideout, "no hideout opens with this password"},
      {ExitCode::EntryNotFound, "the hideout has no such entry"},
      {ExitCode::Cancelled, "cancelled (Ctrl+C, SIGTERM, SIGHUP); the carrier is as it was"},
      {ExitCode::ReaderGone, "whoever read standard output closed it; nothing is said"}};
  return table;
}

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
