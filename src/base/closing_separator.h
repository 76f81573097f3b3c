#pragma once

#include "base/files.h"

namespace tarnel {

/// The path without the separators at its end; a root stays what it is.
inline Path WithoutClosingSeparator(const Path& path) {
  return path.has_filename() || !path.has_relative_path() ? path : path.parent_path();
}

}  // namespace tarnel
