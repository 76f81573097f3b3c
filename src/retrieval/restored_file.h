#pragma once

#include <sys/types.h>

#include <string_view>

#include "base/files.h"

namespace tarnel {

/// The permission bits that a plain record gives its file back: "?Mode=<", else what "?Attr=<" says.
mode_t RestoredModeOf(std::string_view record);

}  // namespace tarnel
