#pragma once

#include <string>
#include <vector>

#include "cli/entries.h"
#include "cli/workbench.h"

namespace tarnel {

/// What is wanted of a hideout by `named`, --files-from and --exclude. Throws CliFailure as ReadNameList
/// does.
EntryWish WishOf(const std::vector<std::string>& named, const ChoiceOptions& choice);

/// The paths of the rows, each once, in their order.
std::vector<std::string> PathsOf(const std::vector<MirrorRow>& rows, const std::vector<std::size_t>& chosen);

/// For --dry-run: prints the paths as list shows them, or puts them into the report as `member`.
void ShowChoice(const std::vector<std::string>& paths, const char* member, Surroundings& around);

/// "letter.txt (2 versions), notes.txt and 12 more": at most ten, as list shows them.
std::string SentenceOf(const std::vector<MirrorRow>& rows, const std::vector<std::size_t>& chosen);

}  // namespace tarnel
