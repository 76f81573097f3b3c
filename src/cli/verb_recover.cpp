#include "base/formats.h"
#include "base/printable.h"
#include "carrier/companions.h"
#include "cli/questions.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "crypto/keys.h"
#include "retrieval/mend_chain.h"
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
    PutBytes(m_around.report, "carrier", m_options.carrier);
    m_around.messages.ShowAs(m_carrier, m_options.carrier);
    MustExist();
    m_password = Key(
        ObtainPassword(m_around.options, m_around.variables, m_around.terminal, m_around.messages).secret);
    if (!LeftoversBeside(m_carrier, m_around.files).empty()) SettleCopies();
    if (m_taken == m_carrier) MendChain();
    Report();
    return ExitCode::Done;
  }

 private:
  void MustExist();
  void SettleCopies();
  void Plan();
  void ShowCopies();
  void MendChain();
  MendPlan PlanTheMending(File& carrier);
  void ShowMending(const MendPlan& plan);
  void AskForLeave(const std::string& text);
  void Report();
  /// A person who is asked has to see what about.
  bool MustShowThePlan() const { return !m_around.options.quiet || !m_options.yes; }
  const CarrierCopy& Best() const { return m_plan.copies.at(*m_plan.best); }

  const RecoverOptions& m_options;
  Surroundings& m_around;
  const Path m_carrier;
  Key m_password;
  RecoverPlan m_plan;
  Path m_taken = m_carrier;           ///< which copy is the carrier now
  std::vector<Path> m_kept;           ///< what the others are called
  std::vector<std::string> m_mended;  ///< what was done, as sentences
};

CliFailure Cancelled() {
  return CliFailure(ExitCode::Cancelled, "cancelled; nothing was changed");
}

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

void RecoverVerb::MustExist() {
  if (m_around.files.Stat(m_carrier))
    RefuseBusy(m_carrier, m_around.files);
  else if (LeftoversBeside(m_carrier, m_around.files).empty())
    throw CliFailure(ExitCode::CarrierNotFound,
                     "cannot find " + Printable(m_options.carrier) + ", nor a copy of it beside it");
}

/// Puts the best copy in the carrier's place. Where none opens, mending the carrier's chain may help.
void RecoverVerb::SettleCopies() {
  Plan();
  ShowCopies();
  if (!m_plan.best) {
    if (m_around.files.Stat(m_carrier)) return;
    throw CliFailure(ExitCode::NoHideout, "no copy of " + Printable(m_options.carrier) +
                                              " opens with this password; nothing was changed");
  }
  AskForLeave(
      Printable(Best().path.native()) + " (" + Findings(Best()) +
      ") would be the carrier, and each other copy would be kept under a name that ends in \".old\".");
  m_kept = ApplyRecovery(m_plan, *m_plan.best, m_around.files);
  m_taken = Best().path;
}

void RecoverVerb::Plan() {
  PlainOnTerminal dialogue(m_around.talk);
  m_plan = PlanRecovery(m_carrier, m_password, m_around.files, dialogue);
  if (m_plan.cancelled) throw Cancelled();
}

void RecoverVerb::ShowCopies() {
  m_around.report["copies"] = Json::array();
  for (const CarrierCopy& copy : m_plan.copies) {
    Json object;
    PutBytes(object, "path", copy.path.native());
    object["size"] = copy.size;
    object["opens"] = copy.algorithm.has_value();
    object["entries"] = copy.entries;
    object["damaged"] = copy.damaged;
    object["finding"] = Findings(copy);
    m_around.report["copies"].push_back(std::move(object));
    if (m_around.options.json || !MustShowThePlan()) continue;
    m_around.terminal.Write(m_around.messages.Shown(copy.path.native()) + ": " + Findings(copy) + "\n");
  }
}

void RecoverVerb::MendChain() {
  PlainOnTerminal dialogue(m_around.talk);
  {
    const std::unique_ptr<File> carrier = OpenLocked(m_carrier, m_around.files, LockAccess::Read);
    const MendPlan plan = PlanTheMending(*carrier);
    if (plan.steps.empty()) return;
    ShowMending(plan);
    AskForLeave(
        "The mended carrier would be a new file in its place, and the old one would be kept under a name "
        "that ends in \".old\".");
    if (!WriteMended(plan, *carrier, m_carrier, TemporaryCarrierPath(m_carrier), m_around.files, dialogue))
      throw Cancelled();
  }
  m_kept.push_back(PutInPlace(TemporaryCarrierPath(m_carrier), m_carrier, m_around.files));
}

MendPlan RecoverVerb::PlanTheMending(File& carrier) {
  PlainOnTerminal dialogue(m_around.talk);
  m_password.Prepare([&dialogue] { dialogue.Yield(); });
  MendPlan plan = PlanMending(carrier, m_password, dialogue);
  if (plan.cancelled) throw Cancelled();
  if (plan.entries == 0) {
    throw CliFailure(ExitCode::NoHideout, "nothing in " + Printable(m_options.carrier) +
                                              " opens with this password; nothing was changed");
  }
  for (const MendPlan::Step& step : plan.steps)
    m_mended.push_back(SentenceOf(step));
  if (plan.unknown)
    m_around.messages.Warn("nothing tells the length at byte " + std::to_string(plan.unknown->value) +
                           "; the chain of entries ends there");
  return plan;
}

void RecoverVerb::ShowMending(const MendPlan& plan) {
  if (m_around.options.json || !MustShowThePlan()) return;
  std::string text = "To mend the chain of entries in " + Printable(m_options.carrier) + ":\n";
  for (const std::string& sentence : m_mended)
    text += "- " + sentence + "\n";
  text += std::to_string(plan.entries) + (plan.entries == 1 ? " entry" : " entries") +
          " of this password would be within reach\n";
  m_around.terminal.Write(text);
}

void RecoverVerb::AskForLeave(const std::string& text) {
  if (m_options.yes) return;
  if (m_around.talk.Ask(RecoverQuestion(text)) == Answer::Yes) return;
  if (m_around.talk.CancelRequested()) throw Cancelled();
  throw CliFailure(ExitCode::Failed, "nothing was changed");
}

void RecoverVerb::Report() {
  PutBytes(m_around.report, "taken", m_taken.native());
  m_around.report["mended"] = m_mended;
  m_around.report["kept"] = JsonOfNames(m_kept);
  for (const Path& path : m_kept)
    m_around.messages.Note("kept: " + Printable(path.native()));
  const bool isChanged = !m_kept.empty();
  m_around.messages.Note(isChanged
                             ? Printable(m_options.carrier) + " is recovered"
                             : "nothing to recover: the chain of entries in " + Printable(m_options.carrier) +
                                   " holds, and no \".bak\" or \".tmp\" lies beside it");
}

}  // namespace

ExitCode RunVerb(const RecoverOptions& options, Surroundings& around) {
  return RecoverVerb(options, around).Run();
}

}  // namespace tarnel
