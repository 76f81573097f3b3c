#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QTreeView>
#include <atomic>
#include <thread>

#include "formkit/file_table.h"
#include "search/forms/frm_find.h"
#include "shellint/forms/uc_directory_tree.h"
#include "tests/forms/fixed_places.h"
#include "tests/forms/forms_bench.h"
#include "tests/forms/session_bench.h"
#include "tests/support/held_key.h"

namespace tarnel::test {
namespace {

/// The search window over a desktop with carriers under "secret".
class FindFormBench : public SessionBench {
 public:
  FindFormBench() {
    HeldKey("secret");
    temp.Put("Desktop/none.png", Pattern(300));
  }

  void Put(const std::string& name) {
    carrier.carrier = carrier.folder.Put("c.png", Pattern(300));
    carrier.Hide({.name = "a"});
    temp.Put("Desktop/" + name, ReadAll(carrier.carrier));
  }

  void Show() {
    auto* const made = new FrmFind(
        session, person,
        {.passGate = [this] { return isGateOpen; }, .open = [this](const Path& path) { opened = path; }},
        std::make_unique<FixedPlaces>(temp), std::make_unique<NoWatch>(), nullptr);
    form = made;
    made->show();
    EXPECT_TRUE(QTest::qWaitFor([this] { return Button("Cmd_Search").isEnabled(); }));
    Type(*made, "txt_Pass", "secret");
  }
  ~FindFormBench() { delete form; }

  FrmFind& Form() {
    FrmFind* const shown = form;
    if (shown == nullptr) throw std::runtime_error("the form is gone");
    return *shown;
  }
  QAbstractButton& Button(const char* name) { return Find<QAbstractButton>(Form(), name); }
  FileTable& List() { return Find<FileTable>(Form(), "FileList"); }
  int Rows() { return List().model()->rowCount(); }
  std::string Text(const char* label) { return Find<QLabel>(Form(), label).text().toStdString(); }
  void Search() { QTest::keyClick(&Find(Form(), "txt_Pass"), Qt::Key_Return); }

