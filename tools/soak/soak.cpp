// soak model COUNT [SEED]
//   Runs COUNT random sequences of 20 operations against a model.
// soak kill COUNT [SEED]
//   Kills the program's code COUNT times, in a fork, while it changes a carrier, and recovers.
// soak power COUNT [SEED]
//   Looks at the disks that a loss of power could leave behind each step of each command, in COUNT rounds.
// soak flips|lengths|cuts|holes|tails EVERY
//   Damages a small carrier: each EVERY-th bit, bit of a length field, cut, place where bytes are put in or
//   taken out; or all kinds of bytes behind its end.
// soak worst KIND|kinds BYTES FILE
//   Writes a carrier that costs a reader most, for the password "one"; "kinds" names them.
//
// Ends with a line of what was done and 0, or with what was lost and 1. The same seed gives the same run.

#include <cstdlib>
#include <exception>
#include <iostream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/proof/damage.h"
#include "tests/proof/power_loss.h"
#include "tools/soak/kill_campaign.h"
#include "tools/soak/model.h"
#include "tools/soak/worst_carriers.h"

namespace tarnel::test {
namespace {

constexpr int kSteps = 20;
constexpr int kRandomDisks = 10;

void SoakModel(unsigned long count, unsigned seed) {
  for (unsigned long i = 0; i < count; ++i)
    RandomSequence(seed + static_cast<unsigned>(i)).Run(kSteps);
  std::cout << count << " sequences of " << kSteps << " operations from seed " << seed << ": 0 differences\n";
}

void SoakKill(unsigned long count, unsigned seed) {
  const std::size_t kills = RunKillCampaign(count, seed);
  std::cout << kills << " kills from seed " << seed << ": 0 losses\n";
}

void SoakPower(unsigned long count, unsigned seed) {
  std::size_t disks = 0;
  for (unsigned long i = 0; i < count; ++i)
    disks += RunPowerLosses(seed + static_cast<unsigned>(i), kRandomDisks);
  std::cout << disks << " disks after a loss of power from seed " << seed << ": 0 losses\n";
}

void SoakDamage(const std::string& kind, std::size_t every) {
  DamageCampaign campaign;
  if (kind == "flips") campaign.FlipBits(every);
  if (kind == "lengths") campaign.FlipLengthBits(every);
  if (kind == "cuts") campaign.Cut(every);
  if (kind == "tails") campaign.Append();
  if (kind == "holes") campaign.CutOutAndInsert(every);
  for (const std::string& finding : campaign.Findings())
    std::cerr << finding << "\n";
  if (!campaign.Findings().empty()) throw std::runtime_error("see above");
  std::cout << campaign.Carriers() << " carriers damaged by " << kind << ": all told, 0 losses\n";
}

int WriteWorst(const std::string& kind, std::size_t bytes, const Path& path) {
  if (kind != "kinds") WriteWorstCarrier(kind, path, bytes);
  for (const std::string& known : WorstKinds())
    if (kind == "kinds") std::cout << known << "\n";
  return 0;
}

int Usage() {
  std::cerr << "usage: soak model COUNT [SEED]\n       soak kill COUNT [SEED]\n"
               "       soak power COUNT [SEED]\n       soak flips|lengths|cuts|holes|tails EVERY\n"
               "       soak worst KIND|kinds BYTES FILE\n";
  return 2;
}

int Soak(const std::vector<std::string>& arguments) {
  if (arguments.size() == 4 && arguments[0] == "worst")
    return WriteWorst(arguments[1], std::stoul(arguments[2]), arguments[3]);
  if (arguments.size() < 2) return Usage();
  const unsigned long count = std::stoul(arguments[1]);
  const auto seed = static_cast<unsigned>(arguments.size() > 2 ? std::stoul(arguments[2]) : 1);
  if (arguments[0] == "model")
    SoakModel(count, seed);
  else if (std::set<std::string>{"flips", "lengths", "cuts", "holes", "tails"}.contains(arguments[0]))
    SoakDamage(arguments[0], count);
  else if (arguments[0] == "power")
    SoakPower(count, seed);
  else if (arguments[0] == "kill")
    SoakKill(count, seed);
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
