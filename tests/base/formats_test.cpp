#include "base/formats.h"

#include <gtest/gtest.h>
#include <time.h>

#include <cmath>
#include <limits>
#include <string_view>

#include "base/attributes.h"
#include "base/printable.h"
#include "tests/support/surroundings.h"

namespace tarnel {
namespace {

/// What `format` makes of each number.
template <class Format, class Number = double>
std::string All(Format format, std::initializer_list<Number> numbers) {
  std::string texts;
  for (const Number number : numbers)
    texts += (texts.empty() ? "" : "|") + format(number);
  return texts;
}

TEST(Formats, RoundSizesAwayFromZeroAndNeverShow1024OfAUnit) {
  EXPECT_EQ(All(GroupedKilobytes,
                {511.0, 1535.0, 2560.0, -2560.0, -100.0, 999.4 * 1024, 999.5 * 1024, 1e6 * 1024, HUGE_VAL}),
            "0|1|3|-3|0|999|1,000|1,000,000|inf");
  EXPECT_EQ(GroupedKilobytes(std::numeric_limits<double>::max()).size(), 306U + 101U);
  EXPECT_EQ(All(PlainNumber, {-0.0, -12.0, 0.1 + 0.2, 999999999999999.0, 1e15}),
            "0|-12|0.3|999999999999999|1E+15");
  EXPECT_EQ(All(HumanSize, {std::int64_t{1023}, std::int64_t{1024}, std::int64_t{1048524},
                            std::int64_t{1048525}, INT64_MAX}),
            "1023 B|1.0 KiB|1023.9 KiB|1.0 MiB|8.0 EiB");
}

TEST(Formats, SurviveTheFirstMomentAndTellLocalTime) {
  EXPECT_EQ(Rate(3 << 20, 2) + Rate(5, 0) + Rate(INT64_MAX, 1e-300), "1.5 MiB/s-7.8 EiB/s");
  EXPECT_EQ(All(Duration, {0.1, 59.5, 3599.2, 7384.0, -1.0, HUGE_VAL, std::nan("")}),
            "0:01|1:00|1:00:00|2:03:04|-|-|-");
  {
    const test::Variable zone("TZ", "XYZ-2");
    ::tzset();
    EXPECT_EQ(DateAndTime(1000000000), "09/09/01 03:46:40");
    EXPECT_EQ(DottedDateAndTime(1000000000), "09.09.2001 03:46:40");
  }
  ::tzset();
}

TEST(Attributes, BringEveryModeBackWhereOnlyPlainOnesNeedNoTag) {
  for (mode_t mode = 0; mode <= 07777; ++mode) {
    const std::optional<mode_t> beyond = ModeBeyond(mode);
    ASSERT_EQ(RestoredMode(beyond, AttributesOf({.mode = mode}, "a")), mode & 0777);
    ASSERT_EQ(beyond.has_value(), (mode & 0777) != 0644 && (mode & 0777) != 0444);
    ASSERT_EQ(AttributesOf({.mode = mode}, ".a"), (mode & 0200) != 0 ? 34 : 35);
  }
  EXPECT_EQ(AttributesOf({.mode = 0644}, "a."), 32);
  EXPECT_EQ(RestoredMode(04777, 32), 0777U);
  EXPECT_EQ(ApplyReadOnly(04775, 33), 04555U);
}

TEST(Printable, EscapesWhatDrivesATerminalOrDeceivesTheEye) {
  using namespace std::string_view_literals;
  // With the one-character CSI, an override of the writing direction, and overlong, surrogate, too large and
  // cut characters.
  EXPECT_EQ(Printable("plain \\ \u00e9\u20ac\U0001F600"), "plain \\ \u00e9\u20ac\U0001F600");
  EXPECT_EQ(Printable("\n\t\r\x1b[0m\x7f\0 \xc2\x9bm \u202egpj.exe"sv),
            "\\n\\t\\r\\x1b[0m\\x7f\\x00 \\xc2\\x9bm \\xe2\\x80\\xaegpj.exe");
  EXPECT_EQ(Printable("\xc0\xaf \xe0\x80\xaf \xed\xa0\x80 \xf4\x90\x80\x80 \xe2\x82g \xff \xe2\x82"),
            "\\xc0\\xaf \\xe0\\x80\\xaf \\xed\\xa0\\x80 \\xf4\\x90\\x80\\x80 \\xe2\\x82g \\xff \\xe2\\x82");
}

}  // namespace
}  // namespace tarnel
