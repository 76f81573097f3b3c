#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>

#include "app/forms/step_by_step.h"
#include "tests/forms/forms_bench.h"

namespace tarnel::test {
namespace {

class GuideTest : public testing::Test, public FormsBench {
 protected:
  StepbyStep& Guide() { return Find<StepbyStep>(*window, "StepbyStep"); }
  std::string Page() {
    return Guide().findChild<QStackedWidget*>()->currentWidget()->objectName().toStdString();
  }
  void Open() {
    window->show();
    Trigger("Menu_Quickstart");
    EXPECT_TRUE(QTest::qWaitForWindowActive(&Guide()));
  }
  void PressKey(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
};

TEST_F(GuideTest, IsReadFromStartToEndByTheKeyboard) {
  Open();
  for (const char* page : {"HideFilesFrame_1", "HideFilesFrame_2", "HideFilesFrame_3", "HideFilesFrame_3"}) {
    PressKey(Qt::Key_Right);
    EXPECT_EQ(Page(), page);
  }
  EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("LB_ExtractFilesShow"));
  PressKey(Qt::Key_Space);
  EXPECT_EQ(Page(), "ExtractFilesFrame_0");
  EXPECT_EQ(Find<QLabel>(Guide(), "Titel").text(), QStringLiteral("Retrieve Hidden Files and Folders..."));
  for (const char* page : {"ExtractFilesFrame_1", "ExtractFilesFrame_2", "ExtractFilesFrame_3"}) {
    PressKey(Qt::Key_Space);
    EXPECT_EQ(Page(), page);
    EXPECT_FALSE(QApplication::focusWidget()->accessibleDescription().isEmpty());
  }
  PressKey(Qt::Key_Left);
  EXPECT_EQ(Page(), "ExtractFilesFrame_2");
}

TEST_F(GuideTest, OnlyOkWithTheBoxTickedIsRemembered) {
  const auto shows = [this] { return settings->Get("StepbyStep", "Show", "unset"); };
  const std::string before = shows();
  Open();
  Press(Guide(), "Cmd_Ok");
  EXPECT_EQ(shows(), before);
  QTest::qWait(0);
  Open();
  Press(Guide(), "Check1");
  Trigger("Menu_Quickstart");
  EXPECT_FALSE(Find<QCheckBox>(Guide(), "Check1").isChecked());
  Press(Guide(), "Check1");
  Press(Guide(), "Cmd_Ok");
  EXPECT_EQ(shows(), "No");
}

TEST_F(GuideTest, ComesByItselfOnceNoOtherFormIsInTheWay) {
  settings->Set("StepbyStep", "Show", "Yes");
  window->show();
  window->ShowGuideSoon();
  EXPECT_TRUE(QTest::qWaitFor([this] { return window->findChild<StepbyStep*>() != nullptr; }));
}

TEST_F(GuideTest, F1OpensTheManualAtTheWindowsSection) {
  const QString page = QCoreApplication::applicationDirPath() + QStringLiteral("/doc/manual/index.html");
  ASSERT_TRUE(QDir().mkpath(QFileInfo(page).path()));
  QFile file(page);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  Open();
  PressKey(Qt::Key_F1);
  EXPECT_EQ(opened.fragment(), QStringLiteral("StepbyStep"));
  EXPECT_EQ(opened.toLocalFile(), page);
  modal.On("FrmLock", [](QWidget& form) {
    QTest::keyClick(&Find(form, "Text1"), Qt::Key_F1);
    Press(form, "Cmd_Cancel");
  });
  Trigger("menu_lock");
  EXPECT_EQ(opened.fragment(), QStringLiteral("FrmLock"));
  Trigger("Menu_Contents");
  EXPECT_EQ(opened.fragment(), QString());
  file.remove();
}

}  // namespace
}  // namespace tarnel::test
