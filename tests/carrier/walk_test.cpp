#include "carrier/walk.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "carrier/length_field.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/support/faulty_files.h"

namespace tarnel::test {

namespace {

enum class Way { End, BadRecordNumber };

/// Every entry that a walk of its own meets, and how it ends.
struct Walked {
  std::vector<EntryPlace> places;
  Way end = Way::End;
};

Walked WalkThrough(Files& files, const Path& carrier) {
  const std::unique_ptr<File> file = files.OpenToRead(carrier);
  Walk walk(*file, carrier);
  Walked walked;
  try {
    while (const auto place = walk.Next())
      walked.places.push_back(*place);
    EXPECT_FALSE(walk.Next().has_value());
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::BadRecordNumber) << error.Description();
    EXPECT_THROW(walk.Next(), Error) << "the next call throws again";
    walked.end = Way::BadRecordNumber;
  }
  return walked;
}

/// A length field that holds any text of at most 14 characters.
std::string Crafted(std::string text) {
  text.resize(kLengthFieldSize, 'd');
  std::string secondKey;
  return CipherEncryptString(Algorithm::Blowfish, text, TextForm::Base64, Secret(kTrailerPassPhrase),
                             secondKey)
      .substr(0, kLengthFieldSize);
}

/// Passes on what it is asked and counts the bytes that were read.
class CountingFile : public File {
 public:
  explicit CountingFile(File& inner) : m_inner(inner) {}
  std::size_t ReadAt(Position from, MutableBytes into) override {
    bytesRead += into.size();
    return m_inner.ReadAt(from, into);
  }
  void WriteAt(Position to, Bytes bytes) override { m_inner.WriteAt(to, bytes); }
  FileStat Stat() override { return m_inner.Stat(); }
  void Truncate(Length length) override { m_inner.Truncate(length); }
  void SetMode(mode_t mode) override { m_inner.SetMode(mode); }
  void Sync() override { m_inner.Sync(); }
  void Lock() override { m_inner.Lock(); }
  void Close() override { m_inner.Close(); }

  std::size_t bytesRead = 0;

 private:
  File& m_inner;
};

}  // namespace

TEST(Walk, EndsByTheLengthOfTheBody) {
  const struct {
    std::size_t body;
    Way bare, withEntry;
  } cases[] = {{0, Way::BadRecordNumber, Way::End},
               {1, Way::BadRecordNumber, Way::End},
               {78, Way::BadRecordNumber, Way::End},
               {79, Way::BadRecordNumber, Way::BadRecordNumber},
               {80, Way::End, Way::End},
               {81, Way::End, Way::End}};
  for (const auto& c : cases) {
    CarrierBench bench(c.body);
    EXPECT_EQ(WalkThrough(bench.posix, bench.carrier).end, c.bare) << c.body;
    bench.Hide({"a.txt"}).Hide({"b.txt"});
    const Walked walked = WalkThrough(bench.posix, bench.carrier);
    EXPECT_EQ(walked.end, c.withEntry) << c.body;
    ASSERT_EQ(walked.places.size(), 2u) << c.body;
    EXPECT_EQ(walked.places[1].start.value, static_cast<Length>(c.body) + 1);
    EXPECT_EQ(walked.places[0].start, walked.places[1].End());
    EXPECT_EQ(walked.places[0].End().value, bench.Size() + 1);
  }
}

TEST(Walk, SaysInPlainWordsThatACarrierIsTooShort) {
  CarrierBench bench(12);
  const auto file = bench.posix.OpenToRead(bench.carrier);
  try {
    Walk(*file, "pho\nto.png").Next();
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(
        error.Description(),
        "pho\\nto.png is too short or its hidden part is damaged: an entry would begin before the file");
  }
}

TEST(Walk, GivesRecordAndTailAsTheyStandInTheFile) {
  CarrierBench bench(500);
  bench.Hide({"long.txt", std::string(9000, 'x'), std::string(5000, 'f')}).Hide({"b.txt"}, {"other"});
  const auto file = bench.posix.OpenToRead(bench.carrier);
  Walk walk(*file);
  walk.Next();
  EXPECT_EQ(walk.DecryptRecord(Algorithm::Rijndael256, Secret("secret"), bench.secondKey), "");
  EXPECT_TRUE(walk.KeyFits(Algorithm::Rijndael256, Secret("other")));
  const EntryPlace place = *walk.Next();
  const std::string bytes = ReadAll(bench.carrier);
  const auto stored = [&](Position from, Position to) {
    return bytes.substr(static_cast<std::size_t>(from.value - 1), static_cast<std::size_t>(to - from));
  };
  EXPECT_EQ(place.start.value, 501);
  EXPECT_EQ(place.payload, 9000 + kFileCipherOverhead);
  EXPECT_EQ(walk.ReadRecordText(), stored(place.Record(), place.Trailer()));
  EXPECT_EQ(walk.ReadTail(), stored(place.Record(), place.End()));
  bench.secondKey = "left over";
  EXPECT_EQ(walk.DecryptRecord(Algorithm::Rijndael256, Secret("secret"), bench.secondKey),
            CarrierBench::RecordOf({"long.txt", std::string(9000, 'x'), std::string(5000, 'f')}, 9032));
  EXPECT_EQ(bench.secondKey, "");
}

