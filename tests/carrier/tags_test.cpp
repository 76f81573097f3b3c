#include "carrier/tags.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>

#include "carrier/format.h"
#include "carrier/length_field.h"
#include "carrier/record.h"
#include "tests/carrier/carrier_bench.h"

namespace tarnel::test {

TEST(GetTag, GivesTheFirstValueOrNothing) {
  const struct {
    std::string_view tags, key, value;
  } cases[] = {
      {"", "?Fls=<", ""},
      {"?Fls=<12>", "?Fls=<", "12"},
      {"?FlsEn=<123>", "?Fls=<", ""},
      {"?FlsEn=<123>?Fls=<4>", "?Fls=<", "4"},
      {"?Fls=<1>?Fls=<2>", "?Fls=<", "1"},
      {"?Fldnm=<>", "?Fldnm=<", ""},
      {"?Fldnm=<open", "?Fldnm=<", ""},
      {"?fldnm=<a>", "?Fldnm=<", ""},
      {">?Fnm=<a>b>", "?Fnm=<", "a"},
      {"?Fnm=<?Fls=<7>", "?Fls=<", "7"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(GetTag(c.tags, c.key), c.value) << c.tags;
}

TEST(ReadNumber, ReadsAsFarAsANumberGoes) {
  constexpr double endless = std::numeric_limits<double>::infinity();
  const std::map<double, Strings> cases = {
      {0,
       {"", "abc", "+-7", "--7", ".", "E5", "inf", "nan", "-inf", "0x10", "&", "&H", "&hG", "&Q1", "1E-400",
        "9e-9999999999", "0." + std::string(400, '0') + "1", "-0E999999"}},
      {1, {"1\r2", "1..2", "1,000", "1E", "1E+", "1abc", "0001", "+1"}},
      {123, {" 1\t2\n3 ", "123", "1.23e2", "12300E - 2", "&H7b", "& H7B", "&O1738"}},
      {-5.5, {"-5.5", "- 5 .5", "-5.50-"}},
      {5, {"5.", "5.e0", "&h5"}},
      {endless, {"1E999", "9e9999999999999999999"}},
      {-endless, {"-1E999"}},
      {9999999999.0, {"9999999999"}}};
  for (const auto& [number, texts] : cases) {
    for (const std::string& text : texts)
      EXPECT_EQ(ReadNumber(text), number) << text;
  }
}

TEST(CutAtNull, TrimsBlanksAndEndsBeforeTheFirstZeroByte) {
  using namespace std::string_view_literals;
  EXPECT_EQ(CutAtNull("  a b \0 c "sv), "a b ");
  EXPECT_EQ(CutAtNull("\0abc"sv), "");
  EXPECT_EQ(CutAtNull("   "), "");
  EXPECT_EQ(CutAtNull("\ta"), "\ta");
}

TEST(LengthField, KeepsEveryNumberInFortyCharacters) {
  for (std::int64_t number = 0; number <= 9'999'999'999; number = number * 3 + 1) {
    for (int again = 0; again < 20; ++again) {
      const std::string field = PackLengthField(number);
      ASSERT_EQ(field.size(), 40u);
      ASSERT_EQ(UnpackLengthField(field), static_cast<double>(number));
    }
  }
  EXPECT_EQ(UnpackLengthField(PackLengthField(9'999'999'999)), 9'999'999'999.0);
}

TEST(LengthField, DiffersEachTimeForOneNumber) {
  EXPECT_NE(PackLengthField(5000), PackLengthField(5000));
}

TEST(LengthField, OfRubbishIsZero) {
  for (unsigned seed = 1; seed <= 2000; ++seed)
    ASSERT_EQ(UnpackLengthField(Pattern(40, seed)), 0) << seed;
  for (std::size_t length = 0; length <= 21; ++length)
    EXPECT_EQ(UnpackLengthField(PackLengthField(7777).substr(0, length)), 0) << length;
  EXPECT_EQ(UnpackLengthField(PackLengthField(7777).substr(0, 24)), 77) << "a cut field yields what it holds";
}

TEST(Record, HoldsItsTagsInOrder) {
  const RecordFields fields{.name = "n",
                            .plainSize = "1",
                            .storedSize = "33",
                            .attributes = "32",
                            .date = "d",
                            .compressed = "6",
                            .folder = "a\\b",
                            .title = "t",
                            .mode = "755"};
  const std::string front =
      "?Fnm=<n>?Fls=<1>?FlsEn=<33>?Attr=<32>?Date=<d>?Cmpr=<6>?Fldnm=<a\\b>?HideoutTitel=<t>?Vers=<701>";
  EXPECT_EQ(std::string_view(BuildRecord(fields, RecordWriter::Hide)), front + "?CompVers=<701>?Mode=<755>");
  EXPECT_EQ(std::string_view(BuildRecord(fields, RecordWriter::Rewrite)),
            front + "?CompVers=<701>?CompVers=<701>?Mode=<755>");
  const WipedText again = BuildRecord(ReadRecord(front), RecordWriter::Hide);
  EXPECT_EQ(std::string_view(again), front + "?CompVers=<701>") << "an empty mode leaves no tag";
}

TEST(Record, IsRefusedWhereTheAlgorithmHasNoCipher) {
  std::string secondKey;
  EXPECT_THROW(SealEntry("?Fnm=<a>", 1, Algorithm::Rc4, Secret("secret"), secondKey), Error);
}

}  // namespace tarnel::test
