#include "app/forms/main_commands.h"

#include <QUrl>
#include <QWindow>

#include "app/choice.h"
#include "app/forms/lock_forms.h"
#include "app/forms/manual.h"
#include "app/forms/step_by_step.h"
#include "app/questions.h"
#include "base/copy_file.h"
#include "base/partial_file.h"
#include "base/temp_names.h"
#include "carrier/forms/carrier_pass.h"
#include "formkit/check_carrier.h"
#include "formkit/guarded.h"
#include "hiding/forms/frm_hide.h"
#include "retrieval/forms/frm_carrier_file.h"
#include "retrieval/forms/frm_delete.h"
#include "retrieval/forms/frm_extract.h"
#include "retrieval/forms/frm_extracting.h"
#include "retrieval/forms/frm_password.h"
#include "retrieval/forms/frm_properties.h"
#include "retrieval/forms/frm_view.h"
#include "retrieval/questions.h"
#include "search/forms/frm_find.h"

namespace tarnel {

namespace {

constexpr FileFilter kTnlFilter = {"Tarnel file (*.tnl)", "*.tnl"};

/// A hideout is known by its carrier's path, so one file must have one, however it was spelled. What leads
/// nowhere stays as it is: whoever opens it says so.
Path OneName(const Path& carrier, Files& files) {
  try {
    return files.Canonical(carrier);
  } catch (const Error&) {
    return carrier;
  }
}

void BringToFront(QWidget& window) {
  window.raise();
  window.activateWindow();
}

/// True from here to the end of the scope.
class Requested {
 public:
  explicit Requested(bool& flag) : m_flag(flag) { m_flag = true; }
  Requested(const Requested&) = delete;
  Requested& operator=(const Requested&) = delete;
  ~Requested() { m_flag = false; }

