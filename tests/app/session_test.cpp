#include "app/session.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <latch>
#include <thread>

#include "app/file_list.h"
#include "app/instance_lock.h"
#include "app/size_order.h"
#include "tests/app/session_bench.h"
#include "tests/support/faulty_files.h"

namespace tarnel::test {
namespace {

class SessionTest : public testing::Test, public SessionBench {
 protected:
  SessionTest() {
    Open("/a.png", "TripleDES").File("one", 1).File("two", 1, "pics").File("three", 1, "docs\\pics");
    Open("/b.png").File("four", 1, "pics");
  }
};

TEST_F(SessionTest, ClickMakesTheHideoutCurrentUnlessItIsBlocked) {
  Click("/a.png", "pics");
  session.guards.TreeClickBlocked = true;
  Click("/b.png");
  ASSERT_NE(session.SelectedNode(), nullptr);
  EXPECT_EQ(session.SelectedNode()->text, "pics");
  EXPECT_EQ(session.current.CurrentCarrierPath, "/a.png");
  EXPECT_EQ(session.current.CurrentCarrierName, "a.png");
  EXPECT_EQ(session.current.CurrentAlgorithmId, Algorithm::TripleDes);
  EXPECT_TRUE(session.current.CurrentPassword.IsOf(Secret("secret of /a.png")));
  EXPECT_EQ(session.algorithmPanel, " TRIPLEDES");
  EXPECT_EQ(session.filesPanel, "3 File(s) ");
  EXPECT_EQ(session.ActiveListHwnd, Attention::DirView);
}

TEST_F(SessionTest, FolderRowOpensTheFirstNodeOfItsNameInItsCarrier) {
  Click("/b.png");
  EXPECT_EQ(session.NodeOfFolderRow(session.fileList.Rows().at(0)), Root("/b.png").children.at(0).get());
  Click("/a.png", "docs");
  const FileListRow& pics = session.fileList.Rows().at(0);
  EXPECT_EQ(pics.itemFolder, "docs\\pics");
  EXPECT_EQ(session.NodeOfFolderRow(pics), Root("/a.png").children.at(0).get()) << "the earlier one wins";
}

TEST_F(SessionTest, ClosingMakesTheNextHideoutCurrentAndBlanksThePanelsAfterTheLast) {
  Click("/a.png", "pics");
  session.CloseCarrier();
  EXPECT_EQ(session.catalogue.FindRoot("/a.png"), nullptr);
  EXPECT_EQ(session.FilesOf("/a.png"), 0U);
  EXPECT_EQ(session.current.CurrentCarrierPath, "/b.png");
  EXPECT_EQ(Shown(), Strings{"pics/"});
  session.CloseCarrier();
  session.CloseCarrier();
  EXPECT_TRUE(session.catalogue.Roots().empty());
  EXPECT_TRUE(Shown().empty());
  EXPECT_EQ(session.filesPanel + session.algorithmPanel, "");
  EXPECT_EQ(session.current.CurrentCarrierPath, "/b.png") << "the last values stay";
  EXPECT_EQ(session.SelectedNode(), nullptr);
}

TEST_F(SessionTest, AbortedReloadLeavesTheFirstHideoutCurrentAndNoNodeThatIsGone) {
  Click("/b.png", "pics");
  session.catalogue.RemoveCarrier("/b.png");
  session.HideoutGone();
  EXPECT_EQ(session.SelectedNode(), &Root("/a.png"));
  EXPECT_EQ(Shown(), (Strings{"pics/", "docs/", "one"}));
  session.catalogue.RemoveCarrier("/a.png");
  session.HideoutGone();
  EXPECT_EQ(session.SelectedNode(), nullptr);
  EXPECT_TRUE(Shown().empty());
}

TEST_F(SessionTest, AfterAReadingRowsPointAtTheirFilesOrAreGone) {
  Click("/b.png", "pics");
  session.catalogue.RemoveCarrier("/a.png");
  session.SettleTree();
  ASSERT_EQ(Shown(), Strings{"four"});
  EXPECT_EQ(session.catalogue.Rows().at(session.fileList.Rows().at(0).relativeIndex).Name(), "four");
  session.catalogue.RemoveCarrier("/b.png");
  Open("/b.png").File("five", 1, "pics");
  session.SettleTree();
  EXPECT_EQ(session.SelectedNode(), nullptr) << "another hideout, wherever it lies in memory";
  EXPECT_EQ(Shown(), Strings{});
}

TEST_F(SessionTest, SettlingLeavesAListThatStillHoldsAsItIs) {
  Click("/a.png");
  session.ColumnClick(Column::File);
  const Strings sorted = Shown();
  const int before = listChanges;
  session.SettleTree();
  session.ReloadSettings();
  EXPECT_EQ(listChanges, before);
  EXPECT_EQ(Shown(), sorted);
}

TEST_F(SessionTest, AnEmptiedHideoutListsNothingAndKeepsNoMoreThanItsRoot) {
  Click("/a.png", "pics");
  session.catalogue.RemoveRows("/a.png");
  session.catalogue.RemoveFolderNodes("/a.png");
  session.HideoutEmptied();
  EXPECT_EQ(session.SelectedNode(), &Root("/a.png"));
  EXPECT_EQ(Shown(), Strings{});
  Click("/b.png");
  session.catalogue.RemoveCarrier("/b.png");
  session.HideoutEmptied();
  EXPECT_EQ(session.SelectedNode(), nullptr);
  EXPECT_EQ(Shown(), Strings{});
  EXPECT_EQ(session.filesPanel, "0 File(s) ");
}

TEST(InstanceLock, IsHeldByOneAtATimeAndFreeAfterItOrWhereItCannotBe) {
  TempFolder folder;
  PosixFiles posix;
  const std::vector<Path> places = {folder.Put("file", "") / "tarnel.lock", folder / "a/b/tarnel.lock"};
  {
    const InstanceLock first(posix, places);
    EXPECT_FALSE(first.IsOtherRunning());
    EXPECT_TRUE(InstanceLock(posix, places).IsOtherRunning());
  }
  EXPECT_FALSE(InstanceLock(posix, places).IsOtherRunning());
  EXPECT_FALSE(InstanceLock(posix, {places.front()}).IsOtherRunning());
  FaultyFiles files(posix);
  files.Fail({.counts = Calls("File.Lock")});
  EXPECT_FALSE(InstanceLock(files, places).IsOtherRunning()) << "on a disk without locks";
}

TEST(InstanceLock, OneOfTwoThatStartAtTheSameMomentHasIt) {
  for (int round = 0; round < 100; ++round) {
    const TempFolder folder;
    std::latch start(2), end(2);
    std::array<bool, 2> isOther{};
    {
      const auto run = [&](bool& told) {
        PosixFiles posix;
        start.arrive_and_wait();
        const InstanceLock lock(posix, {folder / "a/b/tarnel.lock"});
        told = lock.IsOtherRunning();
        end.arrive_and_wait();
      };
      const std::jthread first(run, std::ref(isOther[0])), second(run, std::ref(isOther[1]));
    }
    ASSERT_NE(isOther[0], isOther[1]) << "in round " << round;
  }
}

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
  MirrorRow row = session.catalogue.Rows().at(2);
  row.shownBelow = std::string_view("docs").size();
  session.catalogue.AddRow(std::move(row));
  Click("/a.png").Click("/a.png", "docs");
  EXPECT_EQ(Shown(), (Strings{"old/", "near", "deep"})) << "a file whose folder has no node";
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
