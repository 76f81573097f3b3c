#include "app/forms/program.h"

#include <QTimer>

#include "app/forms/main_window.h"
#include "app/instance_lock.h"
#include "app/questions.h"
#include "formkit/guarded.h"
#include "formkit/type_icons.h"
#include "retrieval/left_previews.h"

namespace tarnel {

namespace {

constexpr int kEndDelay = 50;

}  // namespace

int RunProgram(const Path& carrier, const ProgramPorts& ports) {
  SettingsFile settings(ports.files, ports.settings);
  const InstanceLock instance(ports.files, ports.instancePlaces);
  if (instance.IsOtherRunning()) {
    ports.window.dialogue.Ask(AlreadyRunningMessage());
    QTimer::singleShot(kEndDelay, ports.window.endProcess);
  }
  Session session(ports.files, settings, TypeTextOf);
  if (!instance.IsOtherRunning())
    Guarded(ports.window.dialogue, [&] { OfferLeftPreviews(ports.window.dialogue, ports.files); });
  MainWindow window(session, ports.window);
  window.StartWith(carrier);
  window.show();
  window.ShowGuideSoon();
  return ports.runEvents();
}

Path CommandLinePath(const std::vector<std::string>& arguments) {
  std::string line;
  for (std::size_t i = 0; i < arguments.size(); ++i)
    line += (i > 0 ? " " : "") + arguments[i];
  return line.empty() ? Path() : std::filesystem::absolute(line);
}

}  // namespace tarnel
