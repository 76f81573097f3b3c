#include <algorithm>

#include "base/formats.h"
#include "base/printable.h"
#include "carrier/companions.h"
#include "carrier/format.h"
#include "carrier/leftovers.h"
#include "cli/choice.h"
#include "cli/hide_choice.h"
#include "cli/leftovers.h"
#include "cli/questions.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "crypto/cipher.h"
#include "hiding/run_hide.h"

namespace tarnel {

namespace {

enum class Hideout { Joined, Made };

/// The verb from its beginning to its end; Run() lists the steps.
class HideVerb {
 public:
  HideVerb(const HideOptions& options, Surroundings& around)
      : m_options(options), m_around(around), m_bench(options.carrier, around), m_choice(options, around) {}

  ExitCode Run() {
    if (m_options.choice.dryRun) return DryRun();
    RefuseBusy(m_bench.Carrier(), m_around.files);
    AskAboutLeftovers(LeftoversOfHiding(m_bench.Carrier(), m_around.files), m_around);
    m_choice.Collect();
    OpenOrMake();
    RefuseWhatCannotFit();
    AskBeforeDestroying();
    Hide();
    FillReport();
    CheckEnding();
    Report();
    return CodeOfResult();
  }

 private:
  ExitCode DryRun();
  void OpenOrMake();
  void RefuseNewBesideDamage();
  void RefuseNewUnasked(const GivenPassword& password);
  void MakeHideout(const GivenPassword& password, const Key& key);
  void SayWhatIsNotUsed();
  void RefuseWhatCannotFit();
  void AskBeforeDestroying();
  HideRequest Request() const;
  void Hide();
  void CheckEnding();
  [[noreturn]] void EndAborted();
  void WarnAboutBackup();
  void SayWhatIsNotHidden();
  void FillReport();
  void Report();
  ExitCode CodeOfResult() const;

