#pragma once

#include <vector>

#include "base/files.h"
#include "cli/workbench.h"

namespace tarnel {

/// Says what may lie there and asks whether the run may replace it. Returns at once if nothing lies there.
/// Throws CliFailure: Failed unless the person says Yes, Cancelled.
void AskAboutLeftovers(const std::vector<Path>& leftovers, Surroundings& around);

/// After an aborted run: puts the complete backup in the place of the torn carrier, in one step and synced.
/// `size` is what the carrier had before the run. Throws Error, or CliFailure if the backup isn't complete;
/// the carrier is then as it was before the call, and the message says which file is intact and what to do.
void PutBackCarrier(const Path& carrier, const Path& backup, Length size, Files& files);

}  // namespace tarnel
