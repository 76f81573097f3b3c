#include <algorithm>

#include "base/printable.h"
#include "carrier/leftovers.h"
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
  switch (verdict) {
    case Verdict::Intact:
      return "intact";
    case Verdict::Unreadable:
      return "unreadable";
    case Verdict::Damaged:
      break;
  }
  return "damaged";
}

std::string JsonText(const VerifyOptions& options, const VerifyResult& result) {
  Json object = JsonObject();
  PutBytes(object, "carrier", options.carrier);
  object["files"] = Json::array();
  for (const VerifiedEntry& entry : result.entries) {
    Json file;
    PutBytes(file, "name", ToPlatform(entry.name));
    PutBytes(file, "folder", FolderOfEntry(entry.folder));
    file["start"] = entry.at.value;
    file["verdict"] = WordOf(entry.verdict);
    if (!entry.reason.empty()) file["reason"] = entry.reason;
    object["files"].push_back(std::move(file));
  }
  PutFaults(object, result.chain);
  object["leftovers"] = JsonOfNames(result.leftovers);
  return JsonLine(object);
}

std::string LineOf(const VerifiedEntry& entry) {
  const std::string name = entry.name.empty() ? "(the entry at byte " + std::to_string(entry.at.value) + ")"
                                              : Printable(PathOfEntry(entry.folder, entry.name));
  std::string line = WordOf(entry.verdict);
  line.resize(std::max<std::size_t>(line.size(), 7), ' ');
  return line + "  " + name + (entry.reason.empty() ? "" : ": " + entry.reason) + "\n";
}

/// Damage counts before what could only not be read.
ExitCode CodeOf(const VerifyResult& result) {
  const auto has = [&](Verdict verdict) {
    return std::any_of(result.entries.begin(), result.entries.end(),
                       [verdict](const VerifiedEntry& entry) { return entry.verdict == verdict; });
  };
  if (has(Verdict::Damaged) || result.chain.IsDamage()) return ExitCode::Damaged;
  if (has(Verdict::Unreadable)) return ExitCode::Unreadable;
  return result.chain.closedBy ? ExitCode::PartlyDone : ExitCode::Done;
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
  for (const std::string& sentence : SentencesOf(result.chain))
    around.messages.Warn(sentence);
  return CodeOf(result);
}

}  // namespace tarnel
