#include <QApplication>
#include <QDesktopServices>
#include <QTimer>
#include <QUrl>
#include <cstdlib>

#include "app/forms/file_list_model.h"
#include "app/forms/main_window.h"
#include "app/instance_lock.h"
#include "app/questions.h"
#include "base/core_dumps.h"
#include "base/size_limit.h"
#include "crypto/keys.h"
#include "formkit/dialogue_in_windows.h"
#include "formkit/guarded.h"
#include "formkit/icons.h"

namespace {

constexpr int kEndDelay = 50;

void EndProcess() {
  tarnel::ForgetKeys();
  std::_Exit(EXIT_SUCCESS);
}

/// The whole command line is one path, blanks included. A hideout is known by its carrier's path, so that a
/// relative one would be another carrier than the same file chosen in a dialog.
tarnel::Path CommandLinePath(int argc, char** argv) {
  std::string line;
  for (int i = 1; i < argc; ++i)
    line += (i > 1 ? " " : "") + std::string(argv[i]);
  return line.empty() ? tarnel::Path() : std::filesystem::absolute(line);
}

int RunProgram(int argc, char** argv) {
  using namespace tarnel;
  PosixFiles files;
  SettingsFile settings(files, UserSettingsPath());
  const InstanceLock instance(files, InstanceLockPath(UserSettingsPath()));
  DialogueInWindows dialogue;
  TracelessFileDialogs fileDialogs;
  if (instance.IsOtherRunning()) {
    dialogue.Ask(AlreadyRunningMessage());
    QTimer::singleShot(kEndDelay, EndProcess);
  }
  Session session(files, settings, TypeTextOf);
  MainWindow window(session, {.dialogue = dialogue,
                              .fileDialogs = fileDialogs,
                              .openOutside = [](const QUrl& url) { QDesktopServices::openUrl(url); },
                              .endProcess = EndProcess});
  window.StartWith(CommandLinePath(argc, argv));
  window.show();
  QApplication::setQuitOnLastWindowClosed(true);
  const int code = QApplication::exec();
  ForgetKeys();
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  tarnel::ForbidCoreDumps(tarnel::Dumpable::Kept);
  tarnel::SurviveFileSizeLimit();
  QApplication::setApplicationName(QStringLiteral("tarnel"));
  QApplication::setDesktopFileName(QStringLiteral("tarnel"));
  QApplication application(argc, argv);
  QApplication::setWindowIcon(tarnel::OwnIcon("tarnel"));
  QApplication::setQuitOnLastWindowClosed(false);  // forms may come and go before the main window
  int code = EXIT_FAILURE;
  tarnel::DialogueInWindows dialogue;
  tarnel::Guarded(dialogue, [&] { code = RunProgram(argc, argv); });
  return code;
}
