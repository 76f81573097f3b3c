#include "app/session.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "app/instance_lock.h"
#include "tests/app/session_bench.h"

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
}

/// A process that tries the lock as soon as `start` closes, tells by `told` whether another one has it, and
/// ends when `end` closes.
void TryAsProcess(const std::vector<Path>& places, int start, int told, int end) {
  char byte = 0;
  PosixFiles posix;
  (void)!::read(start, &byte, 1);
  const InstanceLock lock(posix, places);
  byte = lock.IsOtherRunning() ? 'y' : 'n';
  (void)!::write(told, &byte, 1);
  (void)!::read(end, &byte, 1);
  ::_exit(0);
}

TEST(InstanceLock, OneOfTwoProcessesThatStartAtTheSameMomentHasIt) {
  for (int round = 0; round < 100; ++round) {
    const TempFolder folder;
    int start[2];
    int told[2];
    int end[2];
    for (int* pipe : {start, told, end})
      ASSERT_EQ(::pipe(pipe), 0);
    for (int process = 0; process < 2; ++process) {
      if (::fork() != 0) continue;
      ::close(start[1]);
      ::close(end[1]);
      TryAsProcess({folder / "a/b/tarnel.lock"}, start[0], told[1], end[0]);
    }
    ::close(start[1]);
    std::string answers(2, ' ');
    for (char& answer : answers)
      ASSERT_EQ(::read(told[0], &answer, 1), 1);
    for (const int each : {start[0], told[0], told[1], end[0], end[1]})
      ::close(each);
    while (::wait(nullptr) > 0) {
    }
    std::sort(answers.begin(), answers.end());
    ASSERT_EQ(answers, "ny") << "in round " << round;
  }
}

}  // namespace
}  // namespace tarnel::test
