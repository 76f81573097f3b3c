#include "app/forms/main_window.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QClipboard>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QSplitter>
#include <QTreeView>

#include "app/forms/dir_view_model.h"
#include "app/forms/status_panels.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/forms/forms_bench.h"

namespace tarnel::test {
namespace {

class MainWindowTest : public testing::Test, public FormsBench {
 protected:
  MainWindowTest() {
    carrier.Hide({.name = "small.txt", .content = "1"}).Hide({.name = "big.png", .content = Pattern(5000)});
    carrier.Hide({.name = "deep.txt", .folder = "docs"});
    settings->Set("option", "Tabs", "1");
  }

  QTreeView& List() { return Find<QTreeView>(*window, "FileList"); }
  QTreeView& Tree() { return Find<QTreeView>(*window, "DirView"); }
  std::string PanelText(const char* name) { return Find<StatusPanel>(*window, name).Text().toStdString(); }
  bool IsEnabled(const char* item) { return Item(item).isEnabled(); }
  std::string Names() {
    std::string names;
    for (int row = 0; row < List().model()->rowCount(); ++row)
      names += Row(row).data().toString().toStdString() + " ";
    return names;
  }

  /// Answers CarrierPass with the carrier's password.
  void ExpectPassword() {
    modal.On("CarrierPass", [](QWidget& form) {
      Type(form, "txt_Pass", "secret");
      Press(form, "Cmd_Ok");
    });
  }
  void OpenCarrier() {
    ExpectPassword();
    window->StartWith(carrier.carrier);
    window->show();
    Tick();
  }
  void Lock() {
    modal.On("FrmLock", [](QWidget& form) {
      Type(form, "Text1", "key");
      Press(form, "Command2");
    });
    Trigger("menu_lock");
  }
  void ExpectUnlock(const char* password, const char* label = "Please enter the password to continue...") {
    modal.On("FrmUnlock", [=](QWidget& form) {
      EXPECT_EQ(Find<QLabel>(form, "Label3").text().toStdString(), label);
      Type(form, "Text1", password);
      Press(form, *password == '\0' ? "Cmd_Cancel" : "Command2");
    });
  }
  QModelIndex Row(int row) { return List().model()->index(row, 0); }
  std::string LastText() {
    const auto& asked = dialogue.script.Asked();
    return asked.empty() ? "" : asked.back().text;
  }
  void Click(QTreeView& view, const QModelIndex& index) {
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(index).center());
  }
  void DoubleClick(QTreeView& view, const QModelIndex& index) {
    const QPoint at = view.visualRect(index).center();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, at);
  }

  CarrierBench carrier;
};

TEST_F(MainWindowTest, OpensACarrierThroughTheWholeRoadAndClosesIt) {
  window->show();
  EXPECT_EQ(window->windowTitle(), QStringLiteral(" Tarnel 7.0"));
  EXPECT_FALSE(Item("Menu_New_Carrier").isVisible());
  EXPECT_FALSE(Item("Menu_Info").icon().isNull());
  EXPECT_TRUE(Item("New").isVisible());
  const auto expectUsable = [this](bool isOpen) {
    for (const char* item : {"manu_close", "Menu_Extract", "Extract"})
      EXPECT_EQ(IsEnabled(item), isOpen) << item;
    EXPECT_EQ(Find<StatusPanel>(*window, "Info").HasPicture(), isOpen);
  };
  expectUsable(false);
  files.answers = {carrier.carrier};
  modal.On("FrmCarrierFile", [](QWidget& form) {
    Press(form, "BrowseCmd");
    QTimer::singleShot(0, &form, [&form] { Press(form, "Command2"); });
  });
  ExpectPassword();
  Trigger("Open");
  Tick();
  EXPECT_EQ(Names(), "docs big.png small.txt ");
  EXPECT_EQ(PanelText("Files"), "3 File(s) ");
  EXPECT_EQ(PanelText("Algorithm"), " RIJNDAEL-256");
  expectUsable(true);
  Trigger("manu_close");
  Tick();
  EXPECT_EQ(Names() + PanelText("Files") + PanelText("Algorithm"), "");
  EXPECT_EQ(Tree().model()->rowCount(), 0);
  expectUsable(false);
}

