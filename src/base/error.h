#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tarnel {

/// The numbers that messages show and that exit codes are made from.
enum class ErrorNumber : int {
  BadFileName = 52,
  FileNotFound = 53,
  DeviceIo = 57,
  FileExists = 58,
  DiskFull = 61,
  BadRecordNumber = 63,
  TooManyFiles = 67,
  PermissionDenied = 70,
  PathFileAccess = 75,
  PathNotFound = 76,
  ObjectNotSet = 91,
  InvalidPropertyValue = 380,
};

/// Something that the user must hear of. What merely is so ("does not fit", "cancelled") is a result instead.
///
/// The description is a sentence without a full stop that says what failed, on which path and why, such as
/// "cannot open photo.png: permission denied". It goes to window and terminal as it stands.
class Error : public std::runtime_error {
 public:
  Error(ErrorNumber number, const std::string& description, std::filesystem::path path = {}, int code = 0);

  ErrorNumber Number() const { return m_number; }
  std::string Description() const { return what(); }
  const std::filesystem::path& Path() const { return m_path; }

  /// The platform's errno value where that was the cause, else 0.
  int Code() const { return m_code; }

 private:
  ErrorNumber m_number;
  std::filesystem::path m_path;
  int m_code;
};

/// The one table from errno to our numbers; what it doesn't know is DeviceIo.
ErrorNumber NumberOfErrno(int code);

/// Whether the platform says with this errno value that a file can't have such permissions: because the file
/// system keeps none, or because the file is somebody else's.
bool IsRefusalOfModes(int code);

/// "cannot " `verb` " " `path` ": " the platform's reason. `code` is an errno value.
Error ErrnoError(int code, std::string_view verb, const std::filesystem::path& path);

}  // namespace tarnel
