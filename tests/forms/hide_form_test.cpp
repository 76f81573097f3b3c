#include <gtest/gtest.h>

#include <QLabel>
#include <QRadioButton>

#include "carrier/companions.h"
#include "formkit/file_table.h"
#include "hiding/forms/frm_hide.h"
#include "shellint/forms/uc_directory_tree.h"
#include "tests/forms/fixed_places.h"
#include "tests/forms/forms_bench.h"
#include "tests/forms/session_bench.h"

namespace tarnel::test {
namespace {

const std::string kStrange = "b\xff.txt";

/// A session with an open hideout that holds "old", and the wizard over a folder with two files.
class HideFormBench : public SessionBench {
 public:
  HideFormBench() {
    carrier.Hide({.name = "old", .content = "1"});
    temp.Put("Desktop/a.txt", "content of a");
    temp.Put("Desktop/" + kStrange, "content of b");
    Open();
    form.emplace(
        session, person, [](const Path&) {}, std::make_unique<FixedPlaces>(temp), std::make_unique<NoWatch>(),
        nullptr);
    form->show();
    form->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&*form));
    EXPECT_TRUE(QTest::qWaitFor([this] { return Button("Cmd_Hide").isEnabled(); }));
  }

  QAbstractButton& Button(const char* name) { return Find<QAbstractButton>(*form, name); }
  FileTable& List(const char* name) { return Find<FileTable>(*form, name); }
  std::string Text(const char* label) { return Find<QLabel>(*form, label).text().toStdString(); }

  /// Collects the rows of the folder by keys alone.
  void CollectAll() {
    FileTable& list = List("ExplorerFile");
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&*form, Qt::Key_N, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return Button("Cmd_Next").isEnabled(); }));
  }

  std::optional<FrmHide> form;
};

}  // namespace

TEST(FrmHide, HidesWhatWasChosenByKeysByteForByte) {
  HideFormBench bench;
  EXPECT_EQ(bench.List("ExplorerFile").model()->rowCount(), 2);
  bench.CollectAll();
  EXPECT_EQ(bench.Text("Panel1"), "Files: 2");
  EXPECT_TRUE(bench.Button("Cmd_Next").hasFocus());
  QTest::keyClick(&bench.Button("Cmd_Next"), Qt::Key_Space);
  EXPECT_FALSE(bench.form->isVisible());
  EXPECT_EQ(bench.SessionNames(), (Strings{"a.txt", kStrange, "old"}));
  EXPECT_EQ(bench.SessionNames(), bench.CarrierNames());
  EXPECT_TRUE(std::filesystem::exists(bench.temp / "Desktop/a.txt"));
}

TEST(FrmHide, ACancelInTheMiddleAsksAndLeavesTheOldCarrier) {
  HideFormBench bench;
  const std::string before = ReadAll(bench.carrier.carrier);
  bench.CollectAll();
  bench.person.script.Expect("hide.cancel", Answer::Yes);
  bench.onYield = [&](std::size_t) {
    bench.onYield = nullptr;
    bench.form->close();
    EXPECT_TRUE(bench.form->isVisible());
  };
  bench.Button("Cmd_Next").click();
  EXPECT_EQ(bench.person.script.Asked().size(), 1U);
  EXPECT_EQ(ReadAll(bench.carrier.carrier), before);
  EXPECT_EQ(bench.SessionNames(), Strings{"old"});
  EXPECT_FALSE(bench.form->isVisible());
}

TEST(FrmHide, AddsMoreKeepsRowsOnceAndForgetsThemOnTheWayBack) {
  HideFormBench bench;
  bench.CollectAll();
  Find<QRadioButton>(*bench.form, "opt_recyclebin").click();
  Press(*bench.form, "Cmd_Addmore");
  EXPECT_TRUE(Find<QRadioButton>(*bench.form, "opt_nodeletion").isChecked());
  bench.CollectAll();
  EXPECT_EQ(bench.List("Files").model()->rowCount(), 2);
  bench.List("Files").selectAll();
  QTest::keyClick(&bench.List("Files"), Qt::Key_Delete);
  EXPECT_EQ(bench.Text("Panel1"), "Files: 0");
  bench.person.script.Expect("hide.no-files", Answer::Ok);
  Press(*bench.form, "Cmd_Next");
  EXPECT_TRUE(bench.List("ExplorerFile").isVisible());
  EXPECT_EQ(bench.Text("Panel1"), "");
  bench.CollectAll();
  bench.person.script.Expect("hide.delete-originals", Answer::No);
  Find<QRadioButton>(*bench.form, "opt_deletion").click();
  EXPECT_TRUE(Find<QRadioButton>(*bench.form, "opt_nodeletion").isChecked());
}

TEST(FrmHide, ARefusalIsAskedAboutAndLeadsBackToTheOptions) {
  HideFormBench bench;
  bench.CollectAll();
  bench.temp.Put("x", "");
  std::ofstream(BackupPath(bench.carrier.carrier)) << "mine";
  bench.person.script.Expect("carrier.leftovers", Answer::No);
  Press(*bench.form, "Cmd_Next");
  std::filesystem::remove(BackupPath(bench.carrier.carrier));
  const auto other = bench.posix.OpenToChange(bench.carrier.carrier);
  other->Lock();
  bench.person.script.Expect("hide.error", Answer::Abort);
  Press(*bench.form, "Cmd_Next");
  EXPECT_TRUE(bench.form->isVisible());
  EXPECT_TRUE(bench.Button("Cmd_Next").isEnabled());
  EXPECT_EQ(bench.SessionNames(), Strings{"old"});
}

class HideFormSweep : public testing::TestWithParam<Answer> {};

TEST_P(HideFormSweep, WhateverFailsSessionAndCarrierAgree) {
  for (std::size_t k = 1;; ++k) {
    SCOPED_TRACE(k);
    HideFormBench bench;
    bench.List("ExplorerFile").selectAll();
    bench.List("ExplorerFile").setFocus();
    Press(*bench.form, "Cmd_Hide");
    Find<QRadioButton>(*bench.form, "opt_deletion").setChecked(true);
    for (const char* id : {"hide.error", "load.error", "destroy.error", "remove.error"})
      bench.person.script.Always(id, GetParam());
    for (const char* id : {"hide.report", "main.fault", "load.damage"})
      bench.person.script.Always(id, Answer::Ok);
    bench.files.Fail({.at = k, .writes = Writes::FirstHalf});
    Press(*bench.form, "Cmd_Next");
    if (!bench.files.HasFailed()) {
      EXPECT_GT(k, 20U);
      return;
    }
    const bool readInPart = GetParam() != Answer::Retry && bench.WasAsked("load.error");
    const Strings inCarrier = bench.CarrierNames();
    EXPECT_TRUE(readInPart || bench.SessionNames() == inCarrier);
    for (const std::string& name : bench.SessionNames())
      EXPECT_TRUE(std::count(inCarrier.begin(), inCarrier.end(), name) > 0) << name;
    for (const char* name : {"a.txt", "old"}) {
      const bool isHidden = std::count(inCarrier.begin(), inCarrier.end(), name) > 0;
      EXPECT_TRUE(isHidden || std::filesystem::exists(bench.temp / "Desktop" / name) ||
                  std::filesystem::exists(BackupPath(bench.carrier.carrier)))
          << name;
    }
    bench.ExpectListAgreesWithCatalogue();
  }
}

INSTANTIATE_TEST_SUITE_P(All, HideFormSweep, testing::Values(Answer::Abort, Answer::Retry, Answer::Ignore));

}  // namespace tarnel::test
