#include "crypto/base64.h"

#include <gtest/gtest.h>

namespace tarnel {
namespace {

struct Case {
  std::string_view bytes;
  std::string_view text;
};

TEST(Base64, EncodesTheVectorsOfRfc4648) {
  for (const auto& [bytes, text] : {Case{"", ""},
                                    {"f", "Zg=="},
                                    {"fo", "Zm8="},
                                    {"foo", "Zm9v"},
                                    {"foob", "Zm9vYg=="},
                                    {"fooba", "Zm9vYmE="},
                                    {"foobar", "Zm9vYmFy"},
                                    {"\xFB\xFF\xBF", "+/+/"}}) {
    EXPECT_EQ(Base64Encode(AsBytes(bytes)), text);
    EXPECT_EQ(Base64Decode(text), bytes);
  }
}

TEST(Base64, BreaksLinesOnlyInTextsLongerThanSeventySix) {
  const auto linesOf = [](std::size_t bytes) { return Base64Encode(AsBytes(std::string(bytes, 'x'))); };
  EXPECT_EQ(linesOf(57).size(), 76U);
  EXPECT_EQ(linesOf(57).find('\r'), std::string::npos);
  EXPECT_EQ(linesOf(58).find("\r\n"), 76U);
  EXPECT_EQ(linesOf(58).size(), 82U);
  EXPECT_EQ(linesOf(114).size(), 156U);
  EXPECT_TRUE(linesOf(114).ends_with("\r\n"));
  EXPECT_EQ(linesOf(115).rfind("\r\n"), 154U);
}

TEST(Base64, DecodesWhateverComes) {
  using namespace std::string_view_literals;
  const Case table[] = {{"foo", "Zm9v=\r\n"},
                        {"foo", "Z\r\nm\r\n9v"},
                        {"foo", "==Z=m=9=v"},
                        {"fo", "Zm8"},
                        {"f", "Zg"},
                        {"", "Z"},
                        {"foo", "Zm9vQ"},
                        {"\0\0\0"sv, "!*?\xFF"},
                        {"\0\0\0"sv, "\r\r\r\r"},
                        {"\0\0\0"sv, "\n\r\n\n\r\r"},
                        {"", "\r\n"},
                        {"", "===="},
                        {"foobar", "Zm9v====Ym\r\nFy"}};
  for (const auto& [bytes, text] : table)
    EXPECT_EQ(Base64Decode(text), bytes) << text;
}

TEST(Base64, ReversesEveryLengthAndEveryByte) {
  std::string bytes;
  for (int i = 0; i < 600; ++i) {
    EXPECT_EQ(Base64Decode(Base64Encode(AsBytes(bytes))), bytes) << i;
    bytes.push_back(static_cast<char>(i * 7 % 256));
  }
}

TEST(Base64, FortyCharactersGiveThirtyBytes) {
  EXPECT_EQ(Base64Decode(Base64Encode(AsBytes(std::string(72, 'x'))).substr(0, 40)), std::string(30, 'x'));
}

}  // namespace
}  // namespace tarnel
