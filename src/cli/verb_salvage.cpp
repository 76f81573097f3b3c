#include "base/printable.h"
#include "carrier/stored_text.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "crypto/keys.h"
#include "retrieval/salvage.h"

namespace tarnel {

namespace {

std::string LineOf(const EntryFault& entry) {
  const std::string name = entry.name.empty() ? "" : Printable(ToPlatform(entry.name)) + ", ";
  return name + "the record at byte " + std::to_string(entry.at.value) + ": " + entry.fault;
}

Json JsonOf(const std::vector<EntryFault>& entries) {
  Json list = Json::array();
  for (const EntryFault& entry : entries) {
    Json object;
    object["record_at"] = entry.at.value;
    PutBytes(object, "name", ToPlatform(entry.name));
    object["reason"] = entry.fault;
    list.push_back(std::move(object));
  }
  return list;
}

void Report(const SalvageOptions& options, const SalvageResult& result, Surroundings& around) {
  for (const EntryFault& entry : result.damaged)
    around.messages.Warn("damaged: " + LineOf(entry));
  for (const EntryFault& entry : result.leftOut)
    around.messages.Warn("left out: " + LineOf(entry));
  if (result.notNoted > 0)
    around.messages.Warn(std::to_string(result.notNoted) +
                         (result.notNoted == 1 ? " further entry is" : " further entries are") +
                         " damaged or left out");
  PutBytes(around.report, "target", options.target);
  around.report["salvaged"] = result.salvaged;
  around.report["damaged"] = JsonOf(result.damaged);
  around.report["left_out"] = JsonOf(result.leftOut);
  if (result.notNoted > 0) around.report["further"] = result.notNoted;
  around.messages.Note(std::to_string(result.salvaged) + (result.salvaged == 1 ? " file" : " files") +
                       " salvaged to " + Printable(options.target));
}

ExitCode CodeOf(const SalvageResult& result) {
  if (!result.damaged.empty()) return ExitCode::Damaged;
  return result.leftOut.empty() ? ExitCode::Done : ExitCode::PartlyDone;
}

}  // namespace

ExitCode RunVerb(const SalvageOptions& options, Surroundings& around) {
  const Workbench bench(options.carrier, around);
  const GivenPassword password =
      ObtainPassword(around.options, around.variables, around.terminal, around.messages);
  SalvageOnTerminal screen(around.talk);
  const Key key(password.secret);
  key.Prepare([&screen] { screen.Yield(); });
  const SalvageRequest request{.carrier = bench.Carrier(), .password = key, .target = options.target};
  const SalvageResult result = RunSalvage(request, around.files, screen);
  around.talk.Progress().Clear();
  if (result.ending == SalvageEnding::Aborted) throw around.talk.LastFailure();
  if (result.ending == SalvageEnding::Cancelled) {
    throw CliFailure(ExitCode::Cancelled, "cancelled after " + std::to_string(result.salvaged) +
                                              (result.salvaged == 1 ? " salvaged file" : " salvaged files"));
  }
  if (result.found == 0) {
    RefuseBusy(bench.Carrier(), around.files);
    throw CliFailure(ExitCode::NoHideout,
                     "nothing in " + Printable(options.carrier) + " opens with this password");
  }
  Report(options, result, around);
  return CodeOf(result);
}

}  // namespace tarnel
