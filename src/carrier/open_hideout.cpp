#include "carrier/open_hideout.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

#include "carrier/busy_reading.h"
#include "carrier/stored_text.h"
#include "crypto/keys.h"

namespace tarnel {

namespace {

/// The order in which algorithms are tried; the first that fits wins.
constexpr std::array kTriedAlgorithms = {Algorithm::Rijndael256, Algorithm::Cast5,      Algorithm::Des,
                                         Algorithm::Dese,        Algorithm::Idea,       Algorithm::Rc4,
                                         Algorithm::Blowfish,    Algorithm::Serpent256, Algorithm::TripleDes,
                                         Algorithm::Twofish};

/// Of the faults that several tries have found: each try sees the same break, and entries of one algorithm;
/// those of the first round see the newest entry only.
void Join(ChainFaults& all, ChainFaults faults) {
  if (faults.entries.size() + faults.notNoted > all.entries.size() + all.notNoted) {
    all.notNoted = faults.notNoted;
    all.entries = std::move(faults.entries);
  }
  if (faults.brokenAt) all.brokenAt = faults.brokenAt;
  if (faults.closedBy) all.closedBy = std::move(faults.closedBy);
}

/// What a file is now; nothing if that can't be said.
std::optional<FileStat> StatOf(Files& files, const Path& path) {
  try {
    return files.Stat(path);
  } catch (const Error&) {
    return std::nullopt;
  }
}

/// The carrier for all tries of one password.
class CarrierForTries {
 public:
  CarrierForTries(const Path& path, Files& files) : m_path(path), m_files(files) {}

  /// Of which nothing is known any more if somebody has worked on the carrier meanwhile.
  OpenedCarrier* ForNextTry() {
    const std::optional<FileStat> now = StatOf(m_files, m_path);
    if (!now || !m_before || !now->IsUntouchedSince(*m_before)) m_opened = {};
    m_before = now;
    return &m_opened;
  }

 private:
  const Path& m_path;
  Files& m_files;
  std::optional<FileStat> m_before;
  OpenedCarrier m_opened;
};

/// Ends with the faults of the try that came to a final result, or else with those of all.
LoadOutcome TryAll(LoadRequest request, Reading& reading, OpeningScreen& screen) {
  LoadOutcome all;
  int number = 0;
  CarrierForTries carrier(request.carrier, reading.files);
  for (const auto fit : {LoadRequest::Fit::NewestEntry, LoadRequest::Fit::AnyEntry}) {
    for (const Algorithm algorithm : kTriedAlgorithms) {
      request.algorithm = algorithm;
      request.fit = fit;
      request.opened = carrier.ForNextTry();
      reading.guards.TreeClickBlocked = true;
      LoadOutcome outcome = ReadHideout(request, reading, screen);
      if (IsFinal(outcome.result)) return outcome;
      Join(all.faults, std::move(outcome.faults));
      if (all.faults.closedBy) return all;
      screen.ShowTry(++number);
    }
  }
  return all;
}

}  // namespace

LoadResult TryPassword(const Path& carrier, const Key& password, Reading& reading, OpeningScreen& screen) {
  if (reading.guards.ReadingBusy) return LoadResult::NotFound;
  const LoadOutcome outcome = TryAll({.carrier = carrier, .password = password}, reading, screen);
  const bool isStopped = reading.guards.AbortReadingFlag || outcome.result == LoadResult::KeptOpen;
  reading.guards.AbortReadingFlag = false;
  if (!isStopped && !outcome.faults.None()) screen.ShowFaults(outcome.faults);
  return outcome.result;
}

TreeNode& CreateHideout(const Path& carrier, const Key& password, std::string_view title, Algorithm algorithm,
                        Reading& reading) {
  auto hideout = std::make_shared<const HideoutKey>(
      HideoutKey{.carrier = carrier,
                 .carrierName = ToStored(carrier.filename().native(), TextKind::PathComponent),
                 .password = password,
                 .algorithm = algorithm,
                 .title = WipedText(ToStored(title, TextKind::Plain))});
  reading.current = CurrentOf(*hideout);
  reading.catalogue.RemoveCarrier(carrier);
  return reading.catalogue.AddRoot(std::move(hideout), {});
}

std::optional<NewHideoutFault> CheckNewHideout(const Path& carrier, const Secret& password,
                                               const Secret& confirmation, std::string_view title,
                                               Files& files) {
  if (password.IsEmpty()) return NewHideoutFault::NoPassword;
  if (title.find_first_not_of(' ') == std::string_view::npos) return NewHideoutFault::NoTitle;
  if (!(password == confirmation)) return NewHideoutFault::ConfirmationDiffers;
  const std::optional<FileStat> stat = files.Stat(carrier);
  if (!stat || stat->kind != FileKind::Regular) return NewHideoutFault::CarrierMissing;
  return std::nullopt;
}

bool TitleRefuses(char c) {
  return c == '/' || c == '\\' || NewPasswordRefuses(c);
}

bool NewPasswordRefuses(char c) {
  return c == '<' || c == '>';
}

}  // namespace tarnel
