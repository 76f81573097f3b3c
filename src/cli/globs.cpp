#include "cli/globs.h"

#include <fnmatch.h>

#include <algorithm>

namespace tarnel {

bool GlobMatches(const std::string& glob, std::string_view path) {
  std::string pattern = SimplePath(glob);
  if (pattern.ends_with('/')) pattern.pop_back();
  const bool isWhole = pattern.find('/') != std::string::npos;
  for (std::size_t begin = 0, end = 0; end != std::string_view::npos; begin = end + 1) {
    end = path.find('/', begin);
    const std::string part(isWhole ? path.substr(0, end) : path.substr(begin, end - begin));
    if (::fnmatch(pattern.c_str(), part.c_str(), FNM_PATHNAME) == 0) return true;
  }
  return false;
}

bool AnyGlobMatches(const std::vector<std::string>& globs, std::string_view path) {
  return std::ranges::any_of(globs, [path](const std::string& glob) { return GlobMatches(glob, path); });
}

bool IsGlob(std::string_view text) {
  return text.find_first_of("*?[") != std::string_view::npos;
}

std::string SimplePath(std::string_view path) {
  std::string simple;
  while (!path.empty()) {
    const std::size_t end = path.find('/');
    const std::string_view part = path.substr(0, end);
    if (!part.empty() && part != ".") {
      simple += part;
      if (end != std::string_view::npos) simple += '/';
    }
    path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
  }
  return simple;
}

}  // namespace tarnel
