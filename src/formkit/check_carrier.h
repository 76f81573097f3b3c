#pragma once

#include "app/carrier_check.h"

class QWidget;

namespace tarnel {

/// LookAtCarrier, and where the person wants it ReadCarrierAgain in a small form over `parent`, with its
/// progress and a way to stop it. A flow begins with
///
///   if (CheckCarrier(session, dialogue, this) != CarrierCheck::AsRead) return;
///
/// One that works on the carrier as a whole and on nothing chosen, as hiding does, goes on after ReadAgain.
/// Behind a RunDelete, RunUpdate or RunPassword that didn't end with RewriteEnding::Done it calls
/// Session::CarrierKeptItsBytes.
CarrierCheck CheckCarrier(Session& session, Dialogue& dialogue, QWidget* parent);

}  // namespace tarnel
