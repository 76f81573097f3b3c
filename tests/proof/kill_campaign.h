#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "tests/proof/interposer.h"
#include "tests/proof/scene.h"

namespace tarnel::test {

/// When SIGKILL comes: at a call that changes files, or after a time, or never.
struct Blow {
  long at = 0;
  Interposition::Moment moment = Interposition::Moment::Before;
  std::optional<std::chrono::microseconds> after = std::nullopt;
};

/// tarnel-cli in a process of its own, at a terminal where every question is answered with "y".
class Victim {
 public:
  /// The code of the program in a fork of this process, which knows the keys that this one has derived.
  Victim() = default;
  /// The program itself, with the interposer preloaded.
  Victim(Path program, Path interposer)
      : m_program(std::move(program)), m_interposer(std::move(interposer)) {}

  struct End {
    bool wasKilled = false;
    int exitCode = 0;  ///< if it wasn't killed
    long changes = 0;  ///< calls that changed files, if it wasn't killed
    std::chrono::microseconds time{};
  };
  End Run(const std::vector<std::string>& words, const Blow& blow = {}) const;

 private:
  [[noreturn]] void RunForked(const std::vector<std::string>& words, const Blow& blow,
                              const Path& count) const;
  [[noreturn]] void RunProgram(const std::vector<std::string>& words, const Blow& blow,
                               const Path& count) const;

  Path m_program;
  Path m_interposer;
};

/// Lets the commands of a scene be killed, recovers, and looks whether anything is lost.
class KillCampaign {
 public:
  KillCampaign(const Victim& victim, unsigned seed) : m_victim(victim), m_scene(seed) {}

  std::size_t Commands() const { return m_scene.Commands().size(); }
  /// How a run of the command ends that nothing disturbs. Throws if it fails.
  Victim::End RunQuietly(std::size_t command);
  /// True if the program was killed before its end. Throws std::runtime_error if anything was lost.
  bool Strike(std::size_t command, const Blow& blow);

 private:
  Victim::End Run(const Command& command, const Blow& blow);

  const Victim& m_victim;
  Scene m_scene;
};

/// Strikes at every changing call of every command, before it, in it and after it, then at random moments,
/// with new sizes in each round, until `kills` have hit. Gives the number of kills.
std::size_t RunKillCampaigns(const Victim& victim, std::size_t kills, unsigned seed);

/// One round with `tries` blows at random calls. Gives the number of kills.
std::size_t SampleKills(const Victim& victim, std::size_t tries, unsigned seed);

}  // namespace tarnel::test
