#include "crypto/algorithm.h"

#include <gtest/gtest.h>

namespace tarnel {
namespace {

TEST(Algorithms, NamesAndNumbersBelongTogether) {
  const std::pair<int, std::string> table[] = {
      {0, "BLOWFISH"}, {1, "IDEA"},        {2, "TRIPLEDES"},     {3, "DES"},  {4, "DESE"},
      {5, "CAST5"},    {8, "SERPENT-256"}, {11, "RIJNDAEL-256"}, {12, "RC4"}, {13, "TWOFISH"}};
  for (auto [number, name] : table) {
    EXPECT_EQ(AlgorithmName(Algorithm{number}), name);
    EXPECT_EQ(AlgorithmId(name), Algorithm{number});
  }
}

TEST(Algorithms, UnknownNumbersHaveNoName) {
  for (const int number : {-1, 6, 7, 9, 10, 14, 1000})
    EXPECT_EQ(AlgorithmName(Algorithm{number}), "");
}

TEST(Algorithms, ANameIsFoldedInPlaceAndAnUnknownOneMeansBlowfish) {
  std::string mixed = "TripleDES";
  EXPECT_EQ(AlgorithmId(mixed), Algorithm::TripleDes);
  EXPECT_EQ(mixed, "TRIPLEDES");
  std::string unknown = "rot13 \xE4";
  EXPECT_EQ(AlgorithmId(unknown), Algorithm::Blowfish);
  EXPECT_EQ(unknown, "ROT13 \xE4");
}

TEST(Algorithms, TheListHasItsOrderAndEveryNameInItIsFound) {
  std::string names;
  for (const OfferedAlgorithm& offered : OfferedAlgorithms()) {
    std::string name(offered.name);
    EXPECT_EQ(AlgorithmId(name), offered.algorithm);
    names.append(offered.name).append(" ").append(offered.blockText).append(" ").append(offered.keyText) +=
        '\n';
  }
  EXPECT_EQ(names,
            "BLOWFISH - Block cipher: 64-bit block - Key length: 448 bits\n"
            "CAST5 - Block cipher: 64-bit block - Key length: 128 bits\n"
            "DES - Block cipher: 64-bit block - Key length: 56 bits\n"
            "SERPENT-256 - Block cipher: 128-bit block - Key length: 256 bits\n"
            "RIJNDAEL-256 - Block cipher: 256-bit block - Key length: 256 bits\n"
            "TripleDES - Block cipher: 64-bit block - Key length: 192 bits\n"
            "TWOFISH - Block cipher: 128-bit block - Key length: 256 bits\n");
}

}  // namespace
}  // namespace tarnel
