#pragma once

#include "base/files.h"

namespace tarnel {

/// The value of an environment variable if it is an absolute path, else nothing.
Path AbsoluteFromEnvironment(const char* variable);

/// $HOME, else what the user database says; empty if there is none.
Path HomeFolder();

}  // namespace tarnel
