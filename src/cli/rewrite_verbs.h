#pragma once

#include "cli/workbench.h"
#include "retrieval/carrier_rewrite.h"

namespace tarnel {

/// What delete, update and passwd share around their rewriter.

/// Refuses a busy carrier and asks about a ".tmp" that lies beside it. Gives what the rewriter may do with
/// it.
Leftover PrepareRewrite(Workbench& bench, Surroundings& around);

/// Throws CliFailure unless the carrier was replaced: Cancelled, or the error that ended the run.
void CheckRewrite(RewriteEnding ending, const Path& temporary, const Surroundings& around);

}  // namespace tarnel
