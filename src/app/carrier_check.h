#pragma once

#include "app/session.h"
#include "base/dialogue.h"

namespace tarnel {

/// Whether the current carrier is still what was read when its hideout was opened: the same file, with the
/// size and the times of then. Other programs may have worked on it, or put another file in its place. Every
/// flow looks before its form comes up, and again when work begins after a form that can stand open for long.
/// In windows both steps are one: see CheckCarrier in formkit/check_carrier.h.

enum class CarrierCheck {
  AsRead,     ///< nothing has happened to it; a hideout without files, of which nothing was read, always is
  ReadAgain,  ///< it was read again. What was chosen before means nothing any more: choose anew, or let go
  GaveUp,     ///< the person doesn't want it read, or it can't be. What was to be done is not to be done
};

/// Looks, and asks where something has happened: ReadAgain is the person's wish then. What can't be looked at
/// is asked about as "carrier.error", with Abort, Retry and Ignore; Ignore means the same as Abort.
CarrierCheck LookAtCarrier(Session& session, Dialogue& dialogue);

/// Reads the current hideout again; what is wrong with its carrier goes to the screen. Never AsRead. With
/// nothing found the hideout stays open without files, which the person is told. Setting AbortReadingFlag
/// stops it, and closes the hideout. The views are settled afterwards.
CarrierCheck ReadCarrierAgain(Session& session, ReadingScreen& screen);

}  // namespace tarnel
