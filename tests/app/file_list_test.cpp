#include "app/file_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "app/size_order.h"
#include "tests/app/session_bench.h"

namespace tarnel::test {
namespace {

/// The order by its own words: each row looks for its place among all rows so far.
std::vector<std::size_t> InsertedOneByOne(const std::vector<double>& sizes, SizeOrder order) {
  std::vector<std::size_t> rows;
  for (std::size_t row = 0; row < sizes.size(); ++row) {
    std::ptrdiff_t kept = -1;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const double size = sizes[rows[i]];
      const bool isLarger = kept < 0 || size > sizes[rows[static_cast<std::size_t>(kept)]];
      const bool isKept = order == SizeOrder::Ascending ? size <= sizes[row] && isLarger : size >= sizes[row];
      if (isKept) kept = static_cast<std::ptrdiff_t>(i);
    }
    if (order == SizeOrder::Descending && kept >= 0 && sizes[rows[static_cast<std::size_t>(kept)]] == 0) {
      kept = -1;
    }
    rows.insert(rows.begin() + kept + 1, row);
  }
  return rows;
}

TEST(SizeOrder, IsThatOfRowsInsertedOneByOne) {
  std::mt19937 random(7);
  for (int round = 0; round < 400; ++round) {
    const auto count = std::uniform_int_distribution<std::size_t>(0, 40)(random);
    std::uniform_int_distribution<int> size(0, round % 20);
    std::vector<double> sizes(count);
    for (double& each : sizes)
      each = size(random);
    for (const SizeOrder order : {SizeOrder::Ascending, SizeOrder::Descending}) {
      ASSERT_EQ(OrderBySize(sizes, order), InsertedOneByOne(sizes, order)) << "round " << round;
    }
  }
}

TEST(FileList, ShowsFoldersThenFilesOfTheClickedFolderOnly) {
  SessionBench bench;
  bench.Open("/other.png").File("foreign", 1, "docs");
  bench.Open("/a.png").File("top", 1).File("deep", 1, "docs\\old").File("near", 1, "docs").File("docs", 1);
  bench.Click("/a.png");
  EXPECT_EQ(bench.Shown(), (Strings{"docs/", "top", "docs"}));
  EXPECT_EQ(bench.session.fileList.Rows()[0].itemFolder, "docs");
  bench.Click("/a.png", "docs");
  EXPECT_EQ(bench.Shown(), (Strings{"old/", "near"}));
  EXPECT_EQ(bench.session.fileList.Rows()[0].itemFolder, "docs\\old");
  EXPECT_EQ(bench.session.fileList.Rows()[1].relativeIndex, 3U);
  EXPECT_EQ(bench.session.filesPanel, "4 File(s) ") << "the whole carrier counts";
}

TEST(FileList, FillsTheColumnsThatStandAndTrimsTheType) {
  SessionBench bench;
  bench.Open("/a.png").File("x", 2048);
  bench.Click("/a.png");
  EXPECT_EQ(bench.Shown(Column::Size), Strings{"2 KB"});
  EXPECT_EQ(bench.Shown(Column::Type), Strings{"type of x"});
  EXPECT_EQ(bench.Shown(Column::Compressed), Strings{""}) << "off by the presets";
}

TEST(FileList, AddsAColumnAtTheEndAndNeverTouchesTheFirst) {
  FileList list;
  Settings settings;
  settings.columns = {true, true, false, false, false, true};
  list.ApplyColumns(settings);
  settings.columns = {true, false, true, false, false, true};
  list.ApplyColumns(settings);
  EXPECT_EQ(list.Columns(),
            (std::vector<Column>{Column::File, Column::Size, Column::Compressed, Column::Date}));
  settings.columns = {};
  list.ApplyColumns(settings);
  EXPECT_EQ(list.Columns(), std::vector<Column>{Column::File});
}

TEST(FileList, SortsTextsDownwardsFirstWithFoldersAmongThemAndWithoutRegardToCase) {
  SessionBench bench;
  bench.Open("/a.png").File("b", 1).File("A", 1).File("z", 1, "c");
  bench.Click("/a.png");
  bench.session.ColumnClick(Column::File);
  EXPECT_EQ(bench.Shown(), (Strings{"c/", "b", "A"}));
  bench.session.ColumnClick(Column::File);
  EXPECT_EQ(bench.Shown(), (Strings{"A", "b", "c/"}));
}

TEST(FileList, SortsSizesUpwardsFirstWithFoldersLast) {
  SessionBench bench;
  bench.Open("/a.png").File("mid", 500).File("big", 9000).File("small", 2).File("z", 1, "folder");
  bench.Click("/a.png");
  bench.session.ColumnClick(Column::Size);
  EXPECT_EQ(bench.Shown(), (Strings{"small", "mid", "big", "folder/"}));
  bench.session.ColumnClick(Column::Size);
  EXPECT_EQ(bench.Shown(), (Strings{"big", "mid", "small", "folder/"}));
  EXPECT_EQ(bench.session.fileList.Rows()[0].relativeIndex, 1U);
}

TEST(FileList, SharesOneDirectionAmongAllColumnsAndForgetsTheOrderAtAClickInTheTree) {
  SessionBench bench;
  bench.Open("/a.png").File("a", 3).File("b", 1).File("c", 2);
  bench.Click("/a.png");
  bench.session.ColumnClick(Column::Size);
  EXPECT_FALSE(bench.session.fileList.Sorting()->isDescending);
  bench.session.ColumnClick(Column::File);
  EXPECT_EQ(bench.Shown(), (Strings{"a", "b", "c"})) << "the second click of all sorts texts upwards";
  bench.session.ColumnClick(Column::Attribute);
  EXPECT_EQ(bench.session.fileList.Sorting()->column, Column::File) << "no effect";
  bench.Click("/a.png");
  EXPECT_FALSE(bench.session.fileList.Sorting());
}

}  // namespace
}  // namespace tarnel::test
