#pragma once

#include <string_view>

#include "base/dialogue.h"
#include "base/files.h"

namespace tarnel {

/// Characters that a new name of a folder may not hold.
inline constexpr std::string_view kRefusedInDirectoryNames = "\\/:*?<>|\"";

/// "tree.not-ready": a folder or drive that was opened can't be read.
Question NotReadyQuestion(const Path& path);

/// "tree.bad-name": the new name of a folder is none.
Question BadDirectoryNameQuestion();

/// "tree.error": a folder could not be made, renamed or deleted.
Question TreeErrorQuestion(const Error& error);

/// "tree.confirm-delete": asked before a folder goes with all it holds, not to the trash. No is preset.
Question ConfirmDeleteQuestion(const Path& path);

}  // namespace tarnel