TEST_F(MainWindowTest, WalksThroughFoldersByTreeAndByDoubleClick) {
  OpenCarrier();
  DoubleClick(List(), Row(0));
  EXPECT_EQ(Names(), "deep.txt ");
  EXPECT_EQ(Tree().currentIndex().data().toString(), QStringLiteral("docs"));
  Click(Tree(), Tree().model()->index(0, 0));
  EXPECT_EQ(Names(), "docs big.png small.txt ");
  Tree().setFocus();
  QTest::keyClick(&Tree(), Qt::Key_Down);
  EXPECT_EQ(Names(), "deep.txt ");
}

TEST_F(MainWindowTest, EnablesViewForASelectedFileOnly) {
  OpenCarrier();
  Click(List(), Row(0));
  Tick();
  EXPECT_FALSE(IsEnabled("View")) << "a folder";
  Click(List(), Row(1));
  Tick();
  EXPECT_TRUE(IsEnabled("View") && IsEnabled("Menu_Preview"));
  Trigger("Menu_SelectAll");
  EXPECT_EQ(List().selectionModel()->selectedIndexes().size(), 3) << "one cell of each row";
  Trigger("Mnu_InvertSelection");
  Tick();
  EXPECT_TRUE(List().selectionModel()->selectedIndexes().isEmpty());
  EXPECT_FALSE(IsEnabled("View"));
}

TEST_F(MainWindowTest, DoubleClickOnAFileDoesWhatTheSettingSays) {
  OpenCarrier();
  const auto set = [this](const char* event) {
    settings->Set("options", "Mouse_Event", event);
    session->ReloadSettings();
    session->guards.ReadingBusy = true;
    DoubleClick(List(), Row(1));  // runs nothing meanwhile
    session->guards.ReadingBusy = false;
  };
  set("None");
  DoubleClick(List(), Row(1));
  set("View");
  dialogue.script.Expect("view.preview", Answer::No).Expect("view.preview", Answer::No);
  DoubleClick(List(), Row(1));
  EXPECT_EQ(LastText(), "Do you want to preview big.png?");
  QTest::keyClick(&List(), Qt::Key_Return);
  for (const auto& [event, form] : {std::pair{"Extract", "FrmExtract"}, {"Delete", "FrmDelete"}}) {
    set(event);
    modal.On(form, [](QWidget& shown) { Press(shown, "Cmd_Cancel"); });
    DoubleClick(List(), Row(1));
  }
  modal.On("FrmDelete", [](QWidget& shown) { Press(shown, "Cmd_Cancel"); });
  QTest::keyClick(&List(), Qt::Key_Delete);
}

TEST_F(MainWindowTest, LoadingTheSettingsAgainKeepsTheSelectedRows) {
  OpenCarrier();
  Click(List(), Row(1));
  session->ReloadSettings();
  EXPECT_EQ(List().selectionModel()->selectedIndexes(), QModelIndexList{Row(1)});
}

TEST_F(MainWindowTest, CommandsOfTheTreeWorkOnTheHighlightedNode) {
  OpenCarrier();
  const auto expectCurrent = [this](const char* how, const char* name) {
    EXPECT_EQ(Tree().currentIndex().data().toString().toStdString(), name) << how;
    EXPECT_EQ(session->SelectedNode()->text, name) << how;
  };
  const QModelIndex root = Tree().model()->index(0, 0);
  const QPoint title = Tree().visualRect(root).center();
  const QPoint docs = Tree().visualRect(Tree().model()->index(0, 0, root)).center();
  QTest::mousePress(Tree().viewport(), Qt::RightButton, {}, docs);
  expectCurrent("right button", "docs");
  QTest::mouseRelease(Tree().viewport(), Qt::RightButton, {}, docs);
  QTest::mousePress(Tree().viewport(), Qt::LeftButton, {}, title);
  QTest::mouseRelease(Tree().viewport(), Qt::LeftButton, {}, docs + QPoint(0, 200));
  expectCurrent("released beside it", "Title");
}

