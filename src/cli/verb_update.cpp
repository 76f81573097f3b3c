#include <algorithm>

#include "base/printable.h"
#include "carrier/tags.h"
#include "cli/entries.h"
#include "cli/rewrite_verbs.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "retrieval/run_update.h"

namespace tarnel {

namespace {

/// The newest entry of exactly that path, or the one of that number.
const MirrorRow& FindEntry(const Workbench& bench, const std::string& entry, Messages& messages) {
  const std::vector<std::size_t> rows = MatchEntries(bench.Rows(), {.named = {entry}, .excluded = {}});
  const auto versions = VersionsOf(bench.Rows(), rows);
  if (versions.size() > 1) {
    throw CliFailure(ExitCode::Usage, "only a single file can be updated; " + Printable(entry) +
                                          " stands for " + std::to_string(versions.size()));
  }
  if (rows.size() > 1) {
    messages.Note("of " + std::to_string(rows.size()) + " versions of " + Printable(entry) +
                  " the newest is updated, number " +
                  std::to_string(NumberOfEntry(bench.Rows(), rows.front())));
  }
  return bench.Rows()[rows.front()];
}

int LevelOf(const PreviewParcel& parcel) {
  return static_cast<int>(std::clamp(ReadNumber(parcel.ViewCompressed), 1.0, 9.0));
}

}  // namespace

ExitCode RunVerb(const UpdateOptions& options, Surroundings& around) {
  if (options.entry.ends_with('/')) {
    throw CliFailure(ExitCode::Usage, "only a single file can be updated, not a folder");
  }
  Workbench bench(options.carrier, around);
  const Leftover leftover = PrepareRewrite(bench, around);
  around.files.OpenToRead(options.file);
  around.messages.ShowAs(FullPath(options.file, around.files), options.file);
  bench.Open();
  bench.WarnOfFaults();
  const MirrorRow& entry = FindEntry(bench, options.entry, around.messages);
  const std::string path = PathOfEntry(entry);
  const PreviewParcel parcel = ParcelOf(entry);
  const UpdateRequest request{.parcel = parcel,
                              .previewFile = FullPath(options.file, around.files),
                              .compressionLevel = LevelOf(parcel),
                              .leftover = leftover};
  RewriteOnTerminal screen(around.talk, "Updating " + options.entry);
  const UpdateResult result = RunUpdate(request, bench.GetReading(), screen);
  if (result.refused != UpdateResult::Refused::No) {
    throw CliFailure(ExitCode::Failed, "nothing was updated");
  }
  CheckRewrite(result.ending, result.temporary, around);
  PutBytes(around.report, "path", path);
  around.report["updated"] = 1;
  around.messages.Note(ListedPath(path) + " updated in " + Printable(options.carrier));
  return ExitCode::Done;
}

}  // namespace tarnel
