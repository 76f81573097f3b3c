#include "carrier/record.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <string>

#include "carrier/format.h"
#include "carrier/length_field.h"
#include "carrier/payload.h"
#include "carrier/record_scan.h"
#include "carrier/record_text.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/support/held_key.h"

namespace tarnel::test {

namespace {

/// What is wrong with the stored form of `bytes`, or nothing.
std::string FaultOf(const std::string& bytes) {
  for (const TextKind kind : {TextKind::Plain, TextKind::PathComponent}) {
    const std::string stored = ToStored(bytes, kind);
    if (ToPlatform(stored) != bytes) return "comes back otherwise: " + stored;
    if (kind == TextKind::PathComponent && stored.find('\\') != std::string::npos) return "splits: " + stored;
    if (stored.find("=<") != std::string::npos) return "begins a tag: " + stored;
    if (stored.find('>') != std::string::npos) return "ends a tag: " + stored;
  }
  return {};
}

/// Visible characters stand for the five codes.
std::string Coded(std::string_view text) {
  std::string coded(text);
  for (char& c : coded) {
    const std::size_t code = std::string_view("{[(~}").find(c);
    if (code != std::string_view::npos) c = "\x81\x8D\x8F\x90\x9D"[code];
  }
  return coded;
}

std::string Stored(std::string_view bytes) {
  return ToStored(bytes, TextKind::PathComponent);
}

}  // namespace

TEST(StoredText, BringsBackEveryStringOfTwoBytesAndRandomNames) {
  for (int first = 1; first < 256; ++first) {
    for (int second = 1; second < 256; ++second)
      ASSERT_EQ(FaultOf({static_cast<char>(first), static_cast<char>(second)}), "");
  }
  ASSERT_EQ(FaultOf("\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"), "") << "where lengths change";
  std::mt19937 random(7);
  const std::string_view hostile =
      "=<>\\/.?\x81\x8D\x8F\x90\x9D\xD0\xB0\xE2\x82\xAC\xF0\x9F\x98\x80\xED\xA0\xF4"
      "aA09+-";
  for (int round = 0; round < 8000; ++round) {
    std::string name(1 + random() % 255, '\0');
    for (char& c : name)
      c = round % 2 == 0 ? static_cast<char>(1 + random() % 255) : hostile[random() % hostile.size()];
    ASSERT_EQ(FaultOf(name), "");
  }
}

TEST(StoredText, HasExactlyThisForm) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"plain name.txt", "plain name.txt"},
      {"a<b=c", "a<b=c"},
      {"\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152",
       "\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C"},
      {"\u017D\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\u0178",
       "\x8E\x91\x92\x93\x94\x95\x96\x97\x98\x99\x9A\x9B\x9C\x9F"},
      {"\u00E4\u00D6\u20AC\u017E", "\xE4\xD6\x80\x9E"},
      {"a>b", "a{0+}b"},
      {"?Fls=<5", "?Fls={0y}5"},
      {"..\\x", "..{1S}x"},
      {"\u0430\u0431>", "{GmGn0+}"},
      {"\u4E2D\U0001F600\u0FFF\u1000", "[4ujVO0}{--}[100}"},
      {"\U0010FFFF\u0430\U0003FFFF\U00040000", "(4F--}{Gm}[---}(1000}"},
      {"\xFF\xFEx\x80", "~3-3+}x~20}"},
      {"\u0081", "{21}"}};
  for (const auto& [bytes, stored] : cases) {
    EXPECT_EQ(Stored(bytes), Coded(stored)) << bytes;
    EXPECT_EQ(ToPlatform(Coded(stored)), bytes) << bytes;
  }
  EXPECT_EQ(ToStored("/home/a\\b", TextKind::Plain), "/home/a\\b");
}

TEST(StoredText, TakesWhatIsNoEscapeAsTheCodePage) {
  // At the end: what needs no escape, is longer than it must be, is a surrogate or beyond Unicode.
  for (const std::string_view text : {"{", "}", "{Gm", "{}", "{G}", "{GmG}", "{G<}", "{0k}", "{0l}", "{00}",
                                      "{{}", "~3}", "~0l}", "[0Gm}", "[DW0}", "(----}"}) {
    std::string bytes;  // the five codes stand for the controls of their number
    for (const char c : Coded(text))
      bytes += (c < 0 ? "\xC2" : "") + std::string(1, c);
    EXPECT_EQ(ToPlatform(Coded(text)), bytes) << text;
  }
  EXPECT_EQ(ToPlatform(Coded("{Gm[4uj}")), "\u0081Gm\u4E2D");
}

