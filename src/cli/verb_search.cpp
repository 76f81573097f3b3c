#include "base/printable.h"
#include "carrier/stored_text.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "search/search_folder.h"

namespace tarnel {

namespace {

SearchRequest RequestFor(const SearchOptions& options, const Path& folder, Secret password) {
  SearchRequest request;
  request.folder = folder;
  request.password = std::move(password);
  request.type = options.type;
  request.algorithm = options.algorithm;
  request.subfolders = options.recursive;
  if (options.newestOnly) request.depth = ProbeRequest::Depth::NewestEntry;
  request.oddFiles = SearchRequest::OddFiles::PassOver;
  return request;
}

std::string LineOf(const SearchRow& row) {
  return Printable(row.carrier.native()) + "  " + Printable(ToPlatform(row.title)) + "  " +
         AlgorithmName(row.algorithm) + "\n";
}

Json JsonOf(const SearchRow& row) {
  Json object;
  PutBytes(object, "carrier", row.carrier.native());
  PutBytes(object, "title", ToPlatform(row.title));
  object["algorithm"] = AlgorithmName(row.algorithm);
  return object;
}

ExitCode Report(const SearchSummary& summary, Surroundings& around) {
  around.report["not_searched"] = Json::array();
  for (const NotSearched& place : summary.notSearched) {
    Json object;
    PutBytes(object, "path", place.path.native());
    object["reason"] = place.reason;
    around.report["not_searched"].push_back(std::move(object));
    around.messages.Warn("not searched: " + Printable(place.path.native()) + ": " + place.reason);
  }
  if (summary.ending == SearchEnding::Cancelled) throw CliFailure(ExitCode::Cancelled, "cancelled");
  around.messages.Note(std::to_string(summary.found) + (summary.found == 1 ? " carrier" : " carriers") +
                       " found");
  return summary.notSearched.empty() ? ExitCode::Done : ExitCode::PartlyDone;
}

}  // namespace

ExitCode RunVerb(const SearchOptions& options, Surroundings& around) {
  const Path folder = FullPath(options.folder, around.files);
  around.messages.ShowAs(folder, options.folder);
  around.report["carriers"] = Json::array();
  GivenPassword password = ObtainPassword(around.options, around.variables, around.terminal, around.messages);
  SearchOnTerminal screen(around.talk, [&around](const SearchRow& row) {
    around.report["carriers"].push_back(JsonOf(row));
    if (!around.options.json) around.terminal.Write(around.messages.Shown(LineOf(row)));
  });
  Catalogue catalogue;
  ReadingGuards guards;
  CurrentHideout current;
  Reading reading{around.files, catalogue, guards, current};
  SearchResults results;
  const SearchRequest request = RequestFor(options, folder, std::move(password.secret));
  const SearchSummary summary = SearchFolder(request, results, reading, screen);
  around.talk.Progress().Clear();
  return Report(summary, around);
}

}  // namespace tarnel
