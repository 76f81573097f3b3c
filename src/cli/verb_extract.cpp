#include <algorithm>
#include <set>

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

/// The chosen rows as a catalogue of their own, in which no two come to one file: what would gets a number.
class Distinct {
 public:
  enum class Folders { Kept, Dropped };
  Distinct(const std::vector<MirrorRow>& rows, const Rows& chosen, Folders folders) : m_folders(folders) {
    for (const std::size_t row : chosen)
      m_known.insert(FolderOf(rows[row]) + ToPlatform(rows[row].Name()));
    for (const std::size_t row : chosen)
      Add(rows[row]);
  }
  Catalogue& Get() { return m_catalogue; }

 private:
  std::string FolderOf(const MirrorRow& row) const {
    return m_folders == Folders::Kept ? FolderOfEntry(row.Folder()) + "/" : std::string();
  }

  void Add(const MirrorRow& row) {
    const std::string name = ToPlatform(row.Name());
    const std::string folder = FolderOf(row);
    MirrorRow added = row;
    if (!m_taken.insert(folder + name).second) {
      int number = 2;
      while (m_known.contains(folder + NumberedName(name, number)))
        ++number;
      const std::string fresh = NumberedName(name, number);
      m_known.insert(folder + fresh);
      WipedText record;
      AppendTag(record, tag::kName, ToStored(fresh, TextKind::PathComponent));  // the first of a key counts
      added.record = record + row.record;
    }
    m_catalogue.AddRow(std::move(added));
  }

  Folders m_folders;
  std::set<std::string> m_known;  ///< all names, also those that were given
  std::set<std::string> m_taken;
  Catalogue m_catalogue;
};

ExtractRequest RequestFor(const Workbench& bench, const ExtractOptions& options, std::size_t count) {
  ExtractRequest request;
  request.carrier = bench.Carrier();
  request.target = options.target;
  for (std::size_t row = 0; row < count; ++row)
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
  Distinct distinct(bench.Rows(), chosen,
                    options.flat ? Distinct::Folders::Dropped : Distinct::Folders::Kept);
  ExtractOnTerminal screen(around.talk);
  const Reading& opened = bench.GetReading();
  Reading reading{opened.files, distinct.Get(), opened.guards, opened.current};
  const ExtractResult result = RunExtract(RequestFor(bench, options, chosen.size()), reading, screen);
  around.talk.Progress().Clear();
  if (result.ending == ExtractEnding::Aborted) throw around.talk.LastFailure();
  if (result.ending == ExtractEnding::Cancelled) {
    throw CliFailure(ExitCode::Cancelled,
                     "cancelled after " + std::to_string(result.extracted) + " extracted files");
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
