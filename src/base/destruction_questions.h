#pragma once

#include <vector>

#include "base/dialogue.h"
#include "base/files.h"

namespace tarnel {

/// What those who answer by rule know questions by.
namespace question_id {
inline constexpr const char* kTrash = "trash.confirm";
}  // namespace question_id

/// OverwriteAndKill could not do a statement. Id "destroy.error".
Question OverwriteError(const Error& error);

/// RemovePath could not do a statement. Id "remove.error".
Question RemoveError(const Error& error);

/// A path could not go to the trash. Id "trash.error".
Question TrashError(const Error& error);

/// Asked once before `paths` go to the trash. Id "trash.confirm".
Question ConfirmTrash(const std::vector<Path>& paths);

}  // namespace tarnel
