#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QTabBar>
#include <QTabWidget>
#include <algorithm>
#include <set>

#include "base/formats.h"
#include "carrier/forms/carrier_pass.h"
#include "formkit/password_field.h"
#include "retrieval/forms/frm_carrier_file.h"
#include "retrieval/forms/frm_properties.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/forms/forms_bench.h"

namespace tarnel::test {
namespace {

/// A carrier with files under "secret" and, behind them, one under "other".
class CarrierFormsTest : public testing::Test, public FormsBench {
 protected:
  CarrierFormsTest() {
    carrier.Hide({.name = "one.txt"}).Hide({.name = "two.txt", .folder = "docs"});
    carrier.Hide({.name = "foreign.txt"}, {.password = "other", .algorithm = Algorithm::Blowfish});
    settings->Set("option", "Tabs", "1");
  }

  /// 0 to open a hideout, 1 to create one.
  static int Tab(CarrierPass& form) { return Find<QTabWidget>(form, "TabStrip").currentIndex(); }

  CarrierBench carrier;
};

class OpenTest : public CarrierFormsTest {
 protected:
  OpenTest() { form.show(); }

  void Enter(const char* password) {
    Type(form, "txt_Pass", password);
    Press(form, "Cmd_Ok");
  }

  CarrierPass form{carrier.carrier, *session, dialogue, nullptr};
};

TEST_F(CarrierFormsTest, FirstUseStartsWithCreatingAndLaterOnesWithOpening) {
  settings->DeleteSection("option");
  CarrierPass first(carrier.carrier, *session, dialogue, nullptr);
  EXPECT_EQ(Tab(first), 1);
  dialogue.script.Expect("create.no-password", Answer::Ok);
  Press(first, "Cmd_Ok");
  CarrierPass again(carrier.carrier, *session, dialogue, nullptr);
  EXPECT_EQ(Tab(again), 0) << "each OK counts, whatever comes of it";
  session->HideOpenRequested = true;
  CarrierPass hiding(carrier.carrier, *session, dialogue, nullptr);
  EXPECT_EQ(Tab(hiding), 1);
}

TEST_F(OpenTest, RightPasswordOpensTheHideoutBehindForeignEntries) {
  Enter("secret");
  EXPECT_EQ(form.result(), QDialog::Accepted);
  EXPECT_EQ(session->filesPanel, "2 File(s) ");
  EXPECT_EQ(session->algorithmPanel, " RIJNDAEL-256");
  ASSERT_NE(session->SelectedNode(), nullptr);
  EXPECT_EQ(session->fileList.Rows().size(), 2U);
  FrmProperties properties(*session, nullptr);
  properties.resize(600, 400);
  const std::pair<const char*, std::string> shown[] = {
      {"lb_name", "carrier.bin"},
      {"lb_path", carrier.folder.Where()},
      {"lb_size", GroupedKilobytes(static_cast<double>(carrier.Size())) + " KB"},
      {"lb_files", "2"},
      {"lb_algorithm", "RIJNDAEL-256"}};
  for (const auto& [label, text] : shown)
    EXPECT_EQ(Find<QLabel>(properties, label).text().toStdString(), text);
  EXPECT_FALSE(Find<QLabel>(properties, "lb_lastmodified").text().isEmpty());
  std::filesystem::remove(carrier.carrier);
  EXPECT_THROW(FrmProperties(*session, nullptr), Error);
}

TEST_F(OpenTest, WrongPasswordIsDeniedAndLeadsToANewHideout) {
  dialogue.script.Expect("open.no-password", Answer::Ok)
      .Expect("open.denied", Answer::No)
      .Expect("open.denied", Answer::Yes);
  Press(form, "Cmd_Ok");
  Enter("wrong");
  EXPECT_TRUE(Find<PasswordField>(form, "txt_Pass").IsEmpty());
  EXPECT_EQ(Tab(form), 0);
  EXPECT_FALSE(Find(form, "StatusContainer").isVisible());
  EXPECT_TRUE(Find(form, "Cmd_Ok").isEnabled());
  Enter("wrong");
  EXPECT_EQ(Tab(form), 1);
  EXPECT_TRUE(form.isVisible());
  EXPECT_TRUE(session->catalogue.Roots().empty());
}

TEST_F(OpenTest, NoKeyChangesTheSideWhileTrying) {
  std::set<int> sides;
  dialogue.script.onYield = [&](std::size_t) {
    QTest::keyClick(&Find(form, "txt_Pass"), Qt::Key_Tab, Qt::ControlModifier);
    sides.insert(Tab(form));
  };
  Enter("secret");
  EXPECT_EQ(sides, std::set<int>{0});
}

TEST_F(CarrierFormsTest, AClickOnATabFocusesTheFieldOfItsSide) {
  settings->DeleteSection("option");
  CarrierPass form(carrier.carrier, *session, dialogue, nullptr);
  form.show();
  form.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
  QTabBar& tabs = *Find<QTabWidget>(form, "TabStrip").tabBar();
  const std::pair<int, const char*> clicks[] = {{0, "txt_Pass"}, {1, "txt_hideout_titel"}, {0, "txt_Pass"}};
  for (const auto& [tab, field] : clicks) {
    QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(tab).center());
    QCoreApplication::processEvents();
    ASSERT_NE(QApplication::focusWidget(), nullptr) << tab;
    EXPECT_EQ(QApplication::focusWidget()->objectName().toStdString(), field);
  }
}

TEST_F(OpenTest, CancelWhileTryingStopsTheTriesAndOnlyThenLeaves) {
  bool wasLive = false;
  dialogue.script.onYield = [&](std::size_t) {
    wasLive = Find(form, "Cmd_Cancel").isEnabled() && !Find(form, "Cmd_Ok").isEnabled() &&
              Find(form, "StatusContainer").isVisible();
    Press(form, "Cmd_Cancel");
    form.close();
    EXPECT_TRUE(form.isVisible());
  };
  dialogue.script.Expect("open.denied", Answer::No);
  Enter("secret");
  EXPECT_TRUE(wasLive);
  EXPECT_TRUE(session->catalogue.Roots().empty());
  EXPECT_FALSE(session->guards.AbortReadingFlag);
  dialogue.script.onYield = nullptr;
  Press(form, "Cmd_Cancel");
  EXPECT_FALSE(form.isVisible());
  EXPECT_TRUE(form.Canceled());
}

TEST_F(CarrierFormsTest, CreatingChecksInOrderAndWritesNothing) {
  const std::string before = ReadAll(carrier.carrier);
  session->HideOpenRequested = true;
  CarrierPass form(carrier.carrier, *session, dialogue, nullptr);
  form.show();
  dialogue.script.Expect("create.no-password", Answer::Ok)
      .Expect("create.no-title", Answer::Ok)
      .Expect("create.confirmation", Answer::Ok);
  auto& title = Find<QLineEdit>(form, "txt_hideout_titel");
  EXPECT_EQ(title.text(), QStringLiteral("New Hideout"));
  Press(form, "Cmd_Ok");
  Type(form, "txt_pass2", "a<b>c");
  title.setText(QStringLiteral("  "));
  Press(form, "Cmd_Ok");
  title.clear();
  QTest::keyClicks(&title, QStringLiteral(" a/b\\c<d>e"));
  Press(form, "Cmd_Ok");
  Type(form, "txt_confirm", "abc");
  Find<QComboBox>(form, "Cmb_Encrypt").setCurrentIndex(5);
  Press(form, "Cmd_Ok");
  EXPECT_EQ(form.result(), QDialog::Accepted);
  EXPECT_EQ(session->SelectedNode()->text, " abcde") << "the leading blank stays";
  EXPECT_TRUE(session->current.CurrentPassword.IsOf(Secret("abc")));
  EXPECT_EQ(session->current.CurrentAlgorithmId, Algorithm::TripleDes);
  EXPECT_EQ(session->algorithmPanel, " TripleDES");
  EXPECT_EQ(ReadAll(carrier.carrier), before);
}

TEST_F(CarrierFormsTest, WeighsANewPasswordAndProposesOneThatIsShownUntilAnotherKeyIsTyped) {
  session->HideOpenRequested = true;
  CarrierPass form(carrier.carrier, *session, dialogue, nullptr);
  auto& field = Find<PasswordField>(form, "txt_pass2");
  const auto says = [&](const char* word) {
    return QTest::qWaitFor([&] { return Find<QLabel>(form, "StrengthWord").text() == QLatin1String(word); });
  };
  Type(form, "txt_pass2", "secret");
  EXPECT_TRUE(says("Weak"));
  Press(form, "Cmd_Propose");
  EXPECT_TRUE(says("Strong"));
  EXPECT_EQ(field.accessibleDescription(), QStringLiteral("Strength: Strong"));
  EXPECT_EQ(field.echoMode(), QLineEdit::Normal);
  const auto proposed = field.Password();
  EXPECT_EQ(std::ranges::count(proposed.View(), ' '), 5);
  Type(form, "txt_pass2", "x");
  EXPECT_EQ(field.echoMode(), QLineEdit::Password);
  QTest::keyClick(&field, Qt::Key_Backspace);
  EXPECT_EQ(field.Password(), proposed);
  field.Clear();
  EXPECT_TRUE(says(""));
}

TEST_F(CarrierFormsTest, ShowsTheAlgorithmThatIsChosenAndStartsWithRijndael) {
  CarrierPass form(carrier.carrier, *session, dialogue, nullptr);
  const auto& text = Find<QLabel>(form, "txt_Algorithm");
  EXPECT_EQ(Find<QComboBox>(form, "Cmb_Encrypt").currentText(), QStringLiteral("RIJNDAEL-256"));
  EXPECT_EQ(text.text(), QStringLiteral("- Block cipher: 256-bit block\n- Key length: 256 bits"));
  Find<QComboBox>(form, "Cmb_Encrypt").setCurrentIndex(2);
  EXPECT_EQ(text.text(), QStringLiteral("- Block cipher: 64-bit block\n- Key length: 56 bits"));
}

class CarrierFileTest : public CarrierFormsTest {
 protected:
  FrmCarrierFile form{*session, dialogue, files, [this](const Path& path) { passedOn.push_back(path); },
                      nullptr};
  std::vector<Path> passedOn;
};

TEST_F(CarrierFileTest, BrowsingRemembersTheFolderAndPassesTheFileOnByItsBytes) {
  const Path latin = temp.Put("caf\xe9.png", "x");
  files.answers = {latin};
  Press(form, "BrowseCmd");
  EXPECT_EQ(settings->Get("options", "Folder Open Last", ""), temp.Where());
  Press(form, "BrowseCmd");  // cancelled
  Press(form, "Command2");
  EXPECT_EQ(passedOn, std::vector<Path>{latin});
}

TEST_F(CarrierFileTest, StartsWhereTheSettingSaysIfThatFolderExists) {
  const Path there = temp.Where();
  const struct {
    const char* mode;
    Path specified;
    Path start;
  } cases[] = {{"1", there, ""}, {"3", there, there}, {"3", "/gone", ""}};
  for (const auto& [mode, specified, start] : cases) {
    settings->Set("options", "Folder Open", mode);
    settings->Set("options", "Folder Open Spec", specified.native());
    session->ReloadSettings();
    Press(form, "BrowseCmd");
    EXPECT_EQ(files.startFolder, start) << mode;
  }
}

TEST_F(CarrierFileTest, TellsWhetherTheFileThatIsNamedIsAGoodCarrier) {
  const auto says = [&](const char* front) {
    return QTest::qWaitFor(
        [&] { return Find<QLabel>(form, "lb_kind").text().startsWith(QLatin1String(front)); });
  };
  Find<QLineEdit>(form, "CarrierTxt").setText(QString::fromStdString(temp.Put("a.mp3", "GIF89a")));
  EXPECT_TRUE(says("GIF picture: a good carrier"));
  Find<QLineEdit>(form, "CarrierTxt").setText(QStringLiteral("/nowhere"));
  EXPECT_TRUE(QTest::qWaitFor([&] { return Find<QLabel>(form, "lb_kind").text().isEmpty(); }));
}

TEST_F(CarrierFileTest, RefusesNoNameAFolderAndAMissingFile) {
  for (const Path& bad : {Path(), temp.Where(), temp / "missing"}) {
    dialogue.script.Expect("carrier-file.none", Answer::Ok);
    Find<QLineEdit>(form, "CarrierTxt").setText(QString::fromStdString(bad.native()));
    Press(form, "Command2");
  }
  EXPECT_TRUE(passedOn.empty());
}

}  // namespace
}  // namespace tarnel::test
