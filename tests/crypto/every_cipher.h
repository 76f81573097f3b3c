#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "crypto/algorithm.h"

namespace tarnel {

inline std::vector<Algorithm> EveryCipher() {
  std::vector<Algorithm> all;
  for (const OfferedAlgorithm& offered : OfferedAlgorithms())
    all.push_back(offered.algorithm);
  return all;
}

inline std::string TestNameOf(const testing::TestParamInfo<Algorithm>& parameter) {
  std::string name = AlgorithmName(parameter.param);
  std::erase(name, '-');
  return name;
}

}  // namespace tarnel
