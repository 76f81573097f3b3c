#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/files.h"

namespace tarnel {

/// What a plain record gives its file back beside contents and name.
struct RestoredAttributes {
  mode_t mode = 0600;                    ///< "?Mode=<", else what "?Attr=<" says
  std::optional<std::int64_t> modified;  ///< "?Mtime=<": seconds since 1970, in UTC
};
RestoredAttributes RestoredAttributesOf(std::string_view record);

}  // namespace tarnel
