#include "crypto/base64.h"

#include <gtest/gtest.h>

#include <map>
#include <vector>

namespace tarnel {
namespace {

using namespace std::string_view_literals;

TEST(Base64, EncodesTheVectorsOfRfc4648) {
  const char* const texts[] = {"", "Zg==", "Zm8=", "Zm9v", "Zm9vYg==", "Zm9vYmE=", "Zm9vYmFy"};
  for (std::size_t length = 0; length <= 6; ++length)
    EXPECT_EQ(Base64Encode(AsBytes("foobar"sv.substr(0, length))), texts[length]);
  EXPECT_EQ(Base64Encode(AsBytes("\xFB\xFF\xBF")), "+/+/");
}

TEST(Base64, BreaksLinesOnlyInTextsLongerThanSeventySix) {
  const auto linesOf = [](std::size_t bytes) { return Base64Encode(AsBytes(std::string(bytes, '\0'))); };
  const std::string line(76, 'A');
  EXPECT_EQ(linesOf(57), line);
  EXPECT_EQ(linesOf(58), line + "\r\nAA==");
  EXPECT_EQ(linesOf(114), line + "\r\n" + line + "\r\n");
  EXPECT_EQ(linesOf(115), line + "\r\n" + line + "\r\nAA==");
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

}  // namespace
}  // namespace tarnel
