#pragma once

#include <optional>

#include "base/dialogue.h"
#include "retrieval/run_extract.h"

namespace tarnel {

/// The rules of the window that extracts.

/// The target may be asked for: a whole path, which need not exist.
bool CanExtractTo(const Path& entered);

/// An existing folder that was typed, for the tree to show; nothing for anything else.
std::optional<Path> FolderToShow(const Path& entered, Files& files);

/// Throws the Error that the first file would end in: the target, or where it is missing the folder that it
/// is to be made in, is none, or this user may make no file there. Nothing is left there.
void MustTakeFiles(const Path& target, Files& files);

/// What the chosen entries say that they hold, in bytes.
double PlainBytes(const ExtractRequest& request, const Catalogue& catalogue);

/// What is to be asked where the files need more than the target has: questions::NoSpaceToExtract. Nothing
/// where there is enough, or nobody knows.
std::optional<Question> SpaceQuestion(const Path& target, double required, Files& files);

}  // namespace tarnel