TEST_F(MainWindowTest, OneFileHasOneRootHoweverItIsSpelled) {
  OpenCarrier();
  std::filesystem::create_symlink(carrier.carrier, temp / "link");
  for (const Path& spelling : {carrier.folder / "./carrier.bin", temp / "link"}) {
    ExpectPassword();
    dialogue.script.Expect("load.reload", Answer::Yes);
    window->StartWith(spelling);
  }
  EXPECT_EQ(session->catalogue.Roots().size(), 1U);
}

TEST_F(MainWindowTest, GivesNoHiddenNameToTheClipboard) {
  OpenCarrier();
  QGuiApplication::clipboard()->setText(QStringLiteral("before"));
  for (QTreeView* const view : {&List(), &Tree()}) {
    Click(*view, view->model()->index(0, 0));
    QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
  }
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("before"));
}

TEST_F(MainWindowTest, TheMenuOfTheListOpensUnderThePointer) {
  OpenCarrier();
  auto& menu = Find<QMenu>(*window, "Menu_Actions");
  emit List().customContextMenuRequested({20, 10});
  EXPECT_EQ(menu.pos(), List().viewport()->mapToGlobal(QPoint(20, 10)));
  menu.close();
}

TEST_F(MainWindowTest, SurvivesFoldersOfAnyDepth) {
  std::string folder = "a";
  for (int i = 1; i < 2000; ++i)
    folder += "\\a";
  carrier.Hide({.name = "deep.txt", .folder = folder});
  OpenCarrier();
  DoubleClick(List(), Row(0));
  QTest::keyClick(&Tree(), Qt::Key_Asterisk);
  EXPECT_TRUE(Tree().isExpanded(Tree().currentIndex()));
  Trigger("manu_close");
  EXPECT_EQ(Tree().model()->rowCount(), 0);
}

TEST_F(MainWindowTest, SortsByAClickOnAHeader) {
  OpenCarrier();
  QHeaderView& header = *List().header();
  const QPoint size(header.sectionViewportPosition(1) + 10, header.height() / 2);
  QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, size);
  EXPECT_EQ(Names(), "small.txt big.png docs ");
}

TEST_F(MainWindowTest, GatesEveryGatedCommandWhileLocked) {
  OpenCarrier();
  Lock();
  EXPECT_EQ(PanelText("Lock"), "Locked ");
  EXPECT_EQ(Item("menu_lock").text(), QStringLiteral("Unlock..."));
  for (const Command& command : Commands()) {
    if (command.gate == Gate::None || command.id == CommandId::Search) continue;
    ExpectUnlock("");
    Item(command.item).setEnabled(true);
    Trigger(command.item);
  }
  EXPECT_EQ(ended, 0);
  EXPECT_EQ(session->catalogue.Roots().size(), 1U);
  ExpectUnlock("");
  Trigger("Menu_Find_Carrier");
  EXPECT_EQ(window->findChild<QWidget*>(QStringLiteral("FrmFind")), nullptr);
  ExpectUnlock("key");
  Trigger("Search");
  ExpectUnlock("key");
  ExpectUnlock("key");
  Trigger("Menu_Find_Carrier");
  EXPECT_TRUE(Find(*window, "FrmFind").isVisible());
  ExpectUnlock("");
  QCloseEvent close;
  QApplication::sendEvent(window.get(), &close);
  EXPECT_FALSE(close.isAccepted());
}

TEST_F(MainWindowTest, UnlocksOnlyThroughTheLock) {
  window->show();
  EXPECT_EQ(PanelText("Lock"), "Unlocked ");
  Lock();
  dialogue.script.Expect("lock.wrong", Answer::Ok);
  modal.On("FrmUnlock", [](QWidget& form) {
    Type(form, "Text1", "KEY");
    Press(form, "Command2");
    EXPECT_TRUE(form.isVisible());
    Press(form, "Cmd_Cancel");
  });
  QTest::mouseDClick(&Find(*window, "Lock"), Qt::LeftButton);
  ExpectUnlock("key", "Please enter the password to unlock Tarnel.");
  modal.On("FrmCarrierFile", [](QWidget& form) { Press(form, "Command1"); });
  Trigger("Open");
  EXPECT_EQ(PanelText("Lock"), "Locked ") << "the gate leaves the lock on";
  ExpectUnlock("key", "Please enter the password to unlock Tarnel.");
  Trigger("menu_lock");
  EXPECT_EQ(PanelText("Lock"), "Unlocked ");
  EXPECT_EQ(Item("menu_lock").text(), QStringLiteral("Lock..."));
}

