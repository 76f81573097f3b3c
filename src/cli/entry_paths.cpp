#include "cli/entry_paths.h"

#include <algorithm>

#include "base/printable.h"
#include "carrier/stored_text.h"
#include "cli/exit_codes.h"

namespace tarnel {

namespace {

bool Names(const std::string& wanted, const std::string& path) {
  return wanted.ends_with('/') ? path.starts_with(wanted) : path == wanted;
}

}  // namespace

std::string FolderOfEntry(std::string_view folder) {
  std::string joined;
  while (!folder.empty()) {
    const std::size_t end = std::min(folder.find('\\'), folder.size());
    const std::string part = ToPlatform(folder.substr(0, end));
    if (!part.empty()) joined += (joined.empty() ? "" : "/") + part;
    folder.remove_prefix(std::min(end + 1, folder.size()));
  }
  return joined;
}

std::string PathOfEntry(std::string_view folder, std::string_view name) {
  const std::string parent = FolderOfEntry(folder);
  return (parent.empty() ? "" : parent + "/") + ToPlatform(name);
}

std::vector<std::string> NamesOf(const std::vector<std::string>& stored) {
  std::vector<std::string> names;
  names.reserve(stored.size());
  for (const std::string& name : stored)
    names.push_back(ToPlatform(name));
  return names;
}

std::vector<std::size_t> MatchEntries(const std::vector<MirrorRow>& rows,
                                      const std::vector<std::string>& wanted) {
  std::vector<bool> isFound(wanted.size(), false);
  std::vector<std::size_t> matches;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const std::string path = PathOfEntry(rows[row].Folder(), rows[row].Name());
    bool isMatch = wanted.empty();
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      if (!Names(wanted[i], path)) continue;
      isFound[i] = true;
      isMatch = true;
    }
    if (isMatch) matches.push_back(row);
  }
  const auto missing = std::find(isFound.begin(), isFound.end(), false);
  if (missing == isFound.end()) return matches;
  const std::string& name = wanted[static_cast<std::size_t>(missing - isFound.begin())];
  throw CliFailure(ExitCode::EntryNotFound, "the hideout has no entry " + Printable(name));
}

}  // namespace tarnel
