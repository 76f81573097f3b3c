#include "base/printable.h"
#include "cli/entry_paths.h"
#include "cli/json_output.h"
#include "cli/rewrite_verbs.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "retrieval/run_delete.h"

namespace tarnel {

namespace {

void Report(const DeleteOptions& options, const DeleteResult& result, Surroundings& around) {
  if (around.options.json) {
    Json object = JsonObject();
    PutBytes(object, "carrier", options.carrier);
    object["deleted"] = result.deleted;
    around.terminal.Write(JsonLine(object));
    return;
  }
  around.messages.Note(std::to_string(result.deleted) + (result.deleted == 1 ? " entry" : " entries") +
                       " deleted from " + Printable(options.carrier));
}

}  // namespace

ExitCode RunVerb(const DeleteOptions& options, Surroundings& around) {
  Workbench bench(options.carrier, around);
  const Leftover leftover = PrepareRewrite(bench, around);
  bench.Open();
  bench.WarnOfFaults();
  const DeleteRequest request{.rows = MatchEntries(bench.Rows(), options.entries), .leftover = leftover};
  RewriteOnTerminal screen(around.talk, "Deleting");
  const DeleteResult result = RunDelete(request, bench.GetReading(), screen);
  CheckRewrite(result.ending, result.temporary, around);
  Report(options, result, around);
  return ExitCode::Done;
}

}  // namespace tarnel
