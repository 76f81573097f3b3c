#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>

#include "fuzz/targets.h"

namespace tarnel::fuzz {
namespace {

class Corpus : public testing::TestWithParam<Target> {};

std::string Contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return std::move(bytes).str();
}

}  // namespace

TEST_P(Corpus, BreaksNoPromise) {
  const std::filesystem::path folder = std::filesystem::path(TARNEL_CORPUS) / GetParam().name;
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    ++count;
    EXPECT_NO_THROW(GetParam().run(AsBytes(Contents(entry.path())))) << entry.path();
  }
  EXPECT_GT(count, 5u) << "the corpus is not where it should be: " << folder;
}

INSTANTIATE_TEST_SUITE_P(All, Corpus, testing::ValuesIn(kTargets),
                         [](const auto& each) { return std::string(each.param.name); });

}  // namespace tarnel::fuzz
