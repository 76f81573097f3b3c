#include <algorithm>
#include <set>

#include "base/printable.h"
#include "carrier/stored_text.h"
#include "cli/entry_paths.h"
#include "cli/json_output.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "retrieval/run_extract.h"

namespace tarnel {

namespace {

/// Entries that would get one name in the target folder.
void WarnOfDoubles(const Workbench& bench, const std::vector<std::size_t>& rows,
                   const ExtractOptions& options, Messages& messages) {
  std::set<std::string> seen;
  std::set<std::string> doubled;
  for (const std::size_t row : rows) {
    const MirrorRow& entry = bench.Rows()[row];
    std::string path = PathOfEntry(options.flat ? "" : entry.Folder(), entry.Name());
    if (!seen.insert(path).second) doubled.insert(std::move(path));
  }
  for (const std::string& path : doubled) {
    messages.Warn("several entries have the name " + Printable(path) + "; the newest of them is what stays");
  }
}

ExtractRequest RequestFor(const Workbench& bench, const ExtractOptions& options,
                          std::vector<std::size_t> rows) {
  // Overwriting, the oldest entry goes first, so that the newest of one name stays.
  if (options.overwrite) std::reverse(rows.begin(), rows.end());
  ExtractRequest request;
  request.carrier = bench.Carrier();
  request.target = options.target;
  request.choices.reserve(rows.size());
  for (const std::size_t row : rows)
    request.choices.push_back({.row = row, .itemFolder = {}});
  request.useFolderNames = !options.flat;
  request.overwriteAll = options.overwrite;
  return request;
}

std::string JsonText(const ExtractOptions& options, const ExtractResult& result) {
  Json object = JsonObject();
  PutBytes(object, "carrier", options.carrier);
  PutBytes(object, "target", options.target);
  object["extracted"] = result.extracted;
  object["kept_existing"] = result.keptExisting;
  object["damaged"] = JsonOfNames(NamesOf(result.damaged));
  object["left_out"] = JsonOfNames(NamesOf(result.leftOut));
  return JsonLine(object);
}

void Report(const ExtractOptions& options, const ExtractResult& result, Surroundings& around) {
  if (around.options.json) around.terminal.Write(JsonText(options, result));
  if (result.keptExisting > 0) {
    around.messages.Warn(std::to_string(result.keptExisting) + " existing files were kept");
  }
  if (around.options.json) return;
  around.messages.Note(std::to_string(result.extracted) + (result.extracted == 1 ? " file" : " files") +
                       " extracted to " + Printable(options.target));
}

ExitCode CodeOf(const ExtractResult& result) {
  if (!result.damaged.empty()) return ExitCode::Damaged;
  if (!result.leftOut.empty()) return ExitCode::PartlyDone;
  return result.keptExisting > 0 ? ExitCode::OutputExists : ExitCode::Done;
}

}  // namespace

ExitCode RunVerb(const ExtractOptions& options, Surroundings& around) {
  Workbench bench(options.carrier, around);
  bench.Open();
  bench.WarnOfFaults();
  const std::vector<std::size_t> rows = MatchEntries(bench.Rows(), options.entries);
  WarnOfDoubles(bench, rows, options, around.messages);
  ExtractOnTerminal screen(around.talk);
  const ExtractResult result =
      RunExtract(RequestFor(bench, options, rows), bench.GetReading().catalogue, around.files, screen);
  around.talk.Progress().Clear();
  if (result.ending == ExtractEnding::Aborted) throw around.talk.LastFailure();
  if (result.ending == ExtractEnding::Cancelled) {
    throw CliFailure(ExitCode::Cancelled,
                     "cancelled after " + std::to_string(result.extracted) + " extracted files");
  }
  Report(options, result, around);
  const ExitCode code = CodeOf(result);
  return bench.CodeOfReading(code);
}

}  // namespace tarnel
