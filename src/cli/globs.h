#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarnel {

/// True if `glob` (with *, ? and [ ]) matches the path or a folder above it. One without "/" is compared with
/// each name on the path, one with "/" with the path from its front; * never stands for a "/".
bool GlobMatches(const std::string& glob, std::string_view path);

/// True for a path that one of them matches.
bool AnyGlobMatches(const std::vector<std::string>& globs, std::string_view path);

/// True if it holds a character that only a glob needs.
bool IsGlob(std::string_view text);

/// `path` without "./" and "/" at its front and without doubled "/". One "/" at its end stays.
std::string SimplePath(std::string_view path);

}  // namespace tarnel