  const HideOptions& m_options;
  Surroundings& m_around;
  Workbench m_bench;
  HideChoice m_choice;
  Hideout m_hideout = Hideout::Joined;
  Length m_sizeBefore = 0;
  HideResult m_result;
  std::vector<Path> m_notHidden;  ///< neither hidden nor left out on purpose
};

ExitCode HideVerb::DryRun() {
  m_choice.Collect();
  ShowChoice(m_choice.EntryPaths(), "would_hide", m_around);
  return m_choice.PassedOver().empty() ? ExitCode::Done : ExitCode::PartlyDone;
}

void HideVerb::OpenOrMake() {
  const GivenPassword password =
      ObtainPassword(m_around.options, m_around.variables, m_around.terminal, m_around.messages);
  const Key key(password.secret);
  if (m_bench.TryOpen(key)) {
    m_bench.WarnOfFaults();
    SayWhatIsNotUsed();
    return;
  }
  if (!m_options.makeNew) RefuseNewBesideDamage();
  if (!m_options.makeNew) RefuseNewUnasked(password);
  MakeHideout(password, key);
}

/// A hideout of this password may be there all the same; a second one on top would hide that.
void HideVerb::RefuseNewBesideDamage() {
  const ChainFaults& faults = m_bench.Faults();
  if (faults.None()) return;
  m_bench.WarnOfFaults();
  throw CliFailure(faults.IsDamage() ? ExitCode::Damaged : ExitCode::Failed,
                   "no new hideout is made in " + Printable(m_options.carrier) +
                       ", for one of this password may be there; recover it first, or say --new");
}

/// A wrong password must not make a second hideout where nobody notices. One that was typed is confirmed.
void HideVerb::RefuseNewUnasked(const GivenPassword& password) {
  const std::string message = "no hideout in " + Printable(m_options.carrier) + " opens with this password";
  if (m_options.existing) throw CliFailure(ExitCode::NoHideout, message);
  if (!m_around.talk.CanAsk()) throw CliFailure(ExitCode::NoHideout, message + "; say --new to make one");
  if (password.origin == GivenPassword::Origin::Typed) return;
  if (m_around.talk.Ask(NewHideoutQuestion()) == Answer::Yes) return;
  if (m_around.talk.CancelRequested()) throw CliFailure(ExitCode::Cancelled, "cancelled");
  throw CliFailure(ExitCode::NoHideout, message);
}

void HideVerb::MakeHideout(const GivenPassword& password, const Key& key) {
  CheckNewPassword(password.secret);
  if (password.origin == GivenPassword::Origin::Typed) {
    m_around.messages.Note("No hideout opens with this password; a new one will be made.");
    ConfirmPassword(password.secret, m_around.terminal);
  }
  SayStrength(password.secret, m_around.messages);
  const Algorithm algorithm = m_options.algorithm.value_or(Algorithm::Rijndael256);
  CreateHideout(m_bench.Carrier(), key, m_options.title.value_or(kPresetTitle), algorithm,
                m_bench.GetReading());
  m_hideout = Hideout::Made;
}

void HideVerb::SayWhatIsNotUsed() {
  if (m_options.title && *m_options.title != m_bench.Title()) {
    m_around.messages.Warn("--title isn't used: the password opens the hideout " +
                           Printable(m_bench.Title()));
  }
  if (m_options.algorithm && *m_options.algorithm != m_bench.Current().CurrentAlgorithmId) {
    m_around.messages.Warn("--algorithm isn't used: the hideout that opens has " + m_bench.Algorithm());
  }
}

/// Of compressed files only the run shows how much room they take.
void HideVerb::RefuseWhatCannotFit() {
  if (m_options.compressionLevel) return;
  const auto overhead =
      static_cast<Length>(m_choice.Rows().size()) * (kFileCipherOverhead + Length{kTrailerSize});
  const Length needed = m_choice.TotalBytes() + overhead;
  const Length size = m_around.files.OpenToRead(m_bench.Carrier())->Size();
  if (needed > kCarrierLimit - size) {
    throw CliFailure(ExitCode::Failed,
                     "the carrier would become too large, for it stays below 2 GiB; nothing was "
                     "hidden");
  }
  if (needed > m_around.files.FreeSpace(m_bench.Carrier().parent_path())) {
    throw CliFailure(ExitCode::NoSpace, "not enough free space: the files need " + HumanSize(needed) +
                                            " more on the disk of the carrier; nothing was hidden");
  }
}

void HideVerb::AskBeforeDestroying() {
  if (m_options.originals != Originals::Destroy || !m_around.talk.CanAsk()) return;
  if (m_around.talk.Ask(DestroyOriginalsQuestion(m_choice.Rows().size())) == Answer::Yes) return;
  throw CliFailure(m_around.talk.CancelRequested() ? ExitCode::Cancelled : ExitCode::Failed,
                   "nothing was hidden");
}

HideRequest HideVerb::Request() const {
  HideRequest request;
  request.rows = m_choice.Rows();
  request.totalBytes = m_choice.TotalBytes();
  request.keepTimes = m_options.keepTimes;
  request.compress = m_options.compressionLevel.has_value();
  request.compressionLevel = m_options.compressionLevel.value_or(request.compressionLevel);
  request.saveFolders = !m_options.noFolders;
  request.writeProtect = m_options.writeProtect;
  request.originals = m_options.originals;
  request.chosen = m_choice.Removable();
  return request;
}

void HideVerb::Hide() {
  m_sizeBefore = m_around.files.OpenToRead(m_bench.Carrier())->Size();
  HideOnTerminal screen(m_around.talk);
  m_result = RunHide(Request(), m_bench.GetReading(), screen);
  m_around.talk.Progress().Clear();
  for (std::size_t row = 0; row < m_choice.Rows().size(); ++row) {
    const Path& source = m_choice.Rows()[row].source;
    const bool isLeftOut = std::ranges::find(m_result.leftOut, source) != m_result.leftOut.end();
    if (!screen.Done().contains(row + 1) && !isLeftOut) m_notHidden.push_back(source);
  }
}

void HideVerb::CheckEnding() {
  switch (m_result.ending) {
    case HideEnding::Done:
      return;
    case HideEnding::Cancelled:
      throw CliFailure(ExitCode::Cancelled, "cancelled; the carrier is as it was");
    case HideEnding::NoSpace:
      SayWhatIsNotHidden();
      throw CliFailure(ExitCode::NoSpace, "not enough free space; " + std::to_string(m_result.hidden) +
                                              " of " + std::to_string(m_choice.Rows().size()) +
                                              " files hidden, and all originals are in place");
    case HideEnding::TooLarge:
      throw CliFailure(ExitCode::Failed, "the carrier would become too large; it is as it was");
    case HideEnding::Aborted:
      if (!m_result.isComplete) EndAborted();
      m_around.messages.Warn(m_around.talk.LastFailure().what());
  }
}

void HideVerb::EndAborted() {
  const CliFailure failure = m_around.talk.LastFailure();
  if (m_result.backup.empty()) throw failure;
  try {
    PutBackCarrier(m_bench.Carrier(), m_result.backup, m_sizeBefore, m_around.files);
  } catch (const CliFailure& worse) {
    m_around.messages.Warn(failure.what());
    throw;
  }
  m_around.messages.Warn("the carrier was put back from its backup and is as it was");
  throw failure;
}

void HideVerb::SayWhatIsNotHidden() {
  for (const Path& path : m_notHidden)
    m_around.messages.Warn("not hidden: " + m_choice.Shown(path));
}

void HideVerb::FillReport() {
  Json& report = m_around.report;
  PutBytes(report, "title", m_bench.Title());
  report["algorithm"] = m_bench.Algorithm();
  report["new_hideout"] = m_hideout == Hideout::Made;
  report["hidden"] = m_result.hidden;
  report["left_out"] = JsonOfNames(m_result.leftOut);
  report["not_hidden"] = JsonOfNames(m_notHidden);
  report["originals_left"] = JsonOfNames(m_result.originalsLeft);
}

void HideVerb::WarnAboutBackup() {
  if (!m_result.backup.empty()) {
    m_around.messages.Warn("the new entries may not be on the disk; the carrier as it was before is " +
                           Printable(m_result.backup.native()));
  }
  if (!m_result.needlessBackup.empty()) {
    m_around.messages.Warn(
        "the backup is needed no more, for what is hidden stands in the carrier, but it is "
        "still there: " +
        Printable(m_result.needlessBackup.native()));
  }
}

void HideVerb::Report() {
  WarnAboutBackup();
  for (const Path& path : m_result.leftOut) {
    m_around.messages.Warn("left out: " + m_choice.Shown(path));
  }
  for (const Path& path : m_result.originalsLeft) {
    m_around.messages.Warn("still there: the original " + Printable(path.native()));
  }
  m_around.messages.Note(std::to_string(m_result.hidden) + (m_result.hidden == 1 ? " file" : " files") +
                         " hidden in " + Printable(m_options.carrier) + ", " +
                         (m_hideout == Hideout::Made ? "new hideout " : "hideout ") +
                         Printable(m_bench.Title()) + ", " + m_bench.Algorithm());
}

ExitCode HideVerb::CodeOfResult() const {
  const bool isWhole = m_result.ending == HideEnding::Done && m_result.backup.empty() &&
                       m_result.needlessBackup.empty() && m_result.leftOut.empty() &&
                       m_result.originalsLeft.empty() && m_choice.PassedOver().empty();
  return isWhole ? ExitCode::Done : ExitCode::PartlyDone;
}

}  // namespace

ExitCode RunVerb(const HideOptions& options, Surroundings& around) {
  return HideVerb(options, around).Run();
}

}  // namespace tarnel
