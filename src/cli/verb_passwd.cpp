#include "base/printable.h"
#include "cli/entries.h"
#include "cli/rewrite_verbs.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "retrieval/run_password.h"

namespace tarnel {

namespace {

void Report(const PasswdOptions& options, const PasswordResult& result, Surroundings& around) {
  around.report["changed"] = result.changed;
  around.report["damaged"] = JsonOfNames(NamesOf(result.damaged));
  PutFaults(around.report, result.leftBehind);
  around.messages.Note(std::to_string(result.changed) + (result.changed == 1 ? " entry" : " entries") +
                       " in " + Printable(options.carrier) + " now open with the new password");
}

/// What must not be taken for changed, or for whole.
void WarnOfTheRest(const PasswordResult& result, Messages& messages) {
  for (const std::string& sentence : SentencesOf(result.leftBehind))
    messages.Warn("left under the old password: " + sentence);
  for (const std::string& name : NamesOf(result.damaged))
    messages.Warn("still damaged: " + Printable(name));
}

}  // namespace

ExitCode RunVerb(const PasswdOptions& options, Surroundings& around) {
  Workbench bench(options.carrier, around);
  const Leftover leftover = PrepareRewrite(bench, around);
  bench.Open();
  const Secret fresh =
      ObtainNewPassword(options.newPassword, around.options.noInput, around.terminal, around.messages);
  const PasswordRequest request{.oldPassword = bench.Current().CurrentPassword,
                                .newPassword = Key(fresh),
                                .confirmation = fresh,
                                .leftover = leftover};
  RewriteOnTerminal screen(around.talk, "Changing the password");
  const PasswordResult result = RunPassword(request, bench.GetReading(), screen);
  if (result.refused) throw CliFailure(ExitCode::Failed, "the password was not changed");
  CheckRewrite(result.ending, result.temporary, around);
  Report(options, result, around);
  WarnOfTheRest(result, around.messages);
  return result.leftBehind.None() && result.damaged.empty() ? ExitCode::Done : ExitCode::Damaged;
}

}  // namespace tarnel
