#include <algorithm>

#include "base/printable.h"
#include "carrier/stored_text.h"
#include "cli/entry_paths.h"
#include "cli/json_output.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "retrieval/recover.h"
#include "retrieval/verify.h"

namespace tarnel {

namespace {

const char* WordOf(Verdict verdict) {
  return verdict == Verdict::Intact ? "intact" : "damaged";
}

std::string JsonText(const VerifyOptions& options, const VerifyResult& result) {
  Json object = JsonObject();
  PutBytes(object, "carrier", options.carrier);
  object["files"] = Json::array();
  for (const VerifiedEntry& entry : result.entries) {
    Json file;
    PutBytes(file, "name", ToPlatform(entry.name));
    PutBytes(file, "folder", FolderOfEntry(entry.folder));
    file["verdict"] = WordOf(entry.verdict);
    if (!entry.reason.empty()) file["reason"] = entry.reason;
    object["files"].push_back(std::move(file));
  }
  object["leftovers"] = JsonOfNames(result.leftovers);
  return JsonLine(object);
}

std::string LineOf(const VerifiedEntry& entry) {
  const std::string name =
      entry.name.empty() ? "(name unknown)" : Printable(PathOfEntry(entry.folder, entry.name));
  const std::string line = std::string(entry.verdict == Verdict::Intact ? "intact   " : "damaged  ") + name;
  return line + (entry.reason.empty() ? "" : ": " + entry.reason) + "\n";
}

}  // namespace

ExitCode RunVerb(const VerifyOptions& options, Surroundings& around) {
  Workbench bench(options.carrier, around);
  bench.Open();
  VerifyOnTerminal screen(around.talk);
  const VerifyResult result = RunVerify(bench.Carrier(), bench.Key(), around.files, screen);
  around.talk.Progress().Clear();
  if (result.cancelled) throw CliFailure(ExitCode::Cancelled, "cancelled before all entries were read");
  if (around.options.json) {
    around.terminal.Write(JsonText(options, result));
  } else {
    for (const VerifiedEntry& entry : result.entries)
      around.terminal.Write(LineOf(entry));
  }
  for (const Path& path : result.leftovers)
    around.messages.Warn(LeftoverAdvice(path));
  const bool isIntact = std::all_of(result.entries.begin(), result.entries.end(),
                                    [](const VerifiedEntry& e) { return e.verdict == Verdict::Intact; });
  return isIntact ? bench.CodeOfReading(ExitCode::Done) : ExitCode::Damaged;
}

}  // namespace tarnel
