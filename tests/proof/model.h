#pragma once

#include <map>
#include <random>
#include <string>

#include "tests/proof/carrier_session.h"

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

/// A carrier on which random operations run, each followed by a look at everything that the model says: each
/// password lists and extracts its entries in their order, the carrier begins with its own bytes, and no
/// other file lies beside it. What differs is a std::runtime_error that names the seed, the step and the
/// operation.
class RandomSequence {
 public:
  explicit RandomSequence(unsigned seed) : m_seed(seed) {}
  void Run(int steps) const;

 private:
  unsigned m_seed;
};

}  // namespace tarnel::test
