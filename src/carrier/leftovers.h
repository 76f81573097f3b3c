#pragma once

#include <string>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"

namespace tarnel {

/// What lies beside a carrier may be the only whole copy of it, or a file of the user's own. Whatever is
/// about to replace some of it asks first, with the same question in windows and terminals.

/// Those that a hide replaces: the ".bak", if it is there.
std::vector<Path> LeftoversOfHiding(const Path& carrier, Files& files);

/// Those that delete, update and change of password replace: the ".tmp", if it is there.
std::vector<Path> LeftoversOfRewriting(const Path& carrier, Files& files);

/// What the file may be, and how to find out.
std::string LeftoverAdvice(const Path& leftover);

/// Whether the person lets them be replaced. Nothing is asked where there are none.
bool MayReplace(const std::vector<Path>& leftovers, Dialogue& dialogue);

}  // namespace tarnel
