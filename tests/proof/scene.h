#pragma once

#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/proof/person.h"

namespace tarnel::test {

/// What a carrier must hold: the entries of each password that opens something.
using Model = std::map<std::string, Entries>;

/// Choices that a seed repeats.
class Dice {
 public:
  explicit Dice(unsigned seed) : m_generator(seed) {}
  /// From 0 to `sides` - 1.
  std::size_t Roll(std::size_t sides) { return m_generator() % sides; }
  bool OneIn(std::size_t sides) { return Roll(sides) == 0; }

 private:
  std::mt19937_64 m_generator;
};

/// A command line that changes the carrier of a scene.
struct Command {
  std::string name;
  std::string password;
  std::vector<std::string> words;
  std::vector<Model> outcomes;  ///< all that may be found afterwards, but for what it was before
  Entries originals = {};       ///< files that the command hides and then destroys
};

/// A carrier of two hideouts, files to hide, and the commands that change it: hide in an old and in a new
/// hideout, delete, update, change of the password. Sizes come from the seed.
class Scene {
 public:
  explicit Scene(unsigned seed);

  const std::vector<Command>& Commands() const { return m_commands; }

  const Path& Carrier() const { return m_carrier; }

  /// Runs a command line to its end, whatever that is.
  using Runner = std::function<void(const std::vector<std::string>& words)>;

  /// Puts carrier and originals where they were before the command, and nothing beside the carrier.
  void Reset(const Command& command);
  void Run(const Command& command, const Runner& runner) const;
  /// With the password of the hideout that has entries from before; with that of the command where no copy
  /// opens with the first. Throws std::runtime_error if a copy stays beside the carrier.
  void Recover(const Command& command, const Runner& runner);

  /// Throws std::runtime_error unless the carrier has its own bytes, every hideout is as before or as after
  /// the command, and every original is there or hidden.
  void Judge(const Command& command, const std::string& when);
  /// The same after an undisturbed run: Throws if the command has done nothing.
  void JudgeFinished(const Command& command);

  /// Every file of the scene.
  std::vector<Path> AllFiles() const;

 private:
  void AddHide(const std::string& name, const std::string& password);
  void AddDelete();
  void AddUpdate();
  void AddPasswd();
  bool HasLeftovers();
  Model Found();
  void DropUnfinished(const Command& command, Model& found) const;
  bool Stands(const Entry& original) const;

  Dice m_dice;
  TempFolder m_folder;
  TempFolder m_sources;
  Path m_carrier;
  std::string m_bytes;
  std::size_t m_bodySize;
  Model m_before;
  PosixFiles m_files;
  Person m_person{m_files};
  std::vector<Command> m_commands;
};

/// The program called in this process, at a terminal where every question is answered with "y". Gives the
/// exit code.
int RunHere(const std::vector<std::string>& words, Files& files);

}  // namespace tarnel::test
