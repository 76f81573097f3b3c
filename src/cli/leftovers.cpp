#include "cli/leftovers.h"

#include "base/printable.h"
#include "carrier/companions.h"
#include "retrieval/recover.h"

namespace tarnel {

namespace {

std::string ByHand(const Path& carrier, const Path& backup) {
  return "; the carrier as it was before is " + Printable(backup.native()) + ": move it over " +
         Printable(carrier.native()) + " by hand";
}

}  // namespace

void AskAboutLeftovers(const std::vector<Path>& leftovers, Surroundings& around) {
  if (leftovers.empty()) return;
  std::string text;
  for (const Path& path : leftovers)
    text += LeftoverAdvice(path) + "\n";
  const Question question{.id = "cli.leftovers",
                          .title = "Tarnel",
                          .text = text +
                                  "See with verify and recover whether it is needed. To go on may replace it "
                                  "for good. Do you want to go on?",
                          .buttons = Buttons::YesNo,
                          .icon = Icon::Question,
                          .preset = Answer::No};
  if (around.talk.Ask(question) == Answer::Yes) return;
  if (around.talk.CancelRequested()) throw CliFailure(ExitCode::Cancelled, "cancelled");
  throw CliFailure(ExitCode::Failed, "nothing was changed: " + Printable(leftovers.front().native()) +
                                         " lies beside the carrier; run verify or recover, or move it away");
}

void PutBackCarrier(const Path& carrier, const Path& backup, Length size, Files& files) {
  try {
    const std::unique_ptr<File> held = OpenLocked(carrier, files);
    const std::unique_ptr<File> copy = files.OpenToRead(backup);
    if (copy->Size() != size) {
      throw CliFailure(ExitCode::Failed,
                       Printable(backup.native()) +
                           " is not the whole carrier and was not put back; see what opens with "
                           "\"tarnel-cli recover\"");
    }
    copy->Sync();
    files.Rename(backup, carrier);
    files.SyncFolder(carrier.parent_path());
  } catch (const Error& error) {
    throw CliFailure(CodeOf(error.Number()), error.Description() + ByHand(carrier, backup));
  }
}

}  // namespace tarnel
