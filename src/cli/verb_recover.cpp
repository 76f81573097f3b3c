#include "base/attempt.h"
#include "base/formats.h"
#include "base/printable.h"
#include "carrier/companions.h"
#include "cli/json_output.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "retrieval/recover.h"

namespace tarnel {

namespace {

class PlainOnTerminal : public OnTerminal<Dialogue> {
 public:
  using OnTerminal::OnTerminal;
};

/// The verb from its beginning to its end; Run() lists the steps.
class RecoverVerb {
 public:
  RecoverVerb(const RecoverOptions& options, Surroundings& around)
      : m_options(options), m_around(around), m_carrier(FullPath(options.carrier, around.files)) {}

  ExitCode Run() {
    if (LeftoversBeside(m_carrier, m_around.files).empty()) return EndWithoutCopies();
    Plan();
    ShowCopies();
    CheckThatOneOpens();
    AskForLeave();
    const std::vector<Path> kept = ApplyRecovery(m_plan, *m_plan.best, m_around.files);
    Report(kept);
    return ExitCode::Done;
  }

 private:
  ExitCode EndWithoutCopies();
  void Plan();
  void ShowCopies();
  void CheckThatOneOpens();
  void AskForLeave();
  void Report(const std::vector<Path>& kept);
  const CarrierCopy& Best() const { return m_plan.copies.at(*m_plan.best); }

  const RecoverOptions& m_options;
  Surroundings& m_around;
  const Path m_carrier;
  RecoverPlan m_plan;
};

std::string Findings(const CarrierCopy& copy) {
  std::string text = HumanSize(copy.size) + ", ";
  if (!copy.algorithm) {
    text += "doesn't open with this password";
  } else {
    text += "opens, " + std::to_string(copy.entries) + (copy.entries == 1 ? " entry" : " entries");
    if (copy.damaged > 0) text += ", " + std::to_string(copy.damaged) + " of them damaged";
  }
  if (copy.relation == CarrierCopy::Relation::Identical) text += ", the same as the carrier";
  if (copy.relation == CarrierCopy::Relation::Front) text += ", the front part of the carrier";
  return text + (copy.fault.empty() ? "" : "; " + copy.fault);
}

ExitCode RecoverVerb::EndWithoutCopies() {
  if (!m_around.files.Stat(m_carrier)) {
    throw CliFailure(ExitCode::CarrierNotFound,
                     "cannot find " + Printable(m_options.carrier) + ", nor a copy of it beside it");
  }
  m_around.messages.Note("nothing to recover: no \".bak\" or \".tmp\" lies beside " +
                         Printable(m_options.carrier));
  return ExitCode::Done;
}

void RecoverVerb::Plan() {
  if (m_around.files.Stat(m_carrier)) RefuseBusy(m_carrier, m_around.files);
  const GivenPassword password =
      ObtainPassword(m_around.options, m_around.variables, m_around.terminal, m_around.messages);
  PlainOnTerminal dialogue(m_around.talk);
  try {
    m_plan = PlanRecovery(m_carrier, password.secret, m_around.files, dialogue);
  } catch (const Stop&) {
    throw CliFailure(ExitCode::Cancelled, "cancelled; nothing was changed");
  }
}

void RecoverVerb::ShowCopies() {
  if (m_around.options.json) return;
  for (const CarrierCopy& copy : m_plan.copies) {
    m_around.terminal.Write(Printable(copy.path.native()) + ": " + Findings(copy) + "\n");
  }
}

void RecoverVerb::CheckThatOneOpens() {
  if (m_plan.best) return;
  throw CliFailure(ExitCode::NoHideout, "no copy of " + Printable(m_options.carrier) +
                                            " opens with this password; nothing was changed");
}

void RecoverVerb::AskForLeave() {
  const Question question{
      .id = "cli.recover",
      .title = "Tarnel",
      .text = Printable(Best().path.native()) + " (" + Findings(Best()) +
              ") would be the carrier, and each other copy would be kept under a name that "
              "ends in \".old\". Do you want that?",
      .buttons = Buttons::YesNo,
      .icon = Icon::Question,
      .preset = Answer::No};
  if (m_around.talk.Ask(question) == Answer::Yes) return;
  if (m_around.talk.CancelRequested()) {
    throw CliFailure(ExitCode::Cancelled, "cancelled; nothing was changed");
  }
  throw CliFailure(ExitCode::Failed, "nothing was changed");
}

void RecoverVerb::Report(const std::vector<Path>& kept) {
  if (m_around.options.json) {
    Json object = JsonObject();
    PutBytes(object, "carrier", m_options.carrier);
    PutBytes(object, "taken", Best().path.native());
    object["entries"] = Best().entries;
    object["damaged"] = Best().damaged;
    object["kept"] = JsonOfNames(kept);
    m_around.terminal.Write(JsonLine(object));
    return;
  }
  for (const Path& path : kept)
    m_around.messages.Note("kept: " + Printable(path.native()));
  m_around.messages.Note(Printable(m_options.carrier) + " is recovered");
}

}  // namespace

ExitCode RunVerb(const RecoverOptions& options, Surroundings& around) {
  return RecoverVerb(options, around).Run();
}

}  // namespace tarnel
