// soak model COUNT [SEED]
//   Runs COUNT random sequences of 20 operations against a model.
// soak kill COUNT [SEED [TARNEL-CLI INTERPOSER]]
//   Kills the program COUNT times while it changes a carrier, and recovers. With the path of the program and
//   of the library to preload the program itself runs, else its code in a fork, which is some fifty times as
//   fast.
// soak power COUNT [SEED]
//   Looks at the disks that a loss of power could leave behind each step of each command, in COUNT rounds.
//
// Ends with a line of what was done and 0, or with what was lost and 1. The same seed gives the same run, but
// for the kills at random moments.

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "tests/proof/kill_campaign.h"
#include "tests/proof/power_loss.h"

namespace tarnel::test {
namespace {

constexpr int kSteps = 20;
constexpr int kRandomDisks = 10;

void SoakModel(unsigned long count, unsigned seed) {
  for (unsigned long i = 0; i < count; ++i)
    RandomSequence(seed + static_cast<unsigned>(i)).Run(kSteps);
  std::cout << count << " sequences of " << kSteps << " operations from seed " << seed << ": 0 differences\n";
}

void SoakKill(unsigned long count, unsigned seed, const Victim& victim) {
  const std::size_t kills = RunKillCampaigns(victim, count, seed);
  std::cout << kills << " kills from seed " << seed << ": 0 losses\n";
}

void SoakPower(unsigned long count, unsigned seed) {
  std::size_t disks = 0;
  for (unsigned long i = 0; i < count; ++i)
    disks += RunPowerLosses(seed + static_cast<unsigned>(i), kRandomDisks);
  std::cout << disks << " disks after a loss of power from seed " << seed << ": 0 losses\n";
}

int Usage() {
  std::cerr << "usage: soak model COUNT [SEED]\n       soak kill COUNT [SEED [TARNEL-CLI INTERPOSER]]\n"
               "       soak power COUNT [SEED]\n";
  return 2;
}

int Soak(const std::vector<std::string>& arguments) {
  if (arguments.size() < 2) return Usage();
  const unsigned long count = std::stoul(arguments[1]);
  const auto seed = static_cast<unsigned>(arguments.size() > 2 ? std::stoul(arguments[2]) : 1);
  if (arguments[0] == "model")
    SoakModel(count, seed);
  else if (arguments[0] == "power")
    SoakPower(count, seed);
  else if (arguments[0] == "kill")
    SoakKill(count, seed, arguments.size() > 4 ? Victim(arguments[3], arguments[4]) : Victim());
  else
    return Usage();
  return 0;
}

}  // namespace
}  // namespace tarnel::test

int main(int argc, char** argv) {
  try {
    return tarnel::test::Soak({argv + 1, argv + argc});
  } catch (const std::exception& error) {
    std::cerr << "LOST: " << error.what() << "\n";
    return 1;
  }
}
