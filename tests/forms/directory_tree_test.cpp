#include <QAction>
#include <QMenu>
#include <QTreeView>

#include "shellint/forms/uc_directory_tree.h"
#include "shellint/inotify_watch.h"
#include "tests/forms/fixed_places.h"
#include "tests/forms/forms_bench.h"

namespace tarnel::test {
namespace {

class DirectoryTreeFormTest : public testing::Test {
 protected:
  DirectoryTreeFormTest() {
    for (const char* folder : {"Desktop/a/inner", "Desktop/b\xff", "Desktop/c"})
      std::filesystem::create_directories(temp / folder);
    QObject::connect(&tree, &ucDirectoryTree::OnDirClick, [this](const Path& path) { clicked = path; });
    tree.Initialize();
    tree.SetPath(temp / "Desktop");
    tree.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&tree));
  }

  QAbstractItemModel& Model() { return *view.model(); }
  QModelIndex Row(int row) { return Model().index(row, 0, Model().index(0, 0)); }
  std::string Names() {
    std::string names;
    for (int row = 0; row < Model().rowCount(Model().index(0, 0)); ++row)
      names += Row(row).data().toString().toStdString() + "|";
    return names;
  }
  void Key(int key) { QTest::keyClick(&view, Qt::Key(key)); }
  /// Types into the label that is being edited, once it is.
  void EditTo(const char* text) {
    ASSERT_TRUE(QTest::qWaitFor([this] { return tree.findChild<QLineEdit*>() != nullptr; }));
    auto& editor = Find<QLineEdit>(tree, "LabelEdit");
    editor.setText(QString::fromUtf8(text));
    QTest::keyClick(&editor, Qt::Key_Return);
  }
  bool Becomes(const std::string& names) {
    return QTest::qWaitFor([&] { return Names() == names; });
  }

  TempFolder temp;
  PosixFiles files;
  Scripted<> person;
  ucDirectoryTree tree{files, person, std::make_unique<FixedPlaces>(temp), std::make_unique<InotifyWatch>()};
  QTreeView& view = *tree.TreeHwnd();
  Path clicked;
};

TEST_F(DirectoryTreeFormTest, KeysMoveOpenAndRename) {
  EXPECT_EQ(Names(), "a|b\\xff|c|");
  EXPECT_TRUE(Row(0).data(Qt::ToolTipRole).isNull());
  EXPECT_FALSE(Row(1).data(Qt::ToolTipRole).isNull());
  Key(Qt::Key_Down);
  EXPECT_EQ(clicked, temp / "Desktop/a/");
  EXPECT_TRUE(QTest::qWaitFor([&] { return Model().rowCount(Row(0)) == 1; }));
  Key(Qt::Key_Return);
  EXPECT_TRUE(view.isExpanded(Row(0)));
  Key(Qt::Key_F2);
  person.script.Expect("tree.bad-name", Answer::Ok);
  EditTo("what?");
  EXPECT_TRUE(QTest::qWaitFor([&] { return !person.script.Asked().empty(); }));
  Key(Qt::Key_F2);
  EditTo("z");
  EXPECT_TRUE(Becomes("b\\xff|c|z|"));
  EXPECT_EQ(tree.Path(), temp / "Desktop/z/");
  EXPECT_TRUE(view.isExpanded(Row(2)));
  Key(Qt::Key_Backspace);
  EXPECT_EQ(clicked, temp / "Desktop/");
}

TEST_F(DirectoryTreeFormTest, TheMenuMakesAFolderAndLetsItsNameBeTyped) {
  tree.ClickNodeIndex(1);
  tree.PopupM();
  EXPECT_FALSE(Find<QAction>(tree, "mnuDelete").isEnabled()) << "a place stays";
  Find<QMenu>(tree, "mnuDirectory").close();
  QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(Row(2)).center());
  EXPECT_EQ(clicked, temp / "Desktop/c/");
  tree.PopupM();
  EXPECT_TRUE(Find<QAction>(tree, "mnuCreate").isEnabled());
  EXPECT_TRUE(Find<QAction>(tree, "mnuDelete").isEnabled());
  Find<QMenu>(tree, "mnuDirectory").close();
  QCoreApplication::processEvents();  // this platform takes a menu for a window that was active
  Find<QAction>(tree, "mnuCreate").trigger();
  EditTo("new");
  EXPECT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(temp / "Desktop/c/new"); }));
  EXPECT_TRUE(QTest::qWaitFor([&] { return tree.Path() == temp / "Desktop/c/new/"; }));
}

TEST_F(DirectoryTreeFormTest, WhatOthersDoIsSeen) {
  view.setCurrentIndex(Row(0));
  tree.ClickNodeIndex(2);
  std::filesystem::rename(temp / "Desktop/a", temp / "Desktop/d");
  EXPECT_TRUE(Becomes("b\\xff|c|d|"));
  EXPECT_EQ(view.currentIndex(), Row(2));
  std::filesystem::remove_all(temp / "Desktop/d");
  std::filesystem::create_directory(temp / "Desktop/0");
  EXPECT_TRUE(Becomes("0|b\\xff|c|"));
  EXPECT_EQ(view.currentIndex(), Model().index(0, 0));
  EXPECT_EQ(tree.Path(), temp / "Desktop/");
}

}  // namespace
}  // namespace tarnel::test
