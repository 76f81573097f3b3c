#include "base/printable.h"
#include "cli/choice.h"
#include "cli/rewrite_verbs.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "retrieval/run_delete.h"

namespace tarnel {

ExitCode RunVerb(const DeleteOptions& options, Surroundings& around) {
  const EntryWish wish = WishOf(options.entries, options.choice);
  if (wish.named.empty()) throw CliFailure(ExitCode::Usage, "ENTRY is missing; see tarnel-cli delete --help");
  Workbench bench(options.carrier, around);
  const Leftover leftover = options.choice.dryRun ? Leftover::Refuse : PrepareRewrite(bench, around);
  bench.Open();
  bench.WarnOfFaults();
  const DeleteRequest request{.rows = MatchEntries(bench.Rows(), wish), .leftover = leftover};
  const std::vector<std::string> paths = PathsOf(bench.Rows(), request.rows);
  if (options.choice.dryRun) {
    ShowChoice(paths, "would_delete", around);
    around.messages.Note("would be deleted: " + SentenceOf(bench.Rows(), request.rows));
    return ExitCode::Done;
  }
  const std::string names = SentenceOf(bench.Rows(), request.rows);
  RewriteOnTerminal screen(around.talk, "Deleting");
  const DeleteResult result = RunDelete(request, bench.GetReading(), screen);
  CheckRewrite(result.ending, result.temporary, around);
  around.report["deleted"] = result.deleted;
  around.report["paths"] = JsonOfPaths(paths);
  around.messages.Note(std::to_string(result.deleted) + (result.deleted == 1 ? " entry" : " entries") +
                       " deleted from " + Printable(options.carrier) + ": " + names);
  return ExitCode::Done;
}

}  // namespace tarnel
