#pragma once

#include <exception>

#include "app/questions.h"
#include "base/dialogue.h"

namespace tarnel {

/// Runs what a slot or an event does; no exception leaves it. What one says is shown, and the program goes
/// on.
template <class Body>
void Guarded(Dialogue& dialogue, Body&& body) noexcept {
  try {
    try {
      body();
    } catch (const Error& error) {
      dialogue.Ask(FaultMessage(error));
    } catch (const std::exception& error) {
      dialogue.Ask(FaultMessage(Error(ErrorNumber::DeviceIo, error.what())));
    }
  } catch (...) {  // not even a box can be shown
  }
}

}  // namespace tarnel