 private:
  bool& m_flag;
};

}  // namespace

MainCommands::MainCommands(Session& session, CommandedWindow& window, const WindowPorts& ports,
                           QWidget& parent)
    : m_session(session), m_window(window), m_ports(ports), m_parent(parent) {}

void MainCommands::Run(CommandId id, CommandSource source) {
  Guarded(m_ports.dialogue, [&] {
    const Command& command = CommandOf(id);
    if (PassGates(command.gate, source)) RunFlow(command);
  });
}

void MainCommands::RunIfEnabled(CommandId id) {
  if (m_session.RefreshNow().IsEnabled(id)) Run(id, CommandSource::Toolbar);
}

bool MainCommands::PassGate() {
  if (!m_session.lock.ProgramLocked()) return true;
  FrmUnlock form(m_session.lock, m_ports.dialogue, &m_parent);
  form.exec();
  return form.PasswordAccepted();
}

bool MainCommands::PassGates(Gate gate, CommandSource source) {
  if (gate == Gate::None) return true;
  if (gate == Gate::TwiceFromMenu && source == CommandSource::Menu && !PassGate()) return false;
  return PassGate();
}

void MainCommands::RunFlow(const Command& command) {
  switch (command.id) {
    case CommandId::New:
    case CommandId::Comments:
      return NewCarrier();
    case CommandId::Open:
      return ChooseCarrier();
    case CommandId::Close:
      return m_session.CloseCarrier();
    case CommandId::CarrierProperties:
      return ShowProperties();
    case CommandId::SaveAs:
      return SaveAs();
    case CommandId::Quit:
      return m_ports.endProcess();
    case CommandId::Search:
      return Search();
    case CommandId::Hide:
      return Hide();
    case CommandId::View:
      return View();
    case CommandId::Password:
      return ChangePassword();
    case CommandId::Delete:
      return Delete();
    case CommandId::Extract:
      return Extract();
    case CommandId::SelectAll:
      return m_window.SelectAllRows();
    case CommandId::InvertSelection:
      return m_window.ClearRowSelection();
    case CommandId::Configuration:
      return Configure();
    case CommandId::Lock:
      return LockOrUnlock();
    case CommandId::ShowStatus:
      return m_window.ShowStatusBar(!m_window.IsStatusBarShown());
    case CommandId::Folders:
      return m_window.ShowFolders(!m_window.IsFoldersShown());
    case CommandId::Contents:
      return m_ports.openOutside(ManualUrl());
    case CommandId::QuickStart:
      return ShowGuide();
    case CommandId::Info:
      Info(m_ports.openOutside, &m_parent).exec();
      return;
    default:
      return;
  }
}

/// Ends in a fault once a file is chosen. New carriers are made on the road of "Open".
void MainCommands::NewCarrier() {
  const auto chosen =
      m_ports.fileDialogs.OpenFile(&m_parent, QObject::tr("Select carrier file..."), {}, CarrierFilters());
  if (!chosen) return;
  m_session.CarrierDialogPath = *chosen;
  throw NewCarrierFault();
}

/// Two forms close at once, and not every window manager then finds the one behind them.
void MainCommands::ChooseCarrier() {
  FrmCarrierFile(
      m_session, m_ports.dialogue, m_ports.fileDialogs, [this](const Path& carrier) { OpenCarrier(carrier); },
      &m_parent)
      .exec();
  m_parent.activateWindow();
}

bool MainCommands::OpenCarrier(const Path& carrier) {
  // At a start with a carrier the main window comes later; a form stands in the middle of a visible one.
  QWidget* const parent = m_parent.isVisible() ? &m_parent : nullptr;
  CarrierPass form(OneName(carrier, m_session.files), m_session, m_ports.dialogue, parent);
  return form.exec() == QDialog::Accepted;
}

void MainCommands::Hide() {
  const Requested hiding(m_session.HideOpenRequested);
  if (m_session.catalogue.Roots().empty()) Run(CommandId::Open, CommandSource::Toolbar);
  if (m_session.catalogue.Roots().empty()) return;
  if (CheckCarrier(m_session, m_ports.dialogue, &m_parent) == CarrierCheck::GaveUp) return;
  FrmHide(m_session, m_ports.dialogue, m_ports.openFile, &m_parent).exec();
}

/// The window stands beside the main window, not over it, so that this can come to the front.
void MainCommands::Search() {
  if (m_find == nullptr) {
    const auto open = [this](const Path& carrier) {
      m_session.HideOpenRequested = false;
      const bool isOpen = OpenCarrier(carrier);
      if (isOpen || m_find.isNull()) return BringToFront(m_parent);
      BringToFront(*m_find);
    };
    m_find = new FrmFind(m_session, m_ports.dialogue,
                         {.passGate = [this] { return PassGate(); }, .open = open}, &m_parent);
    m_find->winId();
    m_find->windowHandle()->setTransientParent(nullptr);
  }
  m_find->show();
  BringToFront(*m_find);
}

void MainCommands::EndSearch() {
  if (m_find != nullptr) m_find->Leave();
}

/// What was chosen is looked up again behind each box, under which the catalogue may have changed.
void MainCommands::View() {
  const Choice choice = ChoiceOf(m_session);
  const auto& rows = m_session.catalogue.Rows();
  if (!choice.file || *choice.file >= rows.size()) return;
  const WipedText name(rows[*choice.file].Name());
  if (m_ports.dialogue.Ask(questions::ConfirmPreview(name)) != Answer::Yes) return;
  if (CheckCarrier(m_session, m_ports.dialogue, &m_parent) != CarrierCheck::AsRead) return;
  const MirrorRow* const row = RowToView(m_session.catalogue, *choice.file, choice.carrier, name);
  if (row == nullptr) return;
  m_session.ViewRowIndex = *choice.file;
  m_session.previewParcel = ParcelOf(*row);
  FrmView(m_session, m_ports.dialogue, m_ports.openFile, &m_parent).exec();
}

void MainCommands::ChangePassword() {
  if (CheckCarrier(m_session, m_ports.dialogue, &m_parent) == CarrierCheck::GaveUp) return;
  if (m_session.FilesOf(m_session.current.CurrentCarrierPath) == 0) return;
  FrmPassword(m_session, m_ports.dialogue, &m_parent).exec();
}

/// With nothing chosen no form comes up.
void MainCommands::Delete() {
  if (CheckCarrier(m_session, m_ports.dialogue, &m_parent) != CarrierCheck::AsRead) return;
  const Choice choice = ChoiceOf(m_session);
  DeleteList list(choice.rows, m_session.catalogue, choice.carrier);
  if (list.Rows().empty()) return;
  FrmDelete(m_session, m_ports.dialogue, std::move(list), &m_parent).exec();
}

void MainCommands::Extract() {
  if (CheckCarrier(m_session, m_ports.dialogue, &m_parent) != CarrierCheck::AsRead) return;
  const auto request = FrmExtract(m_session, m_ports.dialogue, ChoiceOf(m_session), &m_parent).Ask();
  if (request) FrmExtracting(m_session, m_ports.dialogue, *request, &m_parent).exec();
}

void MainCommands::ShowProperties() {
  FrmProperties(m_session, &m_parent).exec();
}

/// Copies only over a file that exists already.
void MainCommands::SaveAs() {
  const auto chosen = m_ports.fileDialogs.SaveFile(&m_parent, kTnlFilter, QStringLiteral("tnl"));
  if (!chosen || !m_session.files.Stat(*chosen)) return;
  if (m_ports.dialogue.Ask(OverwriteCopyQuestion()) != Answer::Yes) return;
  const Path fresh = chosen->parent_path() / RandomName(".copy-");
  CopyFile(m_session.files, m_session.current.CurrentCarrierPath, fresh, Durability::WrittenThrough);
  PartialFile partial(m_session.files, fresh);
  m_session.files.Rename(fresh, *chosen);
  partial.Keep();
}

void MainCommands::Configure() {
  Config(m_session, m_window, m_ports.dialogue, m_ports.fileDialogs, &m_parent).exec();
  m_session.ReloadSettings();
  if (m_session.SelectedNode() != nullptr) m_session.DirView_NodeClick(*m_session.SelectedNode());
}

void MainCommands::ShowGuide() {
  if (m_guide.isNull()) m_guide = new StepbyStep(m_session, &m_parent);
  m_guide->ShowAgain();
}

void MainCommands::LockOrUnlock() {
  ProgramLock& lock = m_session.lock;
  if (lock.ProgramLocked()) {
    lock.StartUnlocking();
    if (!PassGate()) return;
    lock.Unlock();
  } else {
    lock.StartLocking();
    FrmLock(lock, m_ports.dialogue, &m_parent).exec();
  }
  m_window.LockChanged();
}

}  // namespace tarnel