TEST(Walk, TakesNoLengthThatIsNoneOrReachesBeforeTheFile) {
  const struct {
    Way end;
    std::size_t entries;
    Strings trailers;  // payload length and record length behind a body of 1000 bytes
  } cases[] = {{Way::End, 1, {"0 1", "100 20", "5 &H5", "0 1000", "921 79", "920 80", "843 79"}},
               {Way::End, 0, {"100 0", "-5 0", "5 ?Fls=<", "5 x"}},
               {Way::BadRecordNumber, 1, {"842 79"}},  // the payload begins at 80
               {Way::BadRecordNumber,
                0,
                {"922 79", "921 80", "0 1001", "-1 5", "5 -1", "0.5 5", "5 0.5", "5 1E-9", "1E9 5", "5 1E9",
                 "5 1E999", "-1E999 5", "5 2147483648", "4294967301 5", "9E18 9E18", "18446744073709 5",
                 "&HFFFFFFFFFF 5", "5 &HFFFFFFFF"}}};
  for (const auto& c : cases) {
    for (const std::string& trailer : c.trailers) {
      CarrierBench bench(1000);
      const std::size_t blank = trailer.find(' ');
      bench.Append(Crafted(trailer.substr(0, blank)) + Crafted(trailer.substr(blank + 1)));
      const Walked walked = WalkThrough(bench.posix, bench.carrier);
      EXPECT_EQ(walked.end, c.end) << trailer;
      EXPECT_EQ(walked.places.size(), c.entries) << trailer;
    }
  }
}

TEST(Walk, StrictlyFallsThroughAnyCraftedTrailers) {
  std::mt19937 random(5);
  for (int round = 0; round < 50; ++round) {
    CarrierBench bench(0);
    std::string bytes;
    for (int i = 0; i < 60; ++i)
      bytes += std::string(random() % 3, 'x') + Crafted(std::to_string(random() % 90)) +
               Crafted(std::to_string(1 + random() % 2));
    bench.Append(bytes);
    Position last{bench.Size() + 1};
    for (const EntryPlace& place : WalkThrough(bench.posix, bench.carrier).places) {
      ASSERT_EQ(place.End(), last);
      ASSERT_LT(place.start, last);
      ASSERT_GE(place.start, Position{});
      last = place.start;
    }
  }
}

TEST(Walk, ReadsNoPayloadAndLittleOfForeignRecords) {
  CarrierBench bench(1000);
  bench.HideRecord(std::string(500'000, 'r'), std::string(1'000'000, 'p'), {"other"});
  const auto file = bench.posix.OpenToRead(bench.carrier);
  CountingFile counting(*file);
  Walk walk(counting);
  ASSERT_TRUE(walk.Next());
  EXPECT_EQ(walk.DecryptRecord(Algorithm::Rijndael256, Secret("secret"), bench.secondKey), "");
  ASSERT_FALSE(walk.Next());
  EXPECT_LE(counting.bytesRead, 3u * 4096u);
}

TEST(Walk, GoesOnWhereAReadHasFailed) {
  CarrierBench bench(1000);
  for (int i = 0; i < 20; ++i)
    bench.Hide({"f" + std::to_string(i), std::string(3000, 'x')});
  const std::size_t entries = 20;
  FaultyFiles quiet(bench.posix);
  ASSERT_EQ(WalkThrough(quiet, bench.carrier).places.size(), entries);
  for (std::size_t k = 3; k <= quiet.Count(); ++k) {
    FaultyFiles files(bench.posix);
    files.Fail({.at = k});
    const auto file = files.OpenToRead(bench.carrier);
    Walk walk(*file);
    std::size_t found = 0;
    for (bool more = true; more;) {
      try {
        more = walk.Next().has_value();
        found += more ? 1 : 0;
      } catch (const Error& error) {
        ASSERT_EQ(error.Number(), ErrorNumber::DeviceIo);
      }
    }
    ASSERT_EQ(found, entries) << k;
  }
}

TEST(Walk, ReportsACarrierThatBecomesShorter) {
  CarrierBench bench(1000);
  bench.Hide({"a.txt", std::string(20000, 'x')});
  const auto file = bench.posix.OpenToRead(bench.carrier);
  Walk walk(*file);
  bench.CutTo(500);
  EXPECT_THROW(walk.Next(), Error);
}

TEST(ReadFileSlice, GivesWhatIsThereAndTakesNoHostileNumber) {
  CarrierBench bench(100);
  const auto file = bench.posix.OpenToRead(bench.carrier);
  const std::string bytes = Pattern(100);
  EXPECT_EQ(ReadFileSlice(*file, {1}, 10), bytes.substr(0, 10));
  EXPECT_EQ(ReadFileSlice(*file, {91}, 0x7FFFFFFFFFFFFFFF), bytes.substr(90));
  EXPECT_EQ(ReadFileSlice(*file, {101}, 5), "");
  EXPECT_EQ(ReadFileSlice(*file, {5000}, 5), "");
  EXPECT_THROW(ReadFileSlice(*file, {0}, 5), Error);
}

}  // namespace tarnel::test
