#pragma once

namespace tarnel::test {

/// A carrier on which random commands run, each followed by a look at everything that the model says: each
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