TEST_F(MainWindowTest, FindsWindowAndColumnsAsTheyWereLeft) {
  window->show();
  window->resize(777, 555);
  Find<QSplitter>(*window, "Sizer").setSizes({222, 550});
  List().header()->resizeSection(1, 133);
  const int pane = Find(*window, "DirFrame").width();
  window->close();
  EXPECT_EQ(settings->Get("form", "Width", ""), "11655");
  EXPECT_EQ(settings->Get("form", "Size", ""), "1995");
  MakeWindow();
  window->show();
  EXPECT_EQ(window->size(), QSize(777, 555));
  EXPECT_EQ(Find(*window, "DirFrame").width(), pane);
  EXPECT_EQ(List().header()->sectionSize(1), 133);
}

TEST_F(MainWindowTest, SavesNothingOnQuitNorWithTheSettingOff) {
  Trigger("Menu_Quit");
  EXPECT_EQ(ended, 1);
  settings->Set("options", "SaveSettingsExit", "0");
  session->ReloadSettings();
  window->close();
  EXPECT_FALSE(settings->Find("form", "Width"));
}

TEST_F(MainWindowTest, TogglesThePaneAndTheStatusBar) {
  window->show();
  Trigger("Folders");
  EXPECT_FALSE(Find(*window, "DirFrame").isVisible());
  EXPECT_FALSE(Item("Folders").isChecked() || Item("Menu_Folders").isChecked());
  Trigger("Menu_Folders");
  EXPECT_TRUE(Find(*window, "DirFrame").isVisible() && Item("Folders").isChecked());
  Trigger("mnu_ShowStatus");
  EXPECT_FALSE(Find(*window, "StatusBar").isVisible() || Item("mnu_ShowStatus").isChecked());
  EXPECT_FALSE(settings->Find("options", "StatusBar")) << "the setting belongs to Config";
}

TEST_F(MainWindowTest, ConfigurationChangesColumnsOfTheShownFolder) {
  OpenCarrier();
  modal.On("Config", [](QWidget& form) {
    Press(form, "Chk_Clmn_Type");
    Press(form, "Chk_Clmn_Subfolder");
    Press(form, "Chk_View_Fullrow");
    Press(form, "Cmd_Ok");
  });
  Click(Tree(), Tree().model()->index(0, 0, Tree().model()->index(0, 0)));
  Trigger("Configuration");
  QAbstractItemModel& model = *List().model();
  std::string captions;
  for (int i = 0; i < model.columnCount(); ++i)
    captions += model.headerData(i, Qt::Horizontal).toString().toStdString() + " ";
  EXPECT_EQ(captions, "File Size Date Subfolder ");
  EXPECT_EQ(model.index(0, 3).data().toString(), QStringLiteral("docs"));
  Trigger("Menu_SelectAll");
  EXPECT_EQ(List().selectionModel()->selectedIndexes().size(), 4) << "full rows";
}

TEST_F(MainWindowTest, OpensTheFirstDroppedFileWhereverItFalls) {
  window->show();
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(QString::fromStdString(carrier.carrier.native())),
                QUrl::fromLocalFile(QStringLiteral("/second"))});
  for (const char* place : {"DirView", "FileList", "StatusBar"}) {
    int asked = 0;
    modal.On("CarrierPass", [&asked](QWidget& form) {
      ++asked;
      Press(form, "Cmd_Cancel");
    });
    QWidget& target = Find(*window, place);
    const auto both = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(QPoint(1, 1), both, &data, Qt::LeftButton, Qt::ShiftModifier);
    QApplication::sendEvent(&target, &enter);
    QDropEvent drop(QPointF(1, 1), both, &data, Qt::LeftButton, Qt::ShiftModifier);
    drop.setDropAction(Qt::MoveAction);
    QApplication::sendEvent(&target, &drop);
    EXPECT_TRUE(drop.isAccepted());
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction) << "a source that was told of a move deletes its file";
    EXPECT_EQ(asked, 0) << "the source is answered first";
    EXPECT_TRUE(QTest::qWaitFor([&asked] { return asked == 1; })) << place;
  }
  window->StartWith(temp.Where());
  window->StartWith(temp / "missing");
}

