#include "app/forms/program.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <fstream>

#include "app/instance_lock.h"
#include "tests/forms/forms_bench.h"
#include "tests/support/surroundings.h"

namespace tarnel::test {
namespace {

class ProgramTest : public testing::Test {
 protected:
  int Run(const Path& carrier, std::function<int()> runEvents) {
    return RunProgram(carrier, {.files = posix,
                                .settings = temp / "home/settings.ini",
                                .instancePlaces = places,
                                .window = {.dialogue = dialogue,
                                           .fileDialogs = files,
                                           .openOutside = [](const QUrl&) {},
                                           .openFile = {},
                                           .endProcess = [this] { isEnded = true; }},
                                .runEvents = std::move(runEvents)});
  }
  static bool IsMainShown() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [](const QWidget* each) {
      return each->objectName() == QLatin1String("Main") && each->isVisible();
    });
  }

  TempFolder temp;
  Variable ownTemp{"TMPDIR", temp.Where()};
  std::vector<Path> places = {temp / "run/tarnel.lock"};
  PosixFiles posix;
  Scripted<> dialogue;
  ChosenFiles files;
  ModalSteps modal;
  bool isEnded = false;
};

TEST_F(ProgramTest, ACarrierIsAskedAboutBeforeTheWindowIsSeen) {
  modal.On("CarrierPass", [](QWidget& form) {
    EXPECT_FALSE(IsMainShown());
    Press(form, "Cmd_Cancel");
  });
  const auto events = [this] {
    EXPECT_TRUE(InstanceLock(posix, places).IsOtherRunning());
    return IsMainShown() ? 7 : 0;
  };
  EXPECT_EQ(Run(temp.Put("carrier.png", "x"), events), 7);
  EXPECT_FALSE(isEnded);
}

TEST_F(ProgramTest, ASecondInstanceSaysSoGoesOnAndEnds) {
  const InstanceLock first(posix, places);
  dialogue.script.Expect("main.already-running", Answer::Ok);
  Run({}, [this] { return QTest::qWaitFor([this] { return isEnded; }) ? 0 : 1; });
  EXPECT_TRUE(isEnded);
}

TEST_F(ProgramTest, TheCommandLineIsOnePath) {
  const Path here = std::filesystem::current_path();
  EXPECT_EQ(CommandLinePath({"my", "holiday.png"}), here / "my holiday.png");
  EXPECT_EQ(CommandLinePath({"/a b/c.png"}), "/a b/c.png");
  EXPECT_EQ(CommandLinePath({}), "");
}

/// Whether the process has a lock on some file.
bool HoldsALock(qint64 process) {
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    if (line.find("FLOCK") != std::string::npos &&
        line.find(" " + std::to_string(process) + " ") != std::string::npos)
      return true;
  }
  return false;
}

TEST_F(ProgramTest, TheVeryFirstStartTakesTheLockWithoutARuntimeFolder) {
  QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
  for (const char* unset : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
    variables.remove(QLatin1String(unset));
  variables.insert(QStringLiteral("HOME"), QString::fromStdString(temp.Where().native()));
  QProcess program;
  program.setProcessEnvironment(variables);
  program.start(QStringLiteral(TARNEL_PROGRAM), QStringList());
  EXPECT_TRUE(QTest::qWaitFor([&program] { return HoldsALock(program.processId()); }, 30'000));
  EXPECT_TRUE(std::filesystem::exists(temp / ".config/tarnel/tarnel.lock"));
  program.kill();
  program.waitForFinished();
}

}  // namespace
}  // namespace tarnel::test
