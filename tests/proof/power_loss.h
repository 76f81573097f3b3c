#pragma once

#include "tests/proof/scene.h"

namespace tarnel::test {

/// Runs each command of a scene and, for each of its steps, looks at disks that a loss of power behind it
/// could leave: the extremes and `randomDisks` more. Recovers on each and throws std::runtime_error if
/// anything is lost. Gives the number of different disks.
std::size_t RunPowerLosses(unsigned seed, int randomDisks);

}  // namespace tarnel::test