TEST_F(MainWindowTest, NewEndsInAFaultThatIsShownAndTheProgramGoesOn) {
  window->show();
  files.answers = {carrier.carrier};
  dialogue.script.Expect("main.fault", Answer::Ok);
  Trigger("New");
  EXPECT_EQ(LastText().substr(0, 9), "Error: 91");
  EXPECT_TRUE(IsEnabled("New"));
}

TEST_F(MainWindowTest, HideOpensACarrierFirstAndStopsWhereNoneIsOpened) {
  window->show();
  modal.On("FrmCarrierFile", [this](QWidget& form) {
    EXPECT_TRUE(session->HideOpenRequested);
    Press(form, "Command1");
  });
  Trigger("Hide");
  EXPECT_FALSE(session->HideOpenRequested);
  EXPECT_TRUE(dialogue.script.Asked().empty());
}

TEST_F(MainWindowTest, SavesACopyOnlyOverAFileThatExists) {
  OpenCarrier();
  const Path copy = temp / "copy.tnl";
  files.answers = {copy, copy, copy};
  Trigger("Manu_Saveas");
  EXPECT_FALSE(std::filesystem::exists(copy));
  WriteAll(copy, "old");
  dialogue.script.Expect("main.save-as", Answer::No).Expect("main.save-as", Answer::Yes);
  Trigger("Manu_Saveas");
  EXPECT_EQ(ReadAll(copy), "old");
  Trigger("Manu_Saveas");
  EXPECT_EQ(ReadAll(copy), ReadAll(carrier.carrier));
}

TEST_F(MainWindowTest, ShowsPropertiesByTheInfoPanelAndHelpOutside) {
  OpenCarrier();
  modal.On("FrmProperties", [](QWidget& form) { Press(form, "Command1"); });
  QTest::mouseDClick(&Find(*window, "Info"), Qt::LeftButton);
  modal.On("Info", [](QWidget& form) { Press(form, "Command1"); });
  Trigger("Menu_Info");
  Trigger("Menu_Contents");
  EXPECT_TRUE(opened.isLocalFile());
}

class DirViewTest : public testing::Test {
 protected:
  TreeNode& Open(const char* carrier) {
    auto hideout = std::make_shared<HideoutKey>();
    hideout->carrier = carrier;
    return catalogue.AddRoot(hideout, "*RootFolder*");
  }

  Catalogue catalogue;
  DirViewModel model{catalogue};
};

TEST_F(DirViewTest, HoldsFoldersAsDeepAsACatalogueHas) {
  constexpr std::size_t kDepth = kMostFolderNodes;
  std::string folder;
  for (std::size_t i = 0; i < kDepth; ++i)
    folder += "a\\";
  TreeNode& deepest = catalogue.EnsureFolderNode(Open("/a.png"), folder);
  model.Rebuild();
  model.Rebuild();
  EXPECT_EQ(model.All().size(), kDepth + 1);
  EXPECT_EQ(model.NodeAt(model.IndexOf(&deepest)), &deepest);
}

TEST_F(DirViewTest, KeysOutliveARebuildAndAreNeverThoseOfAnotherFolder) {
  const TreeNode& kept = catalogue.EnsureFolderNode(Open("/b.png"), "docs\\old");
  model.Rebuild();
  const auto key = model.KeyAt(model.IndexOf(&kept));
  TreeNode& other = Open("/a.png");
  catalogue.EnsureFolderNode(other, "docs\\old");
  catalogue.EnsureFolderNode(other, "old");
  model.Rebuild();
  for (const QModelIndex& index : model.All())
    EXPECT_EQ(model.KeyAt(index) == key, model.NodeAt(index) == &kept);
}

}  // namespace
}  // namespace tarnel::test
