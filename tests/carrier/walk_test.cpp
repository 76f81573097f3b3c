#include "carrier/walk.h"

#include <gtest/gtest.h>

#include "carrier/length_field.h"
#include "tests/carrier/carrier_bench.h"

namespace tarnel::test {

namespace {

/// Every entry that a walk of its own meets, and whether it ends with a BadRecordNumber.
struct Walked {
  std::vector<EntryPlace> places;
  bool endsBadly = false;
};

Walked WalkThrough(CarrierBench& bench) {
  const auto file = bench.posix.OpenToRead(bench.carrier);
  Walk walk(*file);
  Walked walked;
  try {
    while (const auto place = walk.Next())
      walked.places.push_back(*place);
    EXPECT_FALSE(walk.Next());
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::BadRecordNumber) << error.Description();
    walked.endsBadly = true;
  }
  return walked;
}

/// A length field that holds any text of at most 14 characters.
std::string Crafted(std::string text) {
  text.resize(kLengthFieldSize, 'd');
  std::string secondKey;
  return CipherEncryptString(Algorithm::Blowfish, text, TextForm::Base64, Key::OfLengthFields(), secondKey)
      .substr(0, kLengthFieldSize);
}

}  // namespace

TEST(Walk, EndsByTheLengthOfTheBody) {
  const struct {
    std::size_t body;
    bool bareIsBad, withEntriesIsBad;
  } cases[] = {{0, true, false}, {1, true, false},   {78, true, false},
               {79, true, true}, {80, false, false}, {81, false, false}};
  for (const auto& c : cases) {
    CarrierBench bench(c.body);
    EXPECT_EQ(WalkThrough(bench).endsBadly, c.bareIsBad) << c.body;
    bench.Hide({"a.txt"}).Hide({"b.txt"});
    const auto [places, endsBadly] = WalkThrough(bench);
    EXPECT_EQ(endsBadly, c.withEntriesIsBad) << c.body;
    ASSERT_EQ(places.size(), 2u) << c.body;
    EXPECT_EQ(places.at(1).start.value, static_cast<Length>(c.body) + 1);
    EXPECT_EQ(places.at(0).start, places.at(1).End());
    EXPECT_EQ(places.at(0).End().value, bench.Size() + 1);
  }
}

TEST(Walk, TakesNoLengthThatIsNoneOrReachesBeforeTheFile) {
  const struct {
    bool endsBadly;
    std::size_t entries;
    Strings trailers;  // payload length and record length behind a body of 1000 bytes
  } cases[] = {{false, 1, {"0 1", "100 20", "5 &H5", "0 1000", "921 79", "920 80", "843 79"}},
               {false, 0, {"100 0", "-5 0", "5 ?Fls=<", "5 x"}},
               {true, 1, {"842 79"}},  // the payload begins at 80
               {true,
                0,
                {"922 79", "921 80", "0 1001", "-1 5", "5 -1", "0.5 5", "5 0.5", "5 1E-9", "1E9 5", "5 1E9",
                 "5 1E999", "-1E999 5", "5 2147483648", "4294967301 5", "9E18 9E18", "18446744073709 5",
                 "&HFFFFFFFFFF 5", "5 &HFFFFFFFF"}}};
  for (const auto& c : cases) {
    for (const std::string& trailer : c.trailers) {
      CarrierBench bench(1000);
      const std::size_t blank = trailer.find(' ');
      bench.Append(Crafted(trailer.substr(0, blank)) + Crafted(trailer.substr(blank + 1)));
      const Walked walked = WalkThrough(bench);
      EXPECT_EQ(walked.endsBadly, c.endsBadly) << trailer;
      EXPECT_EQ(walked.places.size(), c.entries) << trailer;
    }
  }
}

TEST(Walk, CallsTheChainBrokenAtTheTrailerThatLedAstray) {
  const struct {
    std::size_t body;
    int older;               ///< entries
    Length payload, record;  ///< what the newest one's lengths are too large by
    bool isBroken;
  } cases[] = {{100, 0, 0, 0, false}, {100, 0, 0, 50, true},   // begins in the body, too early for more
               {100, 0, 0, 21, true}, {79, 0, 0, 0, false},    // at byte 80 and not
               {300, 0, 0, 7, true},  {300, 0, 7, 0, false},   // nothing tells
               {300, 2, 0, 0, false}, {300, 2, -40, 0, true},  // half a trailer on, or back
               {300, 2, 40, 0, true}, {300, 2, 0, 40, true},  {300, 2, 0, 1, true},
               {300, 2, 0, 2, true},  {300, 2, 2, 0, true},   {300, 2, 4, 0, true}};
  for (const auto& c : cases) {
    CarrierBench bench(c.body);
    for (int i = 0; i < c.older; ++i)
      bench.Hide({"older", std::string(100, 'c')});
    bench.Hide({"newest", std::string(100, 'c')});
    const Length trailer = bench.Size() - Length{kTrailerSize} + 1;
    const EntryPlace place = WalkThrough(bench).places.at(0);
    bench.CutTo(trailer - 1);
    bench.Append(PackLengthField(place.payload + c.payload) + PackLengthField(place.recordLength + c.record));
    const auto file = bench.posix.OpenToRead(bench.carrier);
    Walk walk(*file);
    walk.RememberTheWay();
    for (int round = 0; round < 2; ++round) {
      try {
        while (walk.Next()) {
        }
      } catch (const Error&) {
        EXPECT_TRUE(c.body == 79);
      }
      EXPECT_EQ(walk.BrokenAt().has_value(), c.isBroken) << &c - cases;
      EXPECT_EQ(walk.BrokenAt().value_or(Position{trailer}).value, trailer) << &c - cases;
      ASSERT_TRUE(walk.Rewind());
    }
  }
}

TEST(Walk, ReportsACarrierThatBecomesShorter) {
  CarrierBench bench(1000);
  bench.Hide({"a.txt", std::string(20000, 'x')});
  const auto file = bench.posix.OpenToRead(bench.carrier);
  Walk walk(*file);
  bench.CutTo(500);
  EXPECT_THROW(walk.Next(), Error);

  CarrierBench longer(1000);
  longer.Hide({.name = "a.txt", .title = std::string(20000, 't')});
  const auto open = longer.posix.OpenToRead(longer.carrier);
  Walk entries(*open);
  ASSERT_TRUE(entries.Next());
  longer.CutTo(longer.Size() - 200);
  EXPECT_THROW(entries.ReadRecordText(), Error) << "a record that is read in one piece";
}

}  // namespace tarnel::test
