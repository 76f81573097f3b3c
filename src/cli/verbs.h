#pragma once

#include "cli/exit_codes.h"
#include "cli/options.h"
#include "cli/workbench.h"

namespace tarnel {

/// One function for each verb: what it did goes to standard output, the code to the shell. Throws CliFailure
/// or Error when it did not do its work.
ExitCode RunVerb(const HideOptions& options, Surroundings& around);
ExitCode RunVerb(const ListOptions& options, Surroundings& around);
ExitCode RunVerb(const ExtractOptions& options, Surroundings& around);
ExitCode RunVerb(const VerifyOptions& options, Surroundings& around);
ExitCode RunVerb(const DeleteOptions& options, Surroundings& around);
ExitCode RunVerb(const UpdateOptions& options, Surroundings& around);
ExitCode RunVerb(const PasswdOptions& options, Surroundings& around);
ExitCode RunVerb(const SearchOptions& options, Surroundings& around);
ExitCode RunVerb(const RecoverOptions& options, Surroundings& around);
ExitCode RunVerb(const SalvageOptions& options, Surroundings& around);
ExitCode RunVerb(const PassphraseOptions& options, Surroundings& around);

}  // namespace tarnel