TEST(StoredText, TakesMillionsOfOpeningCodesWithoutLookingForTheCloseOfEach) {
  const std::string opens(10'000'000, '\x81');
  EXPECT_EQ(ToPlatform(opens).size(), 2 * opens.size());
  EXPECT_EQ(ToPlatform(opens + "\x9D").size(), 2 * opens.size() + 2);
}

TEST(StoredText, ShowsUndecodableBytesAsReplacements) {
  EXPECT_EQ(ToDisplay(Stored("a\xFF\xC3(\xE4\xB8")), "a\uFFFD\uFFFD(\uFFFD\uFFFD");
  EXPECT_EQ(ToDisplay(Stored("\u00E4\u0430>")), "\u00E4\u0430>");
}

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

TEST(Seal, IsTheEndOfAPayloadInWhateverPiecesItCame) {
  const std::string payload = "what came before 0123456789abcdef";
  for (const std::size_t piece : {1U, 7U, 15U, 16U, 17U, 40U}) {
    Seal seal;
    for (std::size_t at = 0; at < payload.size(); at += piece)
      seal.Follow(AsBytes(payload.substr(at, piece)));
    EXPECT_EQ(seal.Text(), "30313233343536373839616263646566") << piece;
  }
}

TEST(Record, IsRefusedWhereTheAlgorithmHasNoCipherAndBeyondAMebibyte) {
  std::string secondKey;
  EXPECT_THROW(SealEntry(std::string(kRecordLimit, 'n'), 1, Algorithm::Des, HeldKey("secret"), secondKey),
               Error);
  EXPECT_THROW(SealEntry("?Fnm=<a>", 1, Algorithm::Rc4, HeldKey("secret"), secondKey), Error);
}

TEST(RecordText, IsFollowedBackForAMebibyteAndNoFurther) {
  const TempFolder folder;
  constexpr std::size_t most = (kRecordLimit - 8 + kLineSize - 1) / kLineSize;
  for (const std::size_t lines : {std::size_t{0}, std::size_t{3}, most - 1, most, most + 100}) {
    std::string text;
    for (std::size_t i = 0; i < lines; ++i)
      text += std::string(kLineCharacters, 'Q') + "\r\n";
    folder.Put("text", text + "12345678");
    const auto file = PosixFiles().OpenToRead(folder / "text");
    const auto length = static_cast<Length>(lines == 0 ? 0 : std::min(lines, most) * kLineSize + 8);
    EXPECT_EQ(LengthOfTextBefore(*file, {file->Size() + 1}), length) << lines;
  }
}

TEST(RecordOpener, TriesAllLengthsOfNoMoreDamagedRecordsThanItMay) {
  CarrierBench bench;
  enum { Damaged, Torn, Whole };  // a torn one has lost its trailer, and shows its length only to a try
  for (const int state : {Damaged, Damaged, Torn, Whole}) {
    const Length begin = bench.Size() + 1;
    bench.HideRecord("?Fnm=<n>?Fldnm=<" + std::string(60, 'f') + ">", "");
    if (state == Damaged) bench.FlipBit(begin + 70, 0);
    if (state == Torn)
      WriteAll(
          bench.carrier,
          ReadAll(bench.carrier).substr(0, static_cast<std::size_t>(bench.Size()) - kTrailerSize) + "%%%");
  }
  const Key& key = HeldKey("secret");
  for (const auto& [most, expected] : std::map<int, std::string>{{1, "dddw"}, {2, "dddw"}, {3, "ddww"}}) {
    const auto file = bench.posix.OpenToRead(bench.carrier);
    RecordScan scan(*file, [](Length) {});
    RecordOpener opener(*file, key, most);
    std::string found;
    while (const std::optional<RecordText> text = scan.Next())
      found += opener.Open(*text).value().isWhole ? 'w' : 'd';
    EXPECT_EQ(found, expected) << most;
  }
}

}  // namespace tarnel::test
