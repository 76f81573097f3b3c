#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>

#include "app/choice.h"
#include "carrier/companions.h"
#include "formkit/file_table.h"
#include "retrieval/forms/frm_delete.h"
#include "tests/forms/forms_bench.h"
#include "tests/forms/session_bench.h"

namespace tarnel::test {
namespace {

/// A hideout with "a", "b" and, in a folder, "c", and the form over all of them.
class DeleteFormBench : public SessionBench {
 public:
  DeleteFormBench() {
    carrier.Hide({.name = "a"}).Hide({.name = "b"}).Hide({.name = "c", .folder = "docs\\"});
    Open();
    const Choice choice = ChoiceOf(session);
    form.emplace(session, person, DeleteList(choice.rows, session.catalogue, choice.carrier), nullptr);
    form->show();
    form->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&*form));
  }

  FileTable& List() { return Find<FileTable>(*form, "FileList"); }
  void Key(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
  /// Leaves nothing but the row of that name.
  void Keep(const char* name) {
    for (int row = List().model()->rowCount() - 1; row >= 0; --row) {
      const QModelIndex index = List().model()->index(row, 0);
      if (index.data().toString() != QLatin1String(name))
        List().model()->setData(index, Qt::Unchecked, Qt::CheckStateRole);
    }
  }

  std::optional<FrmDelete> form;
};

}  // namespace

TEST(FrmDelete, TakesRowsOffByKeysAndDeletesTheRest) {
  DeleteFormBench bench;
  bench.Key(Qt::Key_Space);
  EXPECT_EQ(bench.List().SelectedRows(), std::vector<std::size_t>{0});
  bench.List().setCurrentIndex(bench.List().model()->index(1, 2));
  bench.Key(Qt::Key_Space);
  EXPECT_EQ(Find<QLabel>(*bench.form, "Panel1").text(), QStringLiteral("Files: 1"));
  const std::string last = bench.List().currentIndex().data().toString().toStdString();
  bench.Key(Qt::Key_Tab);
  bench.Key(Qt::Key_Return);
  EXPECT_FALSE(bench.form->isVisible());
  const Strings names = bench.SessionNames();
  EXPECT_TRUE(names.size() == 2U && names == bench.CarrierNames());
  EXPECT_EQ(std::count(names.begin(), names.end(), last), 0);
}

TEST(FrmDelete, ReturnOnTheListAndAnEmptyListDeleteNothing) {
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Delete}) {
    DeleteFormBench bench;
    for (int row = 0; bench.form->isVisible() && row < 3; ++row)
      bench.Key(key);
    EXPECT_EQ(bench.form->isVisible(), key == Qt::Key_Delete);
    if (bench.form->isVisible()) Press(*bench.form, "Cmd_Delete");
    EXPECT_FALSE(bench.form->isVisible());
    EXPECT_EQ(bench.CarrierNames().size(), 3U);
  }
}

TEST(FrmDelete, WaitsForALockAndGivesUpAChoiceThatIsVoid) {
  DeleteFormBench bench;
  bench.Keep("b");
  auto other = bench.posix.OpenToChange(bench.carrier.carrier);
  other->Lock();
  bench.person.script.Expect("delete.error", Answer::Abort).Expect("delete.error", Answer::Retry);
  Press(*bench.form, "Cmd_Delete");
  EXPECT_TRUE(bench.form->isVisible());
  bench.person.script.onAsk = [&](const Question&) { other.reset(); };
  bench.person.script.Expect("delete.cancel", Answer::Yes);
  bench.onYield = [&](std::size_t) {
    bench.onYield = nullptr;
    bench.form->close();
  };
  Press(*bench.form, "Cmd_Delete");
  EXPECT_FALSE(bench.form->isVisible());
  EXPECT_EQ(bench.CarrierNames().size(), 3U);
  DeleteFormBench changed;
  changed.carrier.Hide({.name = "d"});
  changed.person.script.Expect("carrier.changed", Answer::Yes);
  Press(*changed.form, "Cmd_Delete");
  EXPECT_FALSE(changed.form->isVisible());
  EXPECT_EQ(changed.CarrierNames().size(), 4U);
  DeleteFormBench stopped;
  stopped.carrier.Hide({.name = "d"});
  stopped.person.script.Expect("carrier.changed", Answer::Yes);
  stopped.onYield = [](std::size_t) {
    if (QWidget* const reading = QApplication::activeModalWidget()) reading->close();
  };
  Press(*stopped.form, "Cmd_Delete");
  EXPECT_TRUE(stopped.form->isVisible()) << "the reading was given up";
}

class DeleteFormSweep : public testing::TestWithParam<Answer> {};

TEST_P(DeleteFormSweep, WhateverFailsSessionListAndCarrierAgree) {
  for (std::size_t k = 1;; ++k) {
    SCOPED_TRACE(k);
    DeleteFormBench bench;
    bench.Keep("b");
    for (const char* id : {"delete.error", "load.error", "carrier.error"})
      bench.person.script.Always(id, GetParam());
    for (const char* id : {"delete.not-replaced", "main.fault", "load.damage"})
      bench.person.script.Always(id, Answer::Ok);
    bench.files.Fail({.at = k, .writes = Writes::FirstHalf});
    Press(*bench.form, "Cmd_Delete");
    if (!bench.files.HasFailed()) {
      EXPECT_GT(k, 20U);
      return;
    }
    const Strings inCarrier = bench.CarrierNames();
    const bool isDeleted = inCarrier.size() == 2;
    EXPECT_EQ(inCarrier, isDeleted ? Strings({"a", "c"}) : Strings({"a", "b", "c"}));
    const bool isReadInPart = GetParam() != Answer::Retry && bench.WasAsked("load.error");
    EXPECT_TRUE(isReadInPart || bench.SessionNames() == inCarrier);
    EXPECT_TRUE(GetParam() != Answer::Retry || isDeleted || !bench.WasAsked("delete.error"));
    EXPECT_TRUE(bench.WasAsked("delete.not-replaced") ||
                !std::filesystem::exists(TemporaryCarrierPath(bench.carrier.carrier)));
    EXPECT_TRUE(!bench.form->isVisible() || Find<QPushButton>(*bench.form, "Cmd_Delete").isEnabled());
    bench.ExpectListAgreesWithCatalogue();
  }
}

INSTANTIATE_TEST_SUITE_P(All, DeleteFormSweep, testing::Values(Answer::Abort, Answer::Retry, Answer::Ignore));

}  // namespace tarnel::test
