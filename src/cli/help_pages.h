#pragma once

#include <cstddef>
#include <string>

#include "cli/command_table.h"

namespace tarnel {

/// What --help prints, in lines of `width` characters at most where words allow it.
std::string ProgramHelp(std::size_t width);
std::string VerbHelp(const VerbRow& verb, std::size_t width);

}  // namespace tarnel
