#include "cli/entries.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <optional>
#include <set>
#include <unordered_map>

#include "base/printable.h"
#include "carrier/stored_text.h"
#include "cli/exit_codes.h"
#include "cli/globs.h"

namespace tarnel {

namespace {

using Rows = std::vector<MirrorRow>;

std::optional<std::size_t> NumberIn(const std::string& text) {
  if (text.size() < 2 || text.front() != '#') return std::nullopt;
  std::size_t number = 0;
  const auto [end, fault] = std::from_chars(text.data() + 1, text.data() + text.size(), number);
  const bool isNumber = fault == std::errc() && end == text.data() + text.size();
  return isNumber ? std::optional(number) : std::nullopt;
}

/// The entry of that path, or all below the folder of that path.
bool IsOrHolds(const std::string& wanted, const std::string& path) {
  if (wanted.ends_with('/')) return path.starts_with(wanted);
  return path == wanted ||
         (path.size() > wanted.size() && path.starts_with(wanted) && path[wanted.size()] == '/');
}

class Matcher {
 public:
  explicit Matcher(const Rows& rows) : m_rows(rows) {
    for (const MirrorRow& row : rows) {
      m_paths.push_back(PathOfEntry(row));
      std::string listed = ListedPath(m_paths.back());
      if (listed != m_paths.back()) m_listed.emplace(m_paths.size() - 1, std::move(listed));
    }
  }

  std::vector<std::size_t> Find(const std::string& wanted) const {
    if (const auto number = NumberIn(wanted)) return OfNumber(*number);
    const std::string simple = SimplePath(wanted);
    if (simple.empty()) return {};
    std::vector<std::size_t> found = Where([&](std::size_t row) { return Listed(row) == simple; });
    if (found.empty()) found = Where([&](std::size_t row) { return m_paths[row] == simple; });
    if (found.empty()) found = Where([&](std::size_t row) { return IsOrHolds(simple, Listed(row)); });
    if (found.empty()) found = Where([&](std::size_t row) { return IsOrHolds(simple, m_paths[row]); });
    if (!found.empty() || !IsGlob(simple)) return found;
    return Where([&](std::size_t row) { return GlobMatches(simple, m_paths[row]); });
  }

 private:
  const std::string& Listed(std::size_t row) const {
    const auto other = m_listed.find(row);
    return other == m_listed.end() ? m_paths[row] : other->second;
  }

  std::vector<std::size_t> OfNumber(std::size_t number) const {
    if (number == 0 || number > m_rows.size()) return {};
    return {m_rows.size() - number};
  }

  template <class Matches>
  std::vector<std::size_t> Where(Matches matches) const {
    std::vector<std::size_t> found;
    for (std::size_t row = 0; row < m_rows.size(); ++row)
      if (matches(row)) found.push_back(row);
    return found;
  }

  const Rows& m_rows;
  std::vector<std::string> m_paths;
  std::unordered_map<std::size_t, std::string> m_listed;  ///< where it isn't the path
};

std::vector<bool> Wanted(const Rows& rows, const std::vector<std::string>& named) {
  if (named.empty()) return std::vector<bool>(rows.size(), true);
  std::vector<bool> isWanted(rows.size(), false);
  const Matcher matcher(rows);
  for (const std::string& name : named) {
    const std::vector<std::size_t> found = matcher.Find(name);
    if (found.empty())
      throw CliFailure(ExitCode::EntryNotFound, "the hideout has no entry " + Printable(name));
    for (const std::size_t row : found)
      isWanted[row] = true;
  }
  return isWanted;
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

std::string PathOfEntry(const MirrorRow& row) {
  return PathOfEntry(row.Folder(), row.Name());
}

std::string ListedPath(std::string_view path) {
  std::string doubled;
  for (const char c : path)
    doubled += c == '\\' ? std::string("\\\\") : std::string(1, c);
  return Printable(doubled);
}

std::size_t NumberOfEntry(const Rows& rows, std::size_t row) {
  return rows.size() - row;
}

std::vector<std::string> NamesOf(const std::vector<std::string>& stored) {
  std::vector<std::string> names;
  names.reserve(stored.size());
  for (const std::string& name : stored)
    names.push_back(ToPlatform(name));
  return names;
}

std::vector<std::size_t> MatchEntries(const Rows& rows, const EntryWish& wish) {
  const std::vector<bool> isWanted = Wanted(rows, wish.named);
  const auto isExcluded = [&](const MirrorRow& row) {
    return !wish.excluded.empty() && AnyGlobMatches(wish.excluded, PathOfEntry(row));
  };
  std::vector<std::size_t> matches;
  for (std::size_t row = 0; row < rows.size(); ++row)
    if (isWanted[row] && !isExcluded(rows[row])) matches.push_back(row);
  if (matches.empty() && !wish.excluded.empty())
    throw CliFailure(ExitCode::EntryNotFound, "--exclude leaves no entry");
  return matches;
}

std::map<std::string, std::size_t> VersionsOf(const Rows& rows, const std::vector<std::size_t>& chosen) {
  std::map<std::string, std::size_t> versions;
  for (const std::size_t row : chosen)
    ++versions[PathOfEntry(rows[row])];
  return versions;
}

std::vector<std::size_t> NewestOf(const Rows& rows, const std::vector<std::size_t>& chosen) {
  std::set<std::string> seen;
  std::vector<std::size_t> newest;
  for (const std::size_t row : chosen)
    if (seen.insert(PathOfEntry(rows[row])).second) newest.push_back(row);
  return newest;
}

}  // namespace tarnel
