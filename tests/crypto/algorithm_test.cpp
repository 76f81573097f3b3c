#include "crypto/algorithm.h"

#include <gtest/gtest.h>

namespace tarnel {
namespace {

TEST(Algorithms, TheListHasItsOrderNumbersAndTextsAndEveryNameInItIsFound) {
  std::string list;
  for (const OfferedAlgorithm& offered : OfferedAlgorithms()) {
    std::string name(offered.name);
    EXPECT_EQ(AlgorithmId(name), offered.algorithm);
    EXPECT_EQ(AlgorithmName(offered.algorithm), name) << "folded in place";
    list += std::to_string(static_cast<int>(offered.algorithm));
    for (const std::string_view text : {offered.name, offered.blockText, offered.keyText})
      list.append(" ").append(text);
    list += '\n';
  }
  EXPECT_EQ(list,
            "0 BLOWFISH - Block cipher: 64-bit block - Key length: 448 bits\n"
            "5 CAST5 - Block cipher: 64-bit block - Key length: 128 bits\n"
            "3 DES - Block cipher: 64-bit block - Key length: 56 bits\n"
            "8 SERPENT-256 - Block cipher: 128-bit block - Key length: 256 bits\n"
            "11 RIJNDAEL-256 - Block cipher: 256-bit block - Key length: 256 bits\n"
            "2 TripleDES - Block cipher: 64-bit block - Key length: 192 bits\n"
            "13 TWOFISH - Block cipher: 128-bit block - Key length: 256 bits\n");
}

TEST(Algorithms, AnUnknownNumberHasNoNameAndAnUnknownNameMeansBlowfish) {
  EXPECT_EQ(AlgorithmName(Algorithm{6}), "");
  std::string unknown = "rot13 \xE4";
  EXPECT_EQ(AlgorithmId(unknown), Algorithm::Blowfish);
  EXPECT_EQ(unknown, "ROT13 \xE4");
}

}  // namespace
}  // namespace tarnel
