#include <algorithm>
#include <unordered_map>

#include "base/printable.h"
#include "carrier/format.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "cli/choice.h"
#include "cli/extract_to_output.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "retrieval/run_extract.h"
#include "retrieval/salvage.h"

namespace tarnel {

namespace {

using Rows = std::vector<std::size_t>;

/// The newest of each path, and what was named by its number.
Rows WithoutOlder(const std::vector<MirrorRow>& rows, const Rows& matched, const EntryWish& wish) {
  const Rows newest = NewestOf(rows, matched);
  Rows kept;
  for (const std::size_t row : matched) {
    const std::string number = "#" + std::to_string(NumberOfEntry(rows, row));
    if (std::ranges::binary_search(newest, row) || std::ranges::find(wish.named, number) != wish.named.end())
      kept.push_back(row);
  }
  return kept;
}

enum class Folders { Kept, Dropped };

std::string TargetOf(const MirrorRow& row, Folders folders, const std::string& name) {
  return folders == Folders::Kept ? FolderOfEntry(row.Folder()) + "/" + name : name;
}

MirrorRow Renamed(MirrorRow row, std::string_view name) {
  WipedText record;
  AppendTag(record, tag::kName, ToStored(name, TextKind::PathComponent));  // the first of a key counts
  row.record = record + row.record;
  return row;
}

/// The chosen rows so that no two come to one file: of what would, the catalogue gets copies with a number.
Rows MakeDistinct(Catalogue& catalogue, Rows chosen, Folders folders) {
  std::unordered_map<std::string, int> known;  // 0, or the last number that a path got
  for (const std::size_t index : chosen) {
    const MirrorRow& row = catalogue.Rows()[index];
    known.emplace(TargetOf(row, folders, ToPlatform(row.Name())), 0);
  }
  for (std::size_t& index : chosen) {
    const MirrorRow& row = catalogue.Rows()[index];
    const std::string name = ToPlatform(row.Name());
    int& number = known.at(TargetOf(row, folders, name));
    if (++number == 1) continue;
    while (!known.emplace(TargetOf(row, folders, NumberedName(name, number)), 1).second)
      ++number;
    catalogue.AddRow(Renamed(row, NumberedName(name, number)));
    index = catalogue.Rows().size() - 1;
  }
  return chosen;
}

ExtractRequest RequestFor(const Workbench& bench, const ExtractOptions& options, const Rows& chosen) {
  ExtractRequest request;
  request.carrier = bench.Carrier();
  request.target = options.target;
  for (const std::size_t row : chosen)
    request.choices.push_back({.row = row, .itemFolder = {}});
  request.useFolderNames = !options.flat;
  request.overwriteAll = options.overwrite;
  return request;
}

void Report(const ExtractOptions& options, const ExtractResult& result, Surroundings& around) {
  PutBytes(around.report, "target", options.target);
  around.report["extracted"] = result.extracted;
  around.report["kept_existing"] = JsonOfNames(result.keptExisting);
  around.report["damaged"] = JsonOfNames(NamesOf(result.damaged));
  around.report["left_out"] = JsonOfNames(NamesOf(result.leftOut));
  if (const std::size_t kept = result.keptExisting.size(); kept > 0) {
    around.messages.Warn(std::to_string(kept) +
                         (kept == 1 ? " existing file was kept" : " existing files were kept"));
  }
  around.messages.Note(std::to_string(result.extracted) + (result.extracted == 1 ? " file" : " files") +
                       " extracted to " + Printable(options.target));
}

ExitCode CodeOf(const ExtractResult& result) {
  if (!result.damaged.empty()) return ExitCode::Damaged;
  if (!result.leftOut.empty()) return ExitCode::PartlyDone;
  return !result.keptExisting.empty() ? ExitCode::OutputExists : ExitCode::Done;
}

void SayWhatIsOlder(std::size_t count, Surroundings& around) {
  around.report["older_left_out"] = count;
  if (count == 0) return;
  around.messages.Note(std::to_string(count) +
                       (count == 1 ? " older version was left out" : " older versions were left out") +
                       "; --all-versions takes them too");
}

ExitCode ToOutput(const Workbench& bench, const Rows& chosen, Surroundings& around) {
  if (around.options.json) throw CliFailure(ExitCode::Usage, "--to - and --json exclude each other");
  if (chosen.size() != 1) {
    throw CliFailure(ExitCode::Usage,
                     "only one file can go to standard output, not " + std::to_string(chosen.size()));
  }
  ExtractToOutput(bench.Rows()[chosen.front()], bench.Carrier(), around);
  return bench.CodeOfReading(ExitCode::Done);
}

ExitCode ToFolder(Workbench& bench, const ExtractOptions& options, const Rows& chosen, Surroundings& around) {
  Reading& reading = bench.GetReading();
  const Rows distinct =
      MakeDistinct(reading.catalogue, chosen, options.flat ? Folders::Dropped : Folders::Kept);
  ExtractOnTerminal screen(around.talk);
  const ExtractResult result = RunExtract(RequestFor(bench, options, distinct), reading, screen);
  around.talk.Progress().Clear();
  if (result.ending == ExtractEnding::Aborted) throw around.talk.LastFailure();
  if (result.ending == ExtractEnding::Cancelled) {
    throw CliFailure(ExitCode::Cancelled,
                     "cancelled after " + std::to_string(result.extracted) +
                         (result.extracted == 1 ? " extracted file" : " extracted files"));
  }
  Report(options, result, around);
  return bench.CodeOfReading(CodeOf(result));
}

}  // namespace

ExitCode RunVerb(const ExtractOptions& options, Surroundings& around) {
  const EntryWish wish = WishOf(options.entries, options.choice);
  Workbench bench(options.carrier, around);
  bench.Open();
  bench.WarnOfFaults();
  const Rows matched = MatchEntries(bench.Rows(), wish);
  const Rows chosen = options.allVersions ? matched : WithoutOlder(bench.Rows(), matched, wish);
  if (options.choice.dryRun) {
    ShowChoice(PathsOf(bench.Rows(), chosen), "would_extract", around);
  } else if (options.target == "-") {
    return ToOutput(bench, chosen, around);
  }
  SayWhatIsOlder(matched.size() - chosen.size(), around);
  if (options.choice.dryRun) return bench.CodeOfReading(ExitCode::Done);
  return ToFolder(bench, options, chosen, around);
}

}  // namespace tarnel
