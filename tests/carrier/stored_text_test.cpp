#include "carrier/stored_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "carrier/tags.h"

namespace tarnel::test {

namespace {

/// What is wrong with the stored form of `bytes`, or nothing.
std::string FaultOf(const std::string& bytes) {
  for (const TextKind kind : {TextKind::Plain, TextKind::PathComponent}) {
    const std::string stored = ToStored(bytes, kind);
    if (ToPlatform(stored) != bytes) return "comes back otherwise: " + stored;
    if (stored.find('>') != std::string::npos) return "ends a tag: " + stored;
    if (stored.find("=<") != std::string::npos) return "begins a tag: " + stored;
    if (kind == TextKind::PathComponent && stored.find('\\') != std::string::npos) return "splits: " + stored;
    if (GetTag("?Fnm=<" + stored + ">?Fls=<1>", "?Fls=<") != "1") return "hides a tag: " + stored;
  }
  return {};
}

std::string Utf8Of(char32_t code) {
  const auto byte = [code](char32_t mark, int shift) { return static_cast<char>(mark | (code >> shift)); };
  const auto tail = [code](int shift) { return static_cast<char>(0x80U | (code >> shift & 0x3FU)); };
  if (code < 0x80) return {byte(0, 0)};
  if (code < 0x800) return {byte(0xC0, 6), tail(0)};
  if (code < 0x10000) return {byte(0xE0, 12), tail(6), tail(0)};
  return {byte(0xF0, 18), tail(12), tail(6), tail(0)};
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

TEST(StoredText, BringsBackEveryStringOfOneAndTwoBytes) {
  for (int first = 1; first < 256; ++first) {
    ASSERT_EQ(FaultOf({static_cast<char>(first)}), "");
    for (int second = 1; second < 256; ++second)
      ASSERT_EQ(FaultOf({static_cast<char>(first), static_cast<char>(second)}), "");
  }
}

TEST(StoredText, BringsBackEveryCodePoint) {
  for (char32_t code = 1; code <= 0x110000; ++code) {
    const std::string text = Utf8Of(code);
    ASSERT_EQ(ToPlatform(Stored(text)), text)
        << "surrogates and 0x110000 go as bytes: " << static_cast<unsigned>(code);
  }
}

TEST(StoredText, BringsBackRandomNames) {
  std::mt19937 random(7);
  const std::string_view hostile =
      "=<>\\/.?\x81\x8D\x8F\x90\x9D\xD0\xB0\xE2\x82\xAC\xF0\x9F\x98\x80"
      "aA09+-";
  for (int round = 0; round < 4000; ++round) {
    std::string any(1 + random() % 255, '\0'), nasty(1 + random() % 255, '\0');
    for (char& c : any)
      c = static_cast<char>(1 + random() % 255);
    for (char& c : nasty)
      c = hostile[random() % hostile.size()];
    ASSERT_EQ(FaultOf(any), "");
    ASSERT_EQ(FaultOf(nasty), "");
  }
}

TEST(StoredText, HasExactlyThisForm) {
  const struct {
    std::string_view bytes, stored;
  } cases[] = {{"plain name.txt", "plain name.txt"},
               {"a<b=c", "a<b=c"},
               {"\xC3\xA4\xC3\x96\xE2\x82\xAC\xC5\xBE", "\xE4\xD6\x80\x9E"},
               {"a>b", "a{0+}b"},
               {"?Fls=<5", "?Fls={0y}5"},
               {"..\\x", "..{1S}x"},
               {"\xD0\xB0\xD0\xB1>", "{GmGn0+}"},
               {"\xE4\xB8\xAD\xF0\x9F\x98\x80", "[4ujVO0}"},
               {"\xF4\x8F\xBF\xBF\xD0\xB0", "(4F--}{Gm}"},
               {"\xFF\xFEx\x80", "~3-3+}x~20}"},
               {"\xC2\x81", "{21}"}};
  for (const auto& c : cases) {
    EXPECT_EQ(Stored(c.bytes), Coded(c.stored)) << c.bytes;
    EXPECT_EQ(ToPlatform(Coded(c.stored)), c.bytes) << c.bytes;
  }
  EXPECT_EQ(ToStored("/home/a\\b", TextKind::Plain), "/home/a\\b");
}

TEST(StoredText, TakesWhatIsNoEscapeAsTheCodePage) {
  const std::string_view cases[] = {"{",       "}", "{Gm", "{}", "{G}", "{GmG}", "{G<}",
                                    "{0k}",    // "." needs no escape
                                    "~0l}",    // nor does "/", as a byte
                                    "[0Gm}",   // longer than it must be
                                    "[DW0}",   // a surrogate
                                    "(----}",  // beyond Unicode
                                    "{Gm[4uj}"};
  for (const std::string_view text : cases) {
    std::string bytes;  // the five codes stand for the controls of their number
    for (const char c : Coded(text))
      bytes += (c < 0 ? "\xC2" : "") + std::string(1, c);
    const bool endsInAnEscape = text.ends_with("[4uj}");
    EXPECT_EQ(ToPlatform(Coded(text)), endsInAnEscape ? "\xC2\x81Gm\xE4\xB8\xAD" : bytes) << text;
  }
}

TEST(StoredText, ShowsUndecodableBytesAsReplacements) {
  EXPECT_EQ(ToDisplay(Stored("a\xFF\xC3(\xE4\xB8")), "a\uFFFD\uFFFD(\uFFFD\uFFFD");
  EXPECT_EQ(ToDisplay(Stored("\xC3\xA4\xD0\xB0>")), "\xC3\xA4\xD0\xB0>");
}

}  // namespace tarnel::test
