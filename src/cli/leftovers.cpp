#include "cli/leftovers.h"

#include "base/printable.h"
#include "carrier/companions.h"
#include "carrier/questions.h"

namespace tarnel {

namespace {

std::string ByHand(const Path& carrier, const Path& backup) {
  return "; the carrier as it was before is " + Printable(backup.native()) + ": move it over " +
         Printable(carrier.native()) + " by hand";
}

}  // namespace

void AskAboutLeftovers(const std::vector<Path>& leftovers, Surroundings& around) {
  if (leftovers.empty()) return;
  if (around.talk.Ask(LeftoversQuestion(leftovers)) == Answer::Yes) return;
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
