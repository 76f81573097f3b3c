#include "cli/workbench.h"

#include "base/printable.h"
#include "carrier/companions.h"
#include "carrier/format.h"
#include "carrier/stored_text.h"
#include "cli/screens.h"
#include "retrieval/recover.h"

namespace tarnel {

namespace {

Path FindCarrier(const std::string& given, Files& files) {
  if (!files.Stat(given)) {
    throw CliFailure(ExitCode::CarrierNotFound, "cannot find the carrier " + Printable(given));
  }
  std::error_code failed;
  Path real = std::filesystem::canonical(given, failed);
  if (failed) throw ErrnoError(failed.value(), "open", given);
  files.OpenToRead(real);
  return real;
}

/// A body of 79 bytes ends every walk with the same error as a damaged carrier, and is none.
bool IsBodyOfSeventyNineBytes(const std::vector<MirrorRow>& rows) {
  return !rows.empty() && rows.back().start == Position{kTrailerSize};
}

}  // namespace

Workbench::Workbench(const std::string& given, Surroundings& around)
    : m_around(around),
      m_given(given),
      m_carrier(FindCarrier(given, around.files)),
      m_types([](const std::string&) { return std::string(); }),
      m_reading{around.files, m_catalogue, m_types, m_guards, m_current} {}

void RefuseBusy(const Path& carrier, Files& files) {
  const std::unique_ptr<File> file = files.OpenToRead(carrier);
  try {
    file->Lock();
  } catch (const Error& error) {
    throw CliFailure(ExitCode::Busy, error);
  }
}

void Workbench::Open() {
  const GivenPassword password =
      ObtainPassword(m_around.options, m_around.variables, m_around.terminal, m_around.messages);
  if (TryOpen(password.secret)) return;
  std::string message = "no hideout in " + Printable(m_given) + " opens with this password";
  for (const Path& path : LeftoversBeside(m_carrier, m_around.files))
    message += "\n" + LeftoverAdvice(path);
  throw CliFailure(ExitCode::NoHideout, message);
}

bool Workbench::TryOpen(const Secret& password) {
  if (m_around.files.OpenToRead(m_carrier)->Size() < Length{kTrailerSize}) return false;
  OpeningOnTerminal screen(m_around.talk, m_guards);
  const LoadResult result = TryPassword(m_carrier, password, m_reading, screen);
  m_around.talk.Progress().Clear();
  if (m_around.talk.CancelRequested()) throw CliFailure(ExitCode::Cancelled, "cancelled");
  if (result != LoadResult::Loaded && m_around.talk.HasFailed()) throw m_around.talk.LastFailure();
  if (result != LoadResult::Loaded) return false;
  if (m_around.talk.BrokenWalk() && !IsBodyOfSeventyNineBytes(Rows())) {
    m_around.messages.Warn(*m_around.talk.BrokenWalk() + "; older entries may be out of reach");
  }
  return true;
}

std::string Workbench::Title() const {
  return ToPlatform(Current().CurrentHideoutTitle);
}

std::string Workbench::Algorithm() const {
  return AlgorithmName(Current().CurrentAlgorithmId);
}

ExitCode Workbench::CodeOfReading(ExitCode otherwise) const {
  const bool isBroken = m_around.talk.BrokenWalk() && !IsBodyOfSeventyNineBytes(Rows());
  return isBroken ? ExitCode::Damaged : otherwise;
}

Path FullPath(const std::string& given) {
  const Path path = std::filesystem::absolute(given);
  const std::string last = path.filename();
  std::error_code failed;
  const bool isWhole = !last.empty() && last != "." && last != "..";
  Path full = isWhole ? std::filesystem::canonical(path.parent_path(), failed) / last
                      : std::filesystem::canonical(path, failed);
  if (failed) throw ErrnoError(failed.value(), "open", given);
  return full;
}

}  // namespace tarnel
