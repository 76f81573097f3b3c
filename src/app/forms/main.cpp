#include <QApplication>
#include <QDesktopServices>
#include <QUrl>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "app/forms/program.h"
#include "app/instance_lock.h"
#include "base/core_dumps.h"
#include "base/size_limit.h"
#include "crypto/keys.h"
#include "formkit/dialogue_in_windows.h"
#include "formkit/guarded.h"
#include "formkit/icons.h"
#include "formkit/shell_open.h"

namespace {

void EndProcess() {
  tarnel::WipeAllKeys();
  std::_Exit(EXIT_SUCCESS);
}

int RunEvents() {
  QApplication::setQuitOnLastWindowClosed(true);
  return QApplication::exec();
}

void OpenOutside(const QUrl& url, tarnel::DesktopOpener& opener) {
  if (!opener.OpenPage(url)) QDesktopServices::openUrl(url);
}

int RunOnThisMachine(const std::vector<std::string>& arguments, tarnel::Dialogue& dialogue) {
  using namespace tarnel;
  PosixFiles files;
  TracelessFileDialogs fileDialogs;
  DesktopOpener opener(files);
  const int code =
      RunProgram(CommandLinePath(arguments),
                 {.files = files,
                  .settings = UserSettingsPath(),
                  .instancePlaces = InstanceLockPlaces(UserSettingsPath()),
                  .window = {.dialogue = dialogue,
                             .fileDialogs = fileDialogs,
                             .openOutside = [&opener](const QUrl& url) { OpenOutside(url, opener); },
                             .openFile = [&opener](const Path& path) { opener.Open(path); },
                             .endProcess = EndProcess},
                  .runEvents = RunEvents});
  WipeAllKeys();
  return code;
}

/// The two wishes that a terminal expects an answer to. Whatever else is there names a carrier.
bool AnswersOnTerminal(const std::vector<std::string>& arguments) {
  if (arguments.size() != 1) return false;
  const bool isVersion = arguments[0] == "--version";
  if (!isVersion && arguments[0] != "--help") return false;
  std::puts(
      isVersion
          ? "tarnel " TARNEL_VERSION
          : "Usage: tarnel [CARRIER]\n\nOpens the window; with a carrier its password is asked for first."
            "\nFor terminals and scripts there is tarnel-cli.");
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (AnswersOnTerminal({argv + std::min(argc, 1), argv + argc})) return EXIT_SUCCESS;
  tarnel::ForbidCoreDumps(tarnel::Dumpable::Kept);
  tarnel::SurviveFileSizeLimit();
  QApplication::setApplicationName(QStringLiteral("tarnel"));
  QApplication::setDesktopFileName(QStringLiteral("tarnel"));
  QApplication application(argc, argv);  // takes its own arguments away
  const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  QApplication::setWindowIcon(tarnel::OwnIcon("tarnel"));
  QApplication::setQuitOnLastWindowClosed(false);  // forms may come and go before the main window
  int code = EXIT_FAILURE;
  tarnel::DialogueInWindows dialogue;
  tarnel::Guarded(dialogue, [&] { code = RunOnThisMachine(arguments, dialogue); });
  return code;
}
