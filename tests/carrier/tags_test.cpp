#include "carrier/tags.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>

#include "carrier/format.h"
#include "carrier/length_field.h"
#include "carrier/record.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/support/held_key.h"

namespace tarnel::test {

TEST(GetTag, GivesTheFirstValueOrNothing) {
  const std::map<std::string_view, Strings> cases = {
      {"", {"", "?FlsEn=<123>", "?fls=<a>", "?Fls=<>", "?Fls=<open"}},
      {"4", {"?Fls=<4>", "?FlsEn=<123>?Fls=<4>", "?Fls=<4>?Fls=<2>", ">?Fls=<4>b>", "?Fnm=<?Fls=<4>"}}};
  for (const auto& [value, texts] : cases) {
    for (const std::string& tags : texts)
      EXPECT_EQ(GetTag(tags, "?Fls=<"), value) << tags;
  }
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

TEST(LengthField, KeepsEveryNumberInFortyCharactersThatDifferEachTime) {
  for (std::int64_t number = 0; number <= 9'999'999'999; number = number * 3 + 1) {
    const std::string field = PackLengthField(number);
    ASSERT_EQ(field.size(), 40u);
    ASSERT_EQ(UnpackLengthField(field), static_cast<double>(number));
    ASSERT_NE(field, PackLengthField(number));
  }
  EXPECT_EQ(UnpackLengthField(PackLengthField(9'999'999'999)), 9'999'999'999.0);
}

TEST(LengthField, OfRubbishIsZero) {
  for (unsigned seed = 1; seed <= 2000; ++seed)
    ASSERT_EQ(UnpackLengthField(Pattern(40, seed)), 0) << seed;
  EXPECT_EQ(UnpackLengthField(PackLengthField(7777).substr(0, 21)), 0);
  EXPECT_EQ(UnpackLengthField(PackLengthField(7777).substr(0, 24)), 77) << "a cut field yields what it holds";
}

TEST(Record, HoldsItsTagsInOrder) {
  const std::string front =
      "?Fnm=<n>?Fls=<1>?FlsEn=<33>?Attr=<32>?Date=<d>?Cmpr=<6>?Fldnm=<a\\b>?HideoutTitel=<t>?Vers=<701>";
  const RecordFields fields = ReadRecord(front + "?Mode=<755>");
  EXPECT_EQ(BuildRecord(fields, RecordWriter::Hide), WipedText(front + "?CompVers=<701>?Mode=<755>"));
  EXPECT_EQ(BuildRecord(fields, RecordWriter::Rewrite),
            WipedText(front + "?CompVers=<701>?CompVers=<701>?Mode=<755>"));
  EXPECT_EQ(BuildRecord(ReadRecord(front), RecordWriter::Hide), WipedText(front + "?CompVers=<701>"))
      << "an empty mode leaves no tag";
}

TEST(Record, IsRefusedWhereTheAlgorithmHasNoCipher) {
  std::string secondKey;
  EXPECT_THROW(SealEntry("?Fnm=<a>", 1, Algorithm::Rc4, HeldKey("secret"), secondKey), Error);
}

}  // namespace tarnel::test
