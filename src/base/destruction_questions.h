#pragma once

#include <vector>

#include "base/dialogue.h"
#include "base/files.h"

namespace tarnel {

/// OverwriteAndKill could not do a statement. Id "destroy.error".
Question OverwriteError(const Error& error);

/// RemovePath could not do a statement. Id "remove.error".
Question RemoveError(const Error& error);

/// A path could not go to the trash. Id "trash.error".
Question TrashError(const Error& error);

/// Asked once before `paths` go to the trash. Id "trash.confirm".
Question ConfirmTrash(const std::vector<Path>& paths);

}  // namespace tarnel
