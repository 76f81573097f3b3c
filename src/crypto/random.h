#pragma once

#include "base/bytes.h"

namespace tarnel {

/// Fills from the system generator. Throws Error (DeviceIo) if it fails.
void FillRandom(MutableBytes bytes);

/// Uniform from low to high, both included.
int RandomBetween(int low, int high);

}  // namespace tarnel
