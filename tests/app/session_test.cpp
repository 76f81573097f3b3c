#include "app/session.h"

#include <gtest/gtest.h>

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

TEST_F(SessionTest, ClickMakesTheHideoutCurrent) {
  Click("/a.png", "pics");
  EXPECT_EQ(session.current.CurrentCarrierPath, "/a.png");
  EXPECT_EQ(session.current.CurrentCarrierName, "a.png");
  EXPECT_EQ(session.current.CurrentAlgorithmId, Algorithm::TripleDes);
  EXPECT_TRUE(session.current.CurrentPassword == Secret("secret of /a.png"));
  EXPECT_EQ(session.algorithmPanel, " TRIPLEDES");
  EXPECT_EQ(session.filesPanel, "3 File(s) ");
  EXPECT_EQ(session.ActiveListHwnd, Attention::DirView);
}

TEST_F(SessionTest, BlockedClickChangesNothing) {
  Click("/a.png");
  session.guards.TreeClickBlocked = true;
  Click("/b.png");
  EXPECT_EQ(session.current.CurrentCarrierPath, "/a.png");
  EXPECT_EQ(session.SelectedNode(), &Root("/a.png"));
}

TEST_F(SessionTest, FolderRowOpensTheFirstNodeOfItsNameInItsCarrier) {
  Click("/b.png");
  EXPECT_EQ(session.NodeOfFolderRow(session.fileList.Rows()[0]), Root("/b.png").children[0].get());
  Click("/a.png", "docs");
  const FileListRow& pics = session.fileList.Rows()[0];
  EXPECT_EQ(pics.itemFolder, "docs\\pics");
  EXPECT_EQ(session.NodeOfFolderRow(pics), Root("/a.png").children[0].get()) << "the earlier one wins";
}

TEST_F(SessionTest, ClosingMakesTheNextHideoutCurrentAndBlanksThePanelsAfterTheLast) {
  Click("/a.png", "pics");
  session.CloseCarrier();
  EXPECT_EQ(session.catalogue.FindRoot("/a.png"), nullptr);
  EXPECT_EQ(session.FilesOf("/a.png"), 0U);
  EXPECT_EQ(session.current.CurrentCarrierPath, "/b.png");
  EXPECT_EQ(Shown(), Strings{"pics/"});
  session.CloseCarrier();
  EXPECT_TRUE(session.catalogue.Roots().empty());
  EXPECT_TRUE(Shown().empty());
  EXPECT_EQ(session.filesPanel + session.algorithmPanel, "");
  EXPECT_EQ(session.current.CurrentCarrierPath, "/b.png") << "the last values stay";
  EXPECT_FALSE(session.RefreshNow().IsEnabled(CommandId::Close));
  session.CloseCarrier();
  EXPECT_EQ(session.SelectedNode(), nullptr);
}

TEST_F(SessionTest, NewHideoutHasNoFilesAndKeepsTheNameFromTheList) {
  Click("/a.png");
  Open("/c.png", "TripleDES");
  session.HideoutCreated(Root("/c.png"), "TripleDES");
  EXPECT_EQ(session.filesPanel, " 0 File(s) ");
  EXPECT_EQ(session.algorithmPanel, " TripleDES");
  EXPECT_EQ(session.SelectedNode(), &Root("/c.png"));
  EXPECT_TRUE(Shown().empty());
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

TEST_F(SessionTest, ChangeOfSettingsPutsColumnsOnTheListAndTellsTheView) {
  settings.Set("options", "Size", "0");
  settings.Set("options", "Compressed", "1");
  const int before = listChanges;
  session.ReloadSettings();
  EXPECT_GT(listChanges, before);
  EXPECT_EQ(session.fileList.Columns(),
            (std::vector<Column>{Column::File, Column::Type, Column::Date, Column::Compressed}));
}

TEST(InstanceLock, IsHeldByOneAtATimeAndFreeAfterIt) {
  TempFolder folder;
  PosixFiles posix;
  const Path path = folder / "tarnel.lock";
  {
    const InstanceLock first(posix, path);
    EXPECT_FALSE(first.IsOtherRunning());
    EXPECT_TRUE(InstanceLock(posix, path).IsOtherRunning());
  }
  EXPECT_FALSE(InstanceLock(posix, path).IsOtherRunning());
}

TEST(InstanceLock, CountsAsTheOnlyOneWhereNoLockFileCanBeMade) {
  TempFolder folder;
  PosixFiles posix;
  EXPECT_FALSE(InstanceLock(posix, folder / "missing/tarnel.lock").IsOtherRunning());
}

}  // namespace
}  // namespace tarnel::test
