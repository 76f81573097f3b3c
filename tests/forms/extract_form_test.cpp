#include <gtest/gtest.h>

#include <QLineEdit>

#include "retrieval/forms/frm_extract.h"
#include "retrieval/forms/frm_extracting.h"
#include "shellint/forms/uc_directory_tree.h"
#include "tests/forms/fixed_places.h"
#include "tests/forms/forms_bench.h"
#include "tests/forms/session_bench.h"

namespace tarnel::test {
namespace {

/// An open hideout with two files, of which the first stands on the desktop already.
class ExtractFormBench : public SessionBench {
 public:
  ExtractFormBench() {
    carrier.Hide({.name = "a", .content = "new a"}).Hide({.name = "b", .content = "new b"});
    temp.Put("Desktop/a", "old a");
    Open();
  }

  /// As the command does; `choose` operates the first window.
  void Run(const std::function<void(QWidget&)>& choose) {
    modal.On("FrmExtract", [choose](QWidget& form) {
      EXPECT_TRUE(QTest::qWaitFor([&] { return Find(form, "Cmd_Extract").isEnabled(); }));
      choose(form);
    });
    if (answer) modal.On("FrmOverwrite", answer);
    FrmExtract form(session, person, ChoiceOf(session), std::make_unique<FixedPlaces>(temp),
                    std::make_unique<NoWatch>(), nullptr);
    if (const auto request = form.Ask()) FrmExtracting(session, person, *request, nullptr).exec();
  }

  std::string OnDesktop(const char* name) { return ReadAll(temp / "Desktop" / name); }

  ModalSteps modal;
  std::function<void(QWidget&)> answer;  ///< given in the window that asks about "a"
};

}  // namespace

TEST(FrmExtract, TheTreeFollowsWhatIsTypedAndTheTextIsNotRewritten) {
  ExtractFormBench bench;
  bench.temp.Put("Desktop/sub/x", "");
  const std::string sub = (bench.temp / "Desktop//sub").native();
  bench.Run([&](QWidget& form) {
    auto& tree = Find<ucDirectoryTree>(form, "DirTree");
    auto& text = Find<QLineEdit>(form, "Txt_ExtractTo");
    EXPECT_EQ(text.text().toStdString(), (bench.temp / "Desktop/").native());
    text.clear();
    bench.person.script.Expect("extract.refused", Answer::Ok);
    Type(form, "Txt_ExtractTo", (bench.temp / "Desktop/a").c_str());
    QTest::keyClick(&text, Qt::Key_Return);
    EXPECT_TRUE(form.isVisible()) << "a file takes no files";
    text.clear();
    Type(form, "Txt_ExtractTo", sub.c_str());
    EXPECT_TRUE(QTest::qWaitFor([&] { return tree.Path() == bench.temp / "Desktop/sub/"; }));
    EXPECT_EQ(text.text().toStdString(), sub);
    QTest::keyClick(&text, Qt::Key_Return);
  });
  EXPECT_EQ(bench.OnDesktop("sub/a"), "new a");
  EXPECT_EQ(bench.OnDesktop("sub/b"), "new b");
}

TEST(FrmExtract, AnExistingFileIsReplacedOnlyForAYes) {
  const auto press = [](Qt::Key key) { return [key](QWidget& form) { QTest::keyClick(&form, key); }; };
  const std::pair<std::function<void(QWidget&)>, bool> cases[] = {
      {press(Qt::Key_Escape), false},
      {press(Qt::Key_Return), false},
      {[](QWidget& form) { Press(form, "Cmd_Yes"); }, true},
      {[](QWidget& form) { Press(form, "Cmd_all"); }, true}};
  for (const auto& [answer, isReplaced] : cases) {
    ExtractFormBench bench;
    bench.answer = answer;
    if (!isReplaced) bench.person.script.Expect("extract.report", Answer::Ok);
    bench.Run([](QWidget& form) { Press(form, "Cmd_Extract"); });
    EXPECT_EQ(bench.OnDesktop("a"), isReplaced ? "new a" : "old a");
    EXPECT_EQ(bench.OnDesktop("b"), "new b");
  }
}

class ExtractFormSweep : public testing::TestWithParam<Answer> {};

TEST_P(ExtractFormSweep, WhateverFailsNoFileIsHalfAndTheCarrierStays) {
  for (std::size_t k = 1;; ++k) {
    SCOPED_TRACE(k);
    ExtractFormBench bench;
    const std::string before = ReadAll(bench.carrier.carrier);
    for (const char* id : {"extract.error", "carrier.error"})
      bench.person.script.Always(id, GetParam());
    for (const char* id : {"extract.report", "extract.refused"})
      bench.person.script.Always(id, Answer::Ok);
    bench.Run([&](QWidget& form) {
      Find<QAbstractButton>(form, "Chk_Overwrite").setChecked(true);
      bench.files.Fail({.at = k, .writes = Writes::FirstHalf});
      Press(form, "Cmd_Extract");
      if (form.isVisible()) Press(form, "Cmd_Cancel");
    });
    const bool isHeard = !bench.person.script.Asked().empty();
    EXPECT_TRUE(bench.OnDesktop("a") == "new a" || (isHeard && bench.OnDesktop("a") == "old a"));
    const bool isThere = std::filesystem::exists(bench.temp / "Desktop/b");
    EXPECT_TRUE(isThere ? bench.OnDesktop("b") == "new b" : isHeard);
    EXPECT_EQ(ReadAll(bench.carrier.carrier), before);
    bench.ExpectListAgreesWithCatalogue();
    if (bench.files.HasFailed()) continue;
    EXPECT_TRUE(!isHeard && k > 20) << k;
    return;
  }
}

INSTANTIATE_TEST_SUITE_P(All, ExtractFormSweep,
                         testing::Values(Answer::Abort, Answer::Retry, Answer::Ignore));

}  // namespace tarnel::test
