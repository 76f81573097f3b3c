

#include "base/printable.h"
#include "carrier/leftovers.h"
#include "cli/json_output.h"
#include "cli/leftovers.h"
#include "cli/screens.h"
#include "cli/verbs.h"
#include "hiding/run_hide.h"
#include "hiding/selection.h"

namespace tarnel {

namespace {

constexpr const char* kDefaultTitle = "New Hideout";

enum class Hideout { Joined, Made };

/// The verb from its beginning to its end; Run() lists the steps.
class HideVerb {
 public:
  HideVerb(const HideOptions& options, Surroundings& around)
      : m_options(options),
        m_around(around),
        m_bench(options.carrier, around),
        m_selectionScreen(around.talk),
        m_selection(around.files, m_selectionScreen) {}

  ExitCode Run() {
    RefuseBusy(m_bench.Carrier(), m_around.files);
    AskAboutLeftovers(LeftoversOfHiding(m_bench.Carrier(), m_around.files), m_around);
    Collect();
    OpenOrMake();
    Hide();
    CheckEnding();
    Report();
    return CodeOfResult();
  }

 private:
  void Collect();
  void AddPath(const Path& path);
  void OpenOrMake();
  void RefuseNewBesideDamage();
  void MakeHideout(const GivenPassword& password);
  void SayWhatIsNotUsed();
  HideRequest Request() const;
  void Hide();
  void CheckEnding();
  [[noreturn]] void EndAborted();
  void WarnAboutBackup();
  void Report();
  std::string JsonText() const;
  ExitCode CodeOfResult() const;

  const HideOptions& m_options;
  Surroundings& m_around;
  Workbench m_bench;
  SelectionOnTerminal m_selectionScreen;
  Selection m_selection;
  std::vector<Path> m_chosen;
  Hideout m_hideout = Hideout::Joined;
  Length m_sizeBefore = 0;
  HideResult m_result;
};

void HideVerb::Collect() {
  for (const std::string& given : m_options.paths) {
    m_chosen.push_back(FullPath(given, m_around.files));
    if (!m_around.files.Stat(m_chosen.back())) {
      throw CliFailure(ExitCode::Failed, "cannot find " + Printable(given) + "; nothing was hidden");
    }
  }
  for (const Path& path : m_chosen)
    AddPath(path);
  if (m_around.talk.CancelRequested()) throw CliFailure(ExitCode::Cancelled, "cancelled");
  for (const PassedOver& passed : m_selection.Passed()) {
    m_around.messages.Warn("passed over: " + Printable(passed.path.native()) + " " + passed.reason);
  }
  if (m_selection.Rows().empty()) throw CliFailure(ExitCode::Failed, "There are no files to hide!");
}

void HideVerb::AddPath(const Path& path) {
  const std::optional<FileStat> stat = m_around.files.Stat(path);
  if (stat && stat->kind == FileKind::Folder) {
    m_selection.AddWholeFolder(path);
  } else {
    m_selection.AddFile(path, path.parent_path().native());
  }
}

void HideVerb::OpenOrMake() {
  const GivenPassword password =
      ObtainPassword(m_around.options, m_around.variables, m_around.terminal, m_around.messages);
  if (m_bench.TryOpen(password.secret)) {
    m_bench.WarnOfFaults();
    SayWhatIsNotUsed();
    return;
  }
  if (!m_options.makeNew) RefuseNewBesideDamage();
  MakeHideout(password);
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

void HideVerb::MakeHideout(const GivenPassword& password) {
  CheckNewPassword(password.secret);
  if (password.origin == GivenPassword::Origin::Typed) {
    m_around.messages.Note("No hideout opens with this password; a new one will be made.");
    ConfirmPassword(password.secret, m_around.terminal);
  }
  const Algorithm algorithm = m_options.algorithm.value_or(Algorithm::Rijndael256);
  CreateHideout(m_bench.Carrier(), password.secret, m_options.title.value_or(kDefaultTitle), algorithm,
                AlgorithmName(algorithm), m_bench.GetReading());
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

HideRequest HideVerb::Request() const {
  HideRequest request;
  request.rows = m_selection.Rows();
  request.totalBytes = m_selection.TotalSelectedBytes();
  request.compress = m_options.compressionLevel.has_value();
  request.compressionLevel = m_options.compressionLevel.value_or(request.compressionLevel);
  request.saveFolders = !m_options.noFolders;
  request.writeProtect = m_options.writeProtect;
  request.originals = m_options.originals;
  request.chosen = m_chosen;
  return request;
}

void HideVerb::Hide() {
  m_sizeBefore = m_around.files.OpenToRead(m_bench.Carrier())->Size();
  HideOnTerminal screen(m_around.talk);
  m_result = RunHide(Request(), m_bench.GetReading(), screen);
  m_around.talk.Progress().Clear();
}

void HideVerb::CheckEnding() {
  switch (m_result.ending) {
    case HideEnding::Done:
      return;
    case HideEnding::Cancelled:
      throw CliFailure(ExitCode::Cancelled, "cancelled; the carrier is as it was");
    case HideEnding::NoSpace:
      throw CliFailure(ExitCode::NoSpace, "not enough free space; " + std::to_string(m_result.hidden) +
                                              " of " + std::to_string(m_selection.Rows().size()) +
                                              " files were hidden, and all originals are in place");
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

std::string HideVerb::JsonText() const {
  std::vector<Path> passedOver;
  passedOver.reserve(m_selection.Passed().size());
  for (const PassedOver& passed : m_selection.Passed())
    passedOver.push_back(passed.path);
  Json object = JsonObject();
  PutBytes(object, "carrier", m_options.carrier);
  PutBytes(object, "title", m_bench.Title());
  object["algorithm"] = m_bench.Algorithm();
  object["new_hideout"] = m_hideout == Hideout::Made;
  object["hidden"] = m_result.hidden;
  object["left_out"] = JsonOfNames(m_result.leftOut);
  object["passed_over"] = JsonOfNames(passedOver);
  object["originals_left"] = JsonOfNames(m_result.originalsLeft);
  return JsonLine(object);
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
    m_around.messages.Warn("left out: " + Printable(path.native()));
  }
  for (const Path& path : m_result.originalsLeft) {
    m_around.messages.Warn("still there: the original " + Printable(path.native()));
  }
  if (m_around.options.json) {
    m_around.terminal.Write(JsonText());
    return;
  }
  m_around.messages.Note(std::to_string(m_result.hidden) + (m_result.hidden == 1 ? " file" : " files") +
                         " hidden in " + Printable(m_options.carrier) + ", " +
                         (m_hideout == Hideout::Made ? "new hideout " : "hideout ") +
                         Printable(m_bench.Title()) + ", " + m_bench.Algorithm());
}

ExitCode HideVerb::CodeOfResult() const {
  const bool isWhole = m_result.ending == HideEnding::Done && m_result.backup.empty() &&
                       m_result.needlessBackup.empty() && m_result.leftOut.empty() &&
                       m_result.originalsLeft.empty() && m_selection.Passed().empty();
  return isWhole ? ExitCode::Done : ExitCode::PartlyDone;
}

}  // namespace

ExitCode RunVerb(const HideOptions& options, Surroundings& around) {
  return HideVerb(options, around).Run();
}

}  // namespace tarnel
