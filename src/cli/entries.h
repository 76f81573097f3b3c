#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "carrier/catalogue.h"

namespace tarnel {

/// The folder of a hidden file as the platform's bytes, parts joined by "/"; empty for the root. `folder` is
/// stored text.
std::string FolderOfEntry(std::string_view folder);

/// "folder/name", or the name alone.
std::string PathOfEntry(std::string_view folder, std::string_view name);
std::string PathOfEntry(const MirrorRow& row);

/// A path as list shows it: on one line, with a backslash doubled, so that it can be taken back.
std::string ListedPath(std::string_view path);

/// The number of an entry, as list shows it: the oldest is 1, so that a hide changes no other's number.
std::size_t NumberOfEntry(const std::vector<MirrorRow>& rows, std::size_t row);

/// Stored names as the platform's bytes.
std::vector<std::string> NamesOf(const std::vector<std::string>& stored);

/// Which entries a person means.
struct EntryWish {
  /// Each stands for the first of these that there is: the entry of a number ("#12"), the entries of a path
  /// as list shows it or byte for byte, all below such a folder, all that a glob matches. None: all entries.
  std::vector<std::string> named;
  std::vector<std::string> excluded;  ///< globs
};

/// The rows that are wanted, in their order, each once. Throws CliFailure(EntryNotFound) for the first name
/// that there is nothing for, and where everything is excluded.
std::vector<std::size_t> MatchEntries(const std::vector<MirrorRow>& rows, const EntryWish& wish);

/// How many of the rows have each path.
std::map<std::string, std::size_t> VersionsOf(const std::vector<MirrorRow>& rows,
                                              const std::vector<std::size_t>& chosen);

/// The first, so the newest, of each path.
std::vector<std::size_t> NewestOf(const std::vector<MirrorRow>& rows, const std::vector<std::size_t>& chosen);

}  // namespace tarnel
