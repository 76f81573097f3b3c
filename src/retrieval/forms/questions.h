#pragma once

#include "base/dialogue.h"

namespace tarnel {

/// "carrier-file.none": there is no file of the name in the box.
Question LocateCarrierMessage();

}  // namespace tarnel
