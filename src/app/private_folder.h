#pragma once

#include "base/files.h"

namespace tarnel {

/// Makes `folder`, and the one around it, for this user only where they are missing. Another process may make
/// them at the same moment.
void MakePrivateFolder(const Path& folder, Files& files);

}  // namespace tarnel
