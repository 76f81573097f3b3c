#pragma once

#include <memory>
#include <vector>

#include "base/files.h"

namespace tarnel {

/// Files that operations put beside a carrier: the whole file name with a suffix added.
Path BackupPath(const Path& carrier);            ///< ".bak", a hide's way back
Path TemporaryCarrierPath(const Path& carrier);  ///< ".tmp", a rewrite's result in the making

/// Those of the two that exist: an interrupted run left them, or they are the user's own files.
std::vector<Path> LeftoversBeside(const Path& carrier, Files& files);

/// Change: for reading and writing. Read: enough for an operation that replaces the file by another one, and
/// possible where the file is write-protected.
enum class LockAccess { Change, Read };

/// Opens, locks, and makes sure that the path still names the locked file.
/// Errors: FileNotFound, PathFileAccess for what is no regular file, PermissionDenied for a lock that another
/// process holds.
std::unique_ptr<File> OpenLocked(const Path& carrier, Files& files, LockAccess access = LockAccess::Change);

}  // namespace tarnel
