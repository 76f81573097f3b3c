#pragma once

#include "cli/workbench.h"

namespace tarnel {

/// Writes the contents of one entry to standard output. All of it is read and authenticated first; nothing is
/// written of a damaged entry, and nothing plain touches a disk. Throws CliFailure: Damaged, ReaderGone,
/// Cancelled; Damaged behind the first byte only where the carrier changes meanwhile.
void ExtractToOutput(const MirrorRow& row, const Path& carrier, Surroundings& around);

}  // namespace tarnel
