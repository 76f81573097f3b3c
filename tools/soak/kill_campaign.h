#pragma once

#include <cstddef>

namespace tarnel::test {

/// Kills the program's code, in forks of this process, at every call with which a scene's commands change
/// files: before it, in it and after it; with new sizes in each round, until `kills` have hit. Recovers each
/// time. Throws std::runtime_error if anything is lost. Gives the number of kills.
std::size_t RunKillCampaign(std::size_t kills, unsigned seed);

}  // namespace tarnel::test
