#include <gtest/gtest.h>

#include <set>

#include "carrier/walk.h"
#include "tests/carrier/carrier_bench.h"

namespace tarnel::test {

namespace {

/// What tells a row: its record and where its payload lies.
std::set<std::string> RowsOf(const CarrierBench& bench) {
  std::set<std::string> rows;
  for (const MirrorRow& row : bench.catalogue.Rows())
    rows.insert(std::string(row.record) + std::to_string(row.start.value) + "+" + std::to_string(row.size));
  return rows;
}

/// A small carrier of three entries, two of them ours.
class DamagedCarrier : public testing::Test {
 protected:
  DamagedCarrier() {
    bench.Hide({"a.txt", "first"}).Hide({"b.txt", "second"}, {"other"}).Hide({"c.txt", "third"});
    bench.screen.script.Always("load.error", Answer::Ignore);
    bench.Load();
    intact = RowsOf(bench);
  }

  /// Loads what is on disk and expects no row that the intact carrier doesn't have at the same place.
  std::size_t LoadDamaged() {
    bench.catalogue.RemoveCarrier(bench.carrier);
    bench.Load();
    const std::set<std::string> rows = RowsOf(bench);
    EXPECT_TRUE(std::includes(intact.begin(), intact.end(), rows.begin(), rows.end()));
    return rows.size();
  }

  CarrierBench bench{100};
  std::set<std::string> intact;
};

}  // namespace

TEST_F(DamagedCarrier, NeverShowsAWrongRowWhateverBitIsFlipped) {
  ASSERT_EQ(intact.size(), 2u);
  for (Length position = 101; position <= bench.Size(); ++position) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      bench.FlipBit(position, bit);
      LoadDamaged();
      bench.FlipBit(position, bit);
    }
  }
  EXPECT_EQ(LoadDamaged(), 2u);
}

TEST_F(DamagedCarrier, NeverShowsAWrongRowWhereverItIsCut) {
  for (Length size = bench.Size() - 1; size >= 0; --size) {
    bench.CutTo(size);
    LoadDamaged();
  }
}

TEST_F(DamagedCarrier, ShowsNothingOnceASingleByteFollowsTheEntries) {
  bench.Append("x");
  EXPECT_EQ(LoadDamaged(), 0u);
}

TEST_F(DamagedCarrier, KeepsTheOtherEntriesWhereARecordIsDamaged) {
  const auto file = bench.posix.OpenToRead(bench.carrier);
  bench.FlipBit(Walk(*file).Next()->Record().value + 60, 0);
  EXPECT_EQ(LoadDamaged(), 1u);
}

}  // namespace tarnel::test
