#include <algorithm>

#include "base/printable.h"
#include "carrier/tags.h"
#include "cli/entry_paths.h"
#include "cli/json_output.h"
#include "cli/rewrite_verbs.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "retrieval/run_update.h"

namespace tarnel {

namespace {

/// The newest entry of exactly that path.
const MirrorRow& FindEntry(const Workbench& bench, const std::string& entry, Messages& messages) {
  const std::vector<std::size_t> rows = MatchEntries(bench.Rows(), {entry});
  if (rows.size() > 1) {
    messages.Warn("several entries have the name " + Printable(entry) + "; the newest of them is updated");
  }
  return bench.Rows()[rows.front()];
}

int LevelOf(const PreviewParcel& parcel) {
  return static_cast<int>(std::clamp(ReadNumber(parcel.ViewCompressed), 1.0, 9.0));
}

void Report(const UpdateOptions& options, Surroundings& around) {
  if (around.options.json) {
    Json object = JsonObject();
    PutBytes(object, "carrier", options.carrier);
    PutBytes(object, "entry", options.entry);
    object["updated"] = 1;
    around.terminal.Write(JsonLine(object));
    return;
  }
  around.messages.Note(Printable(options.entry) + " updated in " + Printable(options.carrier));
}

}  // namespace

ExitCode RunVerb(const UpdateOptions& options, Surroundings& around) {
  if (options.entry.ends_with('/')) {
    throw CliFailure(ExitCode::Usage, "only a single file can be updated, not a folder");
  }
  Workbench bench(options.carrier, around);
  const Leftover leftover = PrepareRewrite(bench, around);
  around.files.OpenToRead(options.file);
  bench.Open();
  bench.WarnOfFaults();
  PreviewParcel parcel = ParcelOf(FindEntry(bench, options.entry, around.messages));
  const UpdateRequest request{.previewFile = FullPath(options.file, around.files),
                              .compressionLevel = LevelOf(parcel),
                              .leftover = leftover};
  RewriteOnTerminal screen(around.talk, "Updating " + options.entry);
  const UpdateResult result = RunUpdate(request, parcel, bench.GetReading(), screen);
  if (result.refused != UpdateResult::Refused::No) {
    throw CliFailure(ExitCode::Failed, "nothing was updated");
  }
  CheckRewrite(result.ending, result.temporary, around);
  Report(options, around);
  return ExitCode::Done;
}

}  // namespace tarnel
