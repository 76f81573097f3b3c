#include "app/file_list.h"

#include <gtest/gtest.h>

#include "app/size_order.h"
#include "tests/app/session_bench.h"

namespace tarnel::test {
namespace {

/// Each row goes behind the nearest of the rows so far: where sizes are the same, upwards that is the first,
/// downwards the last. Downwards an empty file comes last, but first where one is last already.
TEST(SizeOrder, IsThatOfRowsInsertedOneByOne) {
  using Rows = std::vector<std::size_t>;
  const struct {
    std::vector<double> sizes;
    Rows upwards;
    Rows downwards;
  } cases[] = {{{}, {}, {}},
               {{4, 4, 4, 4}, {0, 3, 2, 1}, {0, 1, 2, 3}},
               {{2, 1, 2, 1, 2, 1}, {1, 5, 3, 0, 4, 2}, {0, 2, 4, 1, 3, 5}},
               {{0, 5, 0, 3, 0, 5}, {0, 4, 3, 2, 1, 5}, {4, 2, 1, 5, 3, 0}},
               {{5, 0, 0, 5, 1, 0, 1, 9}, {1, 5, 4, 6, 2, 0, 7, 3}, {7, 5, 2, 0, 3, 4, 6, 1}},
               {{7, 3, 0, 3, 7, 0, 2, 2, 9, 0, 9, 1},
                {2, 11, 9, 6, 7, 5, 1, 3, 0, 8, 10, 4},
                {9, 8, 10, 5, 0, 4, 1, 3, 6, 7, 11, 2}}};
  for (const auto& [sizes, upwards, downwards] : cases) {
    EXPECT_EQ(OrderBySize(sizes, SizeOrder::Ascending), upwards) << testing::PrintToString(sizes);
    EXPECT_EQ(OrderBySize(sizes, SizeOrder::Descending), downwards) << testing::PrintToString(sizes);
  }
}

class FileListTest : public testing::Test, public SessionBench {};

TEST_F(FileListTest, ShowsFoldersThenFilesOfTheClickedFolderOnly) {
  Open("/other.png").File("foreign", 1, "docs");
  Open("/a.png").File("top", 1).File("deep", 1, "docs\\old").File("near", 2048, "docs").File("docs", 1);
  Click("/a.png");
  EXPECT_EQ(Shown(), (Strings{"docs/", "top", "docs"}));
  EXPECT_EQ(session.fileList.Rows().at(0).itemFolder, "docs");
  Click("/a.png", "docs");
  EXPECT_EQ(Shown(), (Strings{"old/", "near"}));
  EXPECT_EQ(session.fileList.Rows().at(0).itemFolder, "docs\\old");
  EXPECT_EQ(session.fileList.Rows().at(1).relativeIndex, 3U);
  EXPECT_EQ(session.filesPanel, "4 File(s) ") << "the whole carrier counts";
  EXPECT_EQ(Shown(Column::Size), (Strings{"/", "2 KB"}));
  EXPECT_EQ(Shown(Column::Type), (Strings{"/", "type of near"}));
  EXPECT_EQ(Shown(Column::Compressed), (Strings{"/", ""})) << "off by the presets";
}

TEST(FileTypes, NumbersKeysInTheOrderOfTheirComing) {
  FileTypes types([](const std::string& name) { return name.ends_with(".none") ? "" : "type of " + name; });
  std::string icons;
  for (const char* name : {"a.txt", "b.TXT", "Setup.EXE", "install.exe", "other.exe", "Makefile", "x.none",
                           "archive.tar.gz", ".bashrc", "trailing."})
    icons += std::to_string(types.Of(name).icon);
  EXPECT_EQ(icons, "4455622782");
  EXPECT_EQ(types.Of("b.TXT").text, "type of a.txt");
  EXPECT_EQ(types.Keys(), (Strings{"txt", "setup", "exe", "gz", "bashrc"}));
}

TEST(FileList, AddsAColumnAtTheEndAndNeverTouchesTheFirst) {
  FileTypes types([](const std::string&) { return std::string(); });
  FileList list(types);
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

/// All columns share one direction; the first click of all sorts texts downwards and sizes upwards.
TEST_F(FileListTest, SortsWithFoldersAmongTextsAndBehindSizesUntilAClickInTheTree) {
  Open("/a.png").File("b", 500).File("A", 9000).File("d", 2).File("z", 1, "c");
  Click("/a.png");
  const std::pair<Column, Strings> clicks[] = {{Column::Size, {"d", "b", "A", "c/"}},
                                               {Column::File, {"A", "b", "c/", "d"}},
                                               {Column::File, {"d", "c/", "b", "A"}},
                                               {Column::Size, {"A", "b", "d", "c/"}},
                                               {Column::Attribute, {"A", "b", "d", "c/"}}};
  for (const auto& [column, shown] : clicks) {
    session.ColumnClick(column);
    EXPECT_EQ(Shown(), shown);
  }
  EXPECT_EQ(session.fileList.Rows().at(0).relativeIndex, 1U);
  EXPECT_EQ(session.fileList.Sorting().value().column, Column::Size) << "an attribute sorts nothing";
  EXPECT_TRUE(session.fileList.Sorting().value().isDescending);
  Click("/a.png");
  EXPECT_FALSE(session.fileList.Sorting());
}

}  // namespace
}  // namespace tarnel::test
