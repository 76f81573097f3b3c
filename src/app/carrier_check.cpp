#include "app/carrier_check.h"

#include <optional>
#include <utility>

#include "app/session_screen.h"
#include "base/attempt.h"
#include "base/printable.h"
#include "carrier/load_hideout.h"

namespace tarnel {

namespace {

constexpr const char* kTitle = "Tarnel";

Question CarrierError(const Error& error) {
  return ErrorQuestion(error, "carrier.error", kTitle, LineBreak::CrLf, Answer::Retry);
}

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

Question CarrierChangedQuestion(const Path& carrier) {
  return {.id = "carrier.changed",
          .title = kTitle,
          .text = Printable(carrier.filename().native()) +
                  " has changed since it was opened: another program has worked on it. It has to be read "
                  "again first.\r\n\r\nDo you want to read it again?",
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = Answer::Yes};
}

Question CarrierEmptiedMessage(const Path& carrier) {
  return {
      .id = "carrier.emptied",
      .title = kTitle,
      .text = Printable(carrier.filename().native()) +
              " holds nothing that the password of its hideout opens any more. The program that changed it "
              "has removed the hidden files or put another file in its place; a copy of the carrier file "
              "from before may still hold them.",
      .buttons = Buttons::Ok,
      .icon = Icon::Critical};
}

CarrierCheck LookAtCarrier(Session& session, Dialogue& dialogue) {
  const Path carrier = session.current.CurrentCarrierPath;
  if (session.FilesOf(carrier) == 0) return CarrierCheck::AsRead;
  std::optional<FileStat> now;
  try {
    Attempt(dialogue, {CarrierError}, [&] { now = StatOf(carrier, session.files); });
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
