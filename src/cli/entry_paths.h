#pragma once

#include <cstddef>
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

/// Stored names as the platform's bytes.
std::vector<std::string> NamesOf(const std::vector<std::string>& stored);

/// The rows that `wanted` names, in their order, each once: "folder/name" stands for all entries of exactly
/// that path, "folder/" for all below that folder. All rows if nothing is named. Throws
/// CliFailure(EntryNotFound) for the first that names none.
std::vector<std::size_t> MatchEntries(const std::vector<MirrorRow>& rows,
                                      const std::vector<std::string>& wanted);

}  // namespace tarnel
