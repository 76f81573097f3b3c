#include "app/carrier_check.h"

#include <optional>
#include <utility>

#include "app/questions.h"
#include "app/session_screen.h"
#include "base/attempt.h"
#include "base/printable.h"
#include "carrier/load_hideout.h"

namespace tarnel {

namespace {

FileStat StatOf(const Path& carrier, Files& files) {
  if (const std::optional<FileStat> found = files.Stat(carrier)) return *found;
  throw Error(ErrorNumber::FileNotFound,
              "cannot open " + Printable(carrier.native()) + ": there is no such file any more", carrier);
}

/// The password opens nothing in the carrier.
void Empty(Session& session) {
  session.catalogue.RemoveRows(session.current.CurrentCarrierPath);
  session.catalogue.RemoveFolderNodes(session.current.CurrentCarrierPath);
  session.HideoutEmptied();
}

}  // namespace

CarrierCheck LookAtCarrier(Session& session, Dialogue& dialogue) {
  const Path carrier = session.current.CurrentCarrierPath;
  if (session.FilesOf(carrier) == 0) return CarrierCheck::AsRead;
  std::optional<FileStat> now;
  try {
    Attempt(dialogue, {CarrierErrorQuestion}, [&] { now = StatOf(carrier, session.files); });
  } catch (const Stop&) {  // then there is none
  }
  if (!now) return CarrierCheck::GaveUp;
  const std::optional<FileStat> read = session.catalogue.ReadAs(carrier);
  if (read && now->IsUntouchedSince(*read)) return CarrierCheck::AsRead;
  return dialogue.Ask(CarrierChangedQuestion(carrier)) == Answer::Yes ? CarrierCheck::ReadAgain
                                                                      : CarrierCheck::GaveUp;
}

CarrierCheck ReadCarrierAgain(Session& session, ReadingScreen& screen) {
  if (session.guards.ReadingBusy) return CarrierCheck::GaveUp;
  const SettledAtEnd settled(session);
  const Path carrier = session.current.CurrentCarrierPath;
  const Key password = session.current.CurrentPassword;
  Reading reading = session.MakeReading();
  reading.guards.AbortReadingFlag = false;
  const LoadOutcome outcome = ReadHideout({.carrier = carrier,
                                           .password = password,
                                           .algorithm = session.current.CurrentAlgorithmId,
                                           .reload = LoadRequest::Reload::Forced},
                                          reading, screen);
  const bool isAborted = std::exchange(reading.guards.AbortReadingFlag, false);
  if (!isAborted && !outcome.faults.None()) screen.ShowFaults(outcome.faults);
  if (outcome.result == LoadResult::Loaded) return CarrierCheck::ReadAgain;
  if (isAborted || outcome.wasLeft || !outcome.faults.None()) return CarrierCheck::GaveUp;
  Empty(session);
  screen.Ask(CarrierEmptiedMessage(carrier));
  return CarrierCheck::ReadAgain;
}

}  // namespace tarnel
