#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QTabWidget>

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
  }

  QTabWidget& Tabs(QWidget& form) { return Find<QTabWidget>(form, "TabStrip"); }
  void OpenSide() { settings->Set("option", "Tabs", "1"); }

  CarrierBench carrier;
};

TEST_F(CarrierFormsTest, FirstUseStartsWithCreatingAndLaterOnesWithOpening) {
  EXPECT_EQ(Tabs(*std::make_unique<CarrierPass>(carrier.carrier, *session, dialogue, nullptr)).currentIndex(),
            1);
  CarrierPass form(carrier.carrier, *session, dialogue, nullptr);
  dialogue.script.Expect("create.no-password", Answer::Ok);
  Press(form, "Cmd_Ok");
  EXPECT_EQ(settings->Get("option", "Tabs", ""), "1") << "written by each OK, whatever comes of it";
  CarrierPass again(carrier.carrier, *session, dialogue, nullptr);
  EXPECT_EQ(Tabs(again).currentIndex(), 0);
  session->HideOpenRequested = true;
  CarrierPass hiding(carrier.carrier, *session, dialogue, nullptr);
  EXPECT_EQ(Tabs(hiding).currentIndex(), 1);
}

TEST_F(CarrierFormsTest, RightPasswordOpensTheHideoutBehindForeignEntries) {
  OpenSide();
  CarrierPass form(carrier.carrier, *session, dialogue, nullptr);
  form.show();
  Type(form, "txt_Pass", "secret");
  Press(form, "Cmd_Ok");
  EXPECT_EQ(form.result(), QDialog::Accepted);
  EXPECT_EQ(session->filesPanel, "2 File(s) ");
  EXPECT_EQ(session->algorithmPanel, " RIJNDAEL-256");
  ASSERT_NE(session->SelectedNode(), nullptr);
  EXPECT_EQ(session->fileList.Rows().size(), 2U);
}

TEST_F(CarrierFormsTest, WrongPasswordIsDeniedAndLeadsToANewHideout) {
  OpenSide();
  CarrierPass form(carrier.carrier, *session, dialogue, nullptr);
  form.show();
  dialogue.script.Expect("open.no-password", Answer::Ok)
      .Expect("open.denied", Answer::No)
      .Expect("open.denied", Answer::Yes);
  Press(form, "Cmd_Ok");
  Type(form, "txt_Pass", "wrong");
  Press(form, "Cmd_Ok");
  EXPECT_TRUE(Find<PasswordField>(form, "txt_Pass").IsEmpty());
  EXPECT_EQ(Tabs(form).currentIndex(), 0);
  EXPECT_FALSE(Find(form, "StatusContainer").isVisible());
  EXPECT_TRUE(Find(form, "Cmd_Ok").isEnabled());
  Type(form, "txt_Pass", "wrong");
  Press(form, "Cmd_Ok");
  EXPECT_EQ(Tabs(form).currentIndex(), 1);
  EXPECT_TRUE(form.isVisible());
  EXPECT_TRUE(session->catalogue.Roots().empty());
}

TEST_F(CarrierFormsTest, CancelWhileTryingStopsTheTriesAndOnlyThenLeaves) {
  OpenSide();
  CarrierPass form(carrier.carrier, *session, dialogue, nullptr);
  form.show();
  Type(form, "txt_Pass", "secret");
  bool wasLive = false;
  dialogue.script.onYield = [&](std::size_t) {
    wasLive = Find(form, "Cmd_Cancel").isEnabled() && !Find(form, "Cmd_Ok").isEnabled() &&
              Find(form, "StatusContainer").isVisible();
    Press(form, "Cmd_Cancel");
    form.close();
    EXPECT_TRUE(form.isVisible());
  };
  dialogue.script.Expect("open.denied", Answer::No);
  Press(form, "Cmd_Ok");
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
  EXPECT_TRUE(session->current.CurrentPassword == Secret("abc"));
  EXPECT_EQ(session->current.CurrentAlgorithmId, Algorithm::TripleDes);
  EXPECT_EQ(session->algorithmPanel, " TripleDES");
  EXPECT_EQ(ReadAll(carrier.carrier), before);
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

TEST_F(CarrierFileTest, BrowsingRemembersTheFolderAndPassesTheFileOn) {
  files.answers = {carrier.carrier, std::nullopt};
  Press(form, "BrowseCmd");
  EXPECT_EQ(settings->Get("options", "Folder Open Last", ""), carrier.folder.Where());
  Press(form, "BrowseCmd");
  EXPECT_EQ(Find<QLineEdit>(form, "CarrierTxt").text().toStdString(), carrier.carrier) << "cancelled";
  Press(form, "Command2");
  EXPECT_EQ(passedOn, std::vector<Path>{carrier.carrier});
}

TEST_F(CarrierFileTest, StartsWhereTheSettingSaysIfThatFolderExists) {
  struct Case {
    const char* mode;
    Path specified;
    Path start;
  };
  const Path there = temp.Where();
  for (const Case& each : {Case{"1", there, ""}, {"2", there, ""}, {"3", there, there}, {"3", "/gone", ""}}) {
    settings->Set("options", "Folder Open", each.mode);
    settings->Set("options", "Folder Open Spec", each.specified.native());
    session->ReloadSettings();
    Press(form, "BrowseCmd");
    EXPECT_EQ(files.startFolder, each.start) << each.mode;
  }
}

TEST_F(CarrierFileTest, RefusesNoNameAFolderAndAMissingFile) {
  for (const Path& bad : {Path(), temp.Where(), temp / "missing"}) {
    dialogue.script.Expect("carrier-file.none", Answer::Ok);
    Find<QLineEdit>(form, "CarrierTxt").setText(QString::fromStdString(bad.native()));
    Press(form, "Command2");
  }
  EXPECT_TRUE(passedOn.empty());
}

TEST_F(CarrierFormsTest, PropertiesShowWhatIsKnownOfTheCarrier) {
  OpenSide();
  CarrierPass opening(carrier.carrier, *session, dialogue, nullptr);
  Type(opening, "txt_Pass", "secret");
  Press(opening, "Cmd_Ok");
  FrmProperties form(*session, nullptr);
  form.resize(600, 400);
  form.show();
  EXPECT_EQ(Find<QLabel>(form, "lb_name").text(), QStringLiteral("carrier.bin"));
  EXPECT_EQ(Find<QLabel>(form, "lb_path").text().toStdString(), carrier.folder.Where());
  EXPECT_EQ(Find<QLabel>(form, "lb_size").text().toStdString(),
            GroupedKilobytes(static_cast<double>(carrier.Size())) + " KB");
  EXPECT_EQ(Find<QLabel>(form, "lb_files").text(), QStringLiteral("2"));
  EXPECT_EQ(Find<QLabel>(form, "lb_algorithm").text(), QStringLiteral("RIJNDAEL-256"));
  EXPECT_FALSE(Find<QLabel>(form, "lb_lastmodified").text().isEmpty());
  std::filesystem::remove(carrier.carrier);
  EXPECT_THROW(FrmProperties(*session, nullptr), Error);
}

}  // namespace
}  // namespace tarnel::test
