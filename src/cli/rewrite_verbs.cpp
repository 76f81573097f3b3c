#include "cli/rewrite_verbs.h"

#include "base/printable.h"
#include "carrier/leftovers.h"
#include "cli/leftovers.h"

namespace tarnel {

Leftover PrepareRewrite(Workbench& bench, Surroundings& around) {
  RefuseBusy(bench.Carrier(), around.files);
  const std::vector<Path> leftovers = LeftoversOfRewriting(bench.Carrier(), around.files);
  if (leftovers.empty()) return Leftover::Refuse;
  AskAboutLeftovers(leftovers, around);
  return Leftover::Replace;
}

void CheckRewrite(RewriteEnding ending, const Path& temporary, const Surroundings& around) {
  around.talk.Progress().Clear();
  switch (ending) {
    case RewriteEnding::Done:
      return;
    case RewriteEnding::Cancelled:
      throw CliFailure(ExitCode::Cancelled, "cancelled; the carrier is as it was");
    case RewriteEnding::NotReplaced:
      around.messages.Warn("the carrier is as it was; the finished new one is " +
                           Printable(temporary.native()));
      [[fallthrough]];
    case RewriteEnding::Aborted:
      throw around.talk.LastFailure();
  }
}

}  // namespace tarnel
