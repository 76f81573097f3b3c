#pragma once

#include <string>
#include <string_view>

#include "base/files.h"

namespace tarnel {

/// `prefix` and 16 random letters and digits (80 bits of the system's generator): nobody can guess it, and
/// what it says about its maker is the prefix. Throws Error DeviceIo if the generator fails.
std::string RandomName(std::string_view prefix);

/// $TMPDIR if it is an absolute path, else /tmp.
Path SystemTempFolder();

/// Makes a new folder in the system's temporary folder that only the user can enter (0700), and gives its
/// path. Its name is RandomName of the prefix.
Path MakeTempFolder(Files& files, std::string_view prefix);

}  // namespace tarnel
