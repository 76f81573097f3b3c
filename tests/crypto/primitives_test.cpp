#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <set>
#include <vector>

#include "crypto/algorithm.h"
#include "crypto/base64.h"
#include "crypto/random.h"

namespace tarnel {
namespace {

using namespace std::string_view_literals;

TEST(Algorithms, HaveTheirOrderAndNumbersAndUnknownOnesNoNameOrBlowfish) {
  std::string list;
  for (const OfferedAlgorithm& offered : OfferedAlgorithms()) {
    std::string name(offered.name);
    EXPECT_EQ(AlgorithmId(name), offered.algorithm);
    EXPECT_EQ(AlgorithmName(offered.algorithm), name) << "folded in place";
    list += std::to_string(static_cast<int>(offered.algorithm)) + " ";
  }
  EXPECT_EQ(list, "0 5 3 8 11 2 13 ");
  EXPECT_EQ(AlgorithmName(Algorithm{6}), "");
  std::string unknown = "rot13 \xE4";
  EXPECT_EQ(AlgorithmId(unknown), Algorithm::Blowfish);
  EXPECT_EQ(unknown, "ROT13 \xE4");
}

TEST(Base64, EncodesTheVectorsOfRfc4648AndBreaksLinesOnlyInTextsLongerThanSeventySix) {
  const char* const texts[] = {"", "Zg==", "Zm8=", "Zm9v", "Zm9vYg==", "Zm9vYmE=", "Zm9vYmFy"};
  for (std::size_t length = 0; length <= 6; ++length)
    EXPECT_EQ(Base64Encode(AsBytes("foobar"sv.substr(0, length))), texts[length]);
  EXPECT_EQ(Base64Encode(AsBytes("\xFB\xFF\xBF")), "+/+/");
  const std::string line(76, 'A');
  const std::pair<std::size_t, std::string> zeros[] = {{57, line},
                                                       {58, line + "\r\nAA=="},
                                                       {114, line + "\r\n" + line + "\r\n"},
                                                       {115, line + "\r\n" + line + "\r\nAA=="}};
  for (const auto& [length, text] : zeros)
    EXPECT_EQ(Base64Encode(AsBytes(std::string(length, '\0'))), text);
}

TEST(Base64, DecodesWhateverComes) {
  const std::map<std::string_view, std::vector<const char*>> cases = {
      {"", {"Z", "\r\n", "===="}},
      {"f", {"Zg"}},
      {"fo", {"Zm8"}},
      {"foo", {"Zm9v=\r\n", "Z\r\nm\r\n9v", "==Z=m=9=v", "Zm9vQ"}},
      {"foobar", {"Zm9v====Ym\r\nFy"}},
      {"\0\0\0"sv, {"!*?\xFF", "\r\r\r\r", "\n\r\n\n\r\r"}}};
  for (const auto& [bytes, texts] : cases)
    for (const char* text : texts)
      EXPECT_EQ(Base64Decode(text), bytes) << text;
}

TEST(Random, GivesEveryValueOfARangeAndNoOtherWithoutBias) {
  std::set<int> values;
  for (int i = 0; i < 10000; ++i)
    values.insert(RandomBetween(100, 220));
  EXPECT_TRUE(values.size() == 121 && *values.begin() == 100 && *values.rbegin() == 220);
  EXPECT_EQ(RandomBetween(7, 7), 7);
  // Three quarters of all words: without rejection the lower half of the range would come up twice as often.
  constexpr int kHigh = std::numeric_limits<int>::max();
  constexpr int kLow = kHigh - 0x60000000 - 0x5FFFFFFF;
  constexpr int kRounds = 20000;
  int lowerThird = 0;
  for (int i = 0; i < kRounds; ++i)
    if (RandomBetween(kLow, kHigh) < kLow + 0x40000000) ++lowerThird;
  EXPECT_NEAR(lowerThird, kRounds / 3, kRounds / 30);  // ten standard deviations; biased: a half
}

}  // namespace
}  // namespace tarnel