  bool isGateOpen = true;
  Path opened;
  QPointer<FrmFind> form;
};

}  // namespace

TEST(FrmFind, ShowsResultsWhileItRunsAndGoesOnAfterACancel) {
  FindFormBench bench;
  bench.Put("a.png");
  bench.Put("b.png");
  bench.Put("c.png");
  bench.Show();
  QPersistentModelIndex chosen;
  bench.onYield = [&](std::size_t) {
    if (bench.Rows() == 1) chosen = bench.List().model()->index(0, 0);
    if (bench.Rows() == 1) bench.List().setCurrentIndex(chosen);
    if (bench.Rows() < 2) return;
    bench.onYield = nullptr;
    EXPECT_FALSE(bench.Button("Cmd_Search").isEnabled());
    EXPECT_EQ(bench.List().currentIndex(), chosen);
    bench.Form().close();
    EXPECT_TRUE(bench.Form().isVisible());
  };
  bench.Search();
  EXPECT_EQ(bench.Text("Panel1"), "2 File(s) found. ");
  EXPECT_EQ(bench.Text("Panel2"), "");
  bench.Search();
  EXPECT_EQ(bench.Text("Panel1"), "3 File(s) found. ");
  EXPECT_EQ(bench.List().model()->index(2, 0).data().toString(), QStringLiteral("c.png"));
  bench.Form().close();
  EXPECT_TRUE(QTest::qWaitFor([&] { return bench.form.isNull(); }));
}

TEST(FrmFind, AsksForThePasswordOfALockedProgramBeforeItSearchesOrOpens) {
  FindFormBench bench;
  bench.Put("a.png");
  bench.Show();
  bench.isGateOpen = false;
  bench.Search();
  EXPECT_EQ(bench.Rows(), 0);
  bench.isGateOpen = true;
  bench.Search();
  ASSERT_EQ(bench.Rows(), 1);
  bench.List().setCurrentIndex(bench.List().model()->index(0, 0));
  bench.isGateOpen = false;
  QTest::keyClick(&bench.List(), Qt::Key_Return);
  EXPECT_EQ(bench.opened, Path());
  bench.isGateOpen = true;
  QTest::keyClick(&bench.List(), Qt::Key_Return);
  EXPECT_EQ(bench.opened, bench.temp / "Desktop/a.png");
}

TEST(FrmFind, AControlThatIsChangedMeanwhileCountsFromTheNextFileOnAndUnreadFilesAreListed) {
  FindFormBench bench;
  bench.Put("a.png");
  bench.Put("b.png");
  bench.Put("c.jpg");
  bench.Show();
  bench.files.Fail({.times = Times::FromThenOn, .counts = [](const Operation& operation) {
                      return operation.path.filename() == "none.png";
                    }});
  bench.onYield = [&](std::size_t) {
    if (bench.Rows() == 1) Find<QComboBox>(bench.Form(), "Cmb_Type").setCurrentIndex(3);
  };
  bench.Search();
  EXPECT_EQ(bench.Rows(), 2);
  EXPECT_FALSE(bench.Button("NotSearched").isVisible());
  Find<QComboBox>(bench.Form(), "Cmb_Type").setCurrentIndex(0);
  bench.onYield = nullptr;
  bench.Search();
  EXPECT_EQ(bench.Rows(), 3);
  ASSERT_TRUE(bench.Button("NotSearched").isVisible());
  bench.person.script.Expect("search.not-searched", Answer::Ok);
  bench.Button("NotSearched").click();
}

TEST(FrmFind, AFolderThatAnswersSlowlyLeavesTheWindowAliveAndLeavingStopsTheSearch) {
  FindFormBench bench;
  bench.Put("a.png");
  bench.Show();
  std::atomic<int> turns = 0;
  QTimer ticking;
  QObject::connect(&ticking, &QTimer::timeout, [&] { ++turns; });
  ticking.start(1);
  std::atomic<bool> isStill = false, hasLeft = false;
  bench.files.before = [&](const Operation& operation) {
    if (operation.name != "Files.List" && operation.name != "Files.OpenToRead") return;
    EXPECT_FALSE(hasLeft) << operation.name;
    const int before = turns;
    for (int waited = 0; turns == before && !isStill; ++waited) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      isStill = waited > 5000;
    }
  };
  bench.Search();
  EXPECT_FALSE(isStill);
  EXPECT_EQ(bench.Rows(), 1);
  bench.onYield = [&](std::size_t) {
    bench.onYield = nullptr;
    bench.Form().Leave();
    EXPECT_FALSE(bench.Form().isVisible());
    hasLeft = true;
  };
  bench.Search();
  EXPECT_TRUE(QTest::qWaitFor([&] { return bench.form.isNull(); }));
}

TEST(FrmFind, IsOneWindowOfTheProgramWhoseResultsOpenAndWhichGoesWithTheMainWindow) {
  FindFormBench carriers;
  carriers.Put("a.png");
  FormsBench bench;
  bench.Trigger("Menu_Find_Carrier");
  auto* const form = bench.window->findChild<FrmFind*>();
  ASSERT_NE(form, nullptr);
  EXPECT_TRUE(form->isVisible());
  EXPECT_FALSE(form->isModal());
  bench.Trigger("Menu_Find_Carrier");
  EXPECT_EQ(bench.window->findChildren<FrmFind*>().size(), 1);
  ASSERT_TRUE(QTest::qWaitFor([&] { return Find<QAbstractButton>(*form, "Cmd_Search").isEnabled(); }));
  Find<ucDirectoryTree>(*form, "DirTree").SetPath(carriers.temp / "Desktop");
  Type(*form, "txt_Pass", "secret");
  Press(*form, "Cmd_Search");
  auto& list = Find<FileTable>(*form, "FileList");
  ASSERT_EQ(list.model()->rowCount(), 1);
  bench.modal.On("CarrierPass", [](QWidget& pass) { pass.close(); });
  const QPoint row = list.visualRect(list.model()->index(0, 0)).center();
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, row);
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, row);
  EXPECT_TRUE(QTest::qWaitForWindowActive(form));
  bench.window->close();
  EXPECT_TRUE(QTest::qWaitFor([&] { return bench.window->findChildren<FrmFind*>().isEmpty(); }));
}

}  // namespace tarnel::test
