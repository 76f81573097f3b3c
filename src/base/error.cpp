#include "base/error.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include "base/printable.h"

namespace tarnel {

Error::Error(ErrorNumber number, const std::string& description, std::filesystem::path path, int code)
    : std::runtime_error(description), m_number(number), m_path(std::move(path)), m_code(code) {}

bool IsRefusalOfModes(int code) {
  return code == EPERM || code == EOPNOTSUPP || code == ENOSYS;
}

ErrorNumber NumberOfErrno(int code) {
  switch (code) {
    case ENAMETOOLONG:
    case EILSEQ:
    case ELOOP:
      return ErrorNumber::BadFileName;
    case ENOENT:
      return ErrorNumber::FileNotFound;
    case EEXIST:
      return ErrorNumber::FileExists;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return ErrorNumber::DiskFull;
    case EMFILE:
    case ENFILE:
      return ErrorNumber::TooManyFiles;
    case EACCES:
    case EPERM:
    case EWOULDBLOCK:
      return ErrorNumber::PermissionDenied;
    case EROFS:
    case EBUSY:
    case ETXTBSY:
    case EISDIR:
    case ENOTEMPTY:
      return ErrorNumber::PathFileAccess;
    case ENOTDIR:
      return ErrorNumber::PathNotFound;
    default:
      return ErrorNumber::DeviceIo;
  }
}

Error ErrnoError(int code, std::string_view verb, const std::filesystem::path& path) {
  std::string reason = std::generic_category().message(code);
  if (!reason.empty() && reason[0] >= 'A' && reason[0] <= 'Z') {
    const bool acronym = reason.size() > 1 && reason[1] >= 'A' && reason[1] <= 'Z';
    if (!acronym) reason[0] = static_cast<char>(reason[0] - 'A' + 'a');
  }
  return Error(NumberOfErrno(code),
               "cannot " + std::string(verb) + " " + Printable(path.native()) + ": " + reason, path, code);
}

}  // namespace tarnel
