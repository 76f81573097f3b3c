#include "cli/workbench.h"

#include "base/printable.h"
#include "carrier/companions.h"
#include "carrier/format.h"
#include "carrier/leftovers.h"
#include "carrier/stored_text.h"
#include "cli/screens.h"

namespace tarnel {

namespace {

Path FindCarrier(const std::string& given, Files& files) {
  if (!files.Stat(given)) {
    throw CliFailure(ExitCode::CarrierNotFound, "cannot find the carrier " + Printable(given));
  }
  Path real = files.Canonical(given);
  files.OpenToRead(real);
  return real;
}

}  // namespace

Workbench::Workbench(const std::string& given, Surroundings& around)
    : m_around(around),
      m_given(given),
      m_carrier(FindCarrier(given, around.files)),
      m_reading{around.files, m_catalogue, m_guards, m_current} {
  // Through a symbolic link other files lie beside it.
  if (Path(given).filename() == m_carrier.filename()) around.messages.ShowAs(m_carrier, given);
  PutBytes(around.report, "carrier", given);
}

void RefuseBusy(const Path& carrier, Files& files) {
  const std::unique_ptr<File> file = files.OpenToRead(carrier);
  try {
    file->Lock();
  } catch (const Error& error) {
    throw CliFailure(ExitCode::Busy, error);
  }
}

void Workbench::Open() {
  OpenWith(
      Key(ObtainPassword(m_around.options, m_around.variables, m_around.terminal, m_around.messages).secret));
}

void Workbench::OpenWith(const Key& password) {
  if (TryOpen(password)) return;
  RefuseBusy(m_carrier, m_around.files);
  const std::string name = Printable(m_given);
  if (!m_faults.None()) {
    WarnOfFaults();
    throw CliFailure(m_faults.IsDamage() ? ExitCode::Damaged : ExitCode::Failed,
                     "nothing in " + name + " can be read with this password");
  }
  std::string message = "no hideout in " + name +
                        " opens with this password; if files were hidden in it and its end was damaged or "
                        "added to, \"tarnel-cli salvage\" finds them";
  for (const Path& path : LeftoversBeside(m_carrier, m_around.files))
    message += "\n" + LeftoverAdvice(path);
  throw CliFailure(ExitCode::NoHideout, message);
}

bool Workbench::TryOpen(const Key& password) {
  if (m_around.files.OpenToRead(m_carrier)->Size() < Length{kTrailerSize}) return false;
  OpeningOnTerminal screen(m_around.talk, m_guards);
  const LoadResult result = TryPassword(m_carrier, password, m_reading, screen);
  m_around.talk.Progress().Clear();
  m_faults = screen.Faults();
  if (m_around.talk.CancelRequested()) throw CliFailure(ExitCode::Cancelled, "cancelled");
  if (result == LoadResult::Loaded) return true;
  if (m_around.talk.HasFailed()) throw CliFailure(ExitCode::Unreadable, m_around.talk.LastFailure().what());
  return false;
}

void Workbench::WarnOfFaults() const {
  for (const std::string& sentence : SentencesOf(m_faults))
    m_around.messages.Warn(sentence);
}

std::string Workbench::Title() const {
  return ToPlatform(Current().CurrentHideoutTitle);
}

std::string Workbench::Algorithm() const {
  return AlgorithmName(Current().CurrentAlgorithmId);
}

ExitCode Workbench::CodeOfReading(ExitCode otherwise) const {
  if (m_faults.IsDamage()) return ExitCode::Damaged;
  return m_faults.closedBy && otherwise == ExitCode::Done ? ExitCode::PartlyDone : otherwise;
}

Path FullPath(const std::string& given, Files& files) {
  const Path path = std::filesystem::absolute(given);
  const std::string last = path.filename();
  const bool isWhole = !last.empty() && last != "." && last != "..";
  return isWhole ? files.Canonical(path.parent_path()) / last : files.Canonical(path);
}

}  // namespace tarnel
