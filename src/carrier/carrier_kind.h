#pragma once

#include <string>
#include <string_view>

#include "base/files.h"

namespace tarnel {

/// How many bytes from its front tell what kind of file it is.
inline constexpr Length kKindBytes = 32;

/// One line that says what the file with these first bytes is and how readers of its kind stand a hideout, as
/// doc/carriers.md has it. A line of its own for kinds that weren't tried; the name doesn't count.
std::string_view CarrierAdvice(std::string_view firstBytes);

/// The same for a file; empty if it can't be read.
std::string CarrierAdviceFor(const Path& carrier, Files& files);

}  // namespace tarnel
