#include "base/formats.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

#include "base/attributes.h"
#include "base/printable.h"

namespace tarnel {
namespace {

TEST(Formats, KilobytesAreRoundedAwayFromZeroAndGroupedByThree) {
  const std::pair<double, const char*> cases[] = {
      {0, "0"},
      {511, "0"},
      {512, "1"},
      {1535, "1"},
      {1536, "2"},
      {2560, "3"},  // 2.5: to even would be 2
      {-2560, "-3"},
      {-100, "0"},
      {999.4 * 1024, "999"},
      {999.5 * 1024, "1,000"},
      {1e6 * 1024, "1,000,000"},
      {2147483647, "2,097,152"},
      {HUGE_VAL, "inf"},
      {std::nan(""), "nan"},
  };
  for (const auto& [bytes, text] : cases)
    EXPECT_EQ(GroupedKilobytes(bytes), text) << bytes;
  EXPECT_EQ(GroupedKilobytes(std::numeric_limits<double>::max()).size(), 306U + 101U);
}

TEST(Formats, PlainNumbersHaveNoGroupingAndFifteenDigits) {
  const std::pair<double, const char*> cases[] = {
      {0, "0"},
      {-0.0, "0"},
      {1234567, "1234567"},
      {-12, "-12"},
      {0.1 + 0.2, "0.3"},
      {2147483648.0, "2147483648"},
      {999999999999999, "999999999999999"},
      {1e15, "1E+15"},
  };
  for (const auto& [number, text] : cases)
    EXPECT_EQ(PlainNumber(number), text);
}

TEST(Formats, HumanSizesNeverShow1024OfAUnit) {
  const std::pair<std::int64_t, const char*> cases[] = {
      {0, "0 B"},
      {1023, "1023 B"},
      {1024, "1.0 KiB"},
      {1258291, "1.2 MiB"},
      {1048524, "1023.9 KiB"},
      {1048575, "1.0 MiB"},
      {std::int64_t{1} << 40, "1.0 TiB"},
      {INT64_MAX, "8.0 EiB"},
  };
  for (const auto& [bytes, text] : cases)
    EXPECT_EQ(HumanSize(bytes), text);
}

TEST(Formats, RatesAndDurationsSurviveTheFirstMoment) {
  EXPECT_EQ(Rate(3 << 20, 2), "1.5 MiB/s");
  EXPECT_EQ(Rate(5, 0), "-");
  EXPECT_EQ(Rate(INT64_MAX, 1e-300), "7.8 EiB/s");
  const std::pair<double, const char*> cases[] = {
      {0, "0:00"},    {0.1, "0:01"},       {59.5, "1:00"},
      {754, "12:34"}, {3599.2, "1:00:00"}, {7384, "2:03:04"},
      {-1, "-"},      {std::nan(""), "-"}, {std::numeric_limits<double>::infinity(), "-"},
  };
  for (const auto& [seconds, text] : cases)
    EXPECT_EQ(Duration(seconds), text) << seconds;
}

TEST(Formats, TheMomentIsInLocalTime) {
  ::setenv("TZ", "XYZ-2", 1);
  ::tzset();
  EXPECT_EQ(DateAndTime(1000000000), "09/09/01 03:46:40");
  ::unsetenv("TZ");
  ::tzset();
}

TEST(Attributes, TheWordFollowsTheOwnersWriteBitAndTheDot) {
  const struct {
    mode_t mode;
    const char* name;
    int word;
  } cases[] = {{0644, "a", 32},  {0444, "a", 33},  {0600, ".a", 34},
               {0400, ".a", 35}, {0466, "a.", 33}, {0200, "", 32}};
  for (const auto& c : cases)
    EXPECT_EQ(AttributesOf({.mode = c.mode}, c.name), c.word);
}

TEST(Attributes, EveryModeComesBackAndOnlyPlainOnesNeedNoTag) {
  for (mode_t mode = 0; mode <= 07777; ++mode) {
    const std::optional<mode_t> beyond = ModeBeyond(mode);
    ASSERT_EQ(RestoredMode(beyond, AttributesOf({.mode = mode}, "a")), mode & 0777);
    ASSERT_EQ(beyond.has_value(), (mode & 0777) != 0644 && (mode & 0777) != 0444);
  }
  EXPECT_EQ(RestoredMode(04777, 32), 0777U);
}

TEST(Attributes, ReadOnlyTouchesWritePermissionAlone) {
  EXPECT_EQ(ApplyReadOnly(04775, 33), 04555U);
  EXPECT_EQ(ApplyReadOnly(0555, 32), 0755U);
  EXPECT_EQ(ApplyReadOnly(0664, 34), 0664U);
}

TEST(Printable, EscapesWhatDrivesATerminalOrDeceivesTheEye) {
  const std::pair<std::string_view, const char*> cases[] = {
      {"plain \\ name", "plain \\ name"},
      {"\u00e9\u20ac\U0001F600", "\u00e9\u20ac\U0001F600"},
      {"a\n\t\r\x1b[0m\x7f", "a\\n\\t\\r\\x1b[0m\\x7f"},
      {{"\0", 1}, "\\x00"},
      {"\xc2\x9b"
       "31m",
       "\\xc2\\x9b31m"},                            // the one-character CSI
      {"\u202egpj.exe", "\\xe2\\x80\\xaegpj.exe"},  // right-to-left override
      {"\xc0\xaf", "\\xc0\\xaf"},                   // overlong
      {"\xe0\x80\xaf", "\\xe0\\x80\\xaf"},
      {"\xed\xa0\x80", "\\xed\\xa0\\x80"},           // surrogate
      {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},  // beyond the last character
      {"\xe2\x82", "\\xe2\\x82"},                    // cut short
      {"\xe2\x82g", "\\xe2\\x82g"},
      {"\x80z\xff", "\\x80z\\xff"},
  };
  for (const auto& [bytes, text] : cases)
    EXPECT_EQ(Printable(bytes), text);
}

}  // namespace
}  // namespace tarnel
