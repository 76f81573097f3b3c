#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>

#include "app/forms/command_actions.h"
#include "app/forms/config_form.h"
#include "app/forms/info_box.h"
#include "app/session.h"

namespace tarnel {

class FrmFind;
class StepbyStep;

/// What the main window needs from outside, so that tests answer, choose and watch.
struct WindowPorts {
  Dialogue& dialogue;
  FileDialogs& fileDialogs;
  OutsideOpener openOutside;
  /// Opens a file or folder with the desktop. Throws Error.
  std::function<void(const Path&)> openFile;
  /// Ends the process at once, saving nothing.
  std::function<void()> endProcess;
};

/// What commands do to the main window itself.
class CommandedWindow : public ConfigurableWindow {
 public:
  virtual bool IsStatusBarShown() const = 0;
  virtual bool IsFoldersShown() const = 0;
  virtual void SelectAllRows() = 0;
  virtual void ClearRowSelection() = 0;
  virtual void LockChanged() = 0;
};

/// The road of every command: the gate, then its flow. Forms are shown modally over `parent`.
class MainCommands {
 public:
  MainCommands(Session& session, CommandedWindow& window, const WindowPorts& ports, QWidget& parent);

  /// Runs a command of the table. What goes wrong is shown, and the program goes on.
  void Run(CommandId id, CommandSource source);

  /// Runs it if it is enabled now.
  void RunIfEnabled(CommandId id);

  /// Asks a locked program's user for the password; true lets one command pass.
  bool PassGate();

  /// Shows the step by step guide, of which there is one at most.
  void ShowGuide();

  /// Goes on to the password of a carrier, however its path is spelled. No gate applies. True if a hideout
  /// of it was opened or made.
  bool OpenCarrier(const Path& carrier);

  /// Stops a search and closes its window, if there is one.
  void EndSearch();

 private:
  bool PassGates(Gate gate, CommandSource source);
  void RunFlow(const Command& command);
  void NewCarrier();
  void ChooseCarrier();
  void Search();
  void Hide();
  void View();
  void ChangePassword();
  void Delete();
  void Extract();
  void ShowProperties();
  void SaveAs();
  void Configure();
  void LockOrUnlock();

  Session& m_session;
  CommandedWindow& m_window;
  WindowPorts m_ports;
  QWidget& m_parent;
  QPointer<StepbyStep> m_guide;
  QPointer<FrmFind> m_find;
};

}  // namespace tarnel
