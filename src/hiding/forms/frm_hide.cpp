#include "hiding/forms/frm_hide.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>
#include <utility>

#include "base/attempt.h"
#include "carrier/leftovers.h"
#include "formkit/busy_cursor.h"
#include "formkit/file_table.h"
#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "hiding/forms/hide_rows_model.h"
#include "hiding/forms/hide_screens.h"
#include "hiding/questions.h"
#include "shellint/forms/uc_directory_tree.h"
#include "shellint/inotify_watch.h"

namespace tarnel {

FrmHide::FrmHide(Session& session, Dialogue& dialogue, Opener open, QWidget* parent)
    : FrmHide(session, dialogue, std::move(open), std::make_unique<MachinePlaces>(session.files),
              std::make_unique<InotifyWatch>(), parent) {}

FrmHide::FrmHide(Session& session, Dialogue& dialogue, Opener open, std::unique_ptr<Places> places,
                 std::unique_ptr<FolderWatch> watch, QWidget* parent)
    : WorkingForm(session, dialogue, parent),
      m_frame1(new FilesFrame),
      m_collecting(
          std::make_unique<CollectingOnForm>(dialogue, CancelFlag(), m_wizard, *m_frame1->Anzeige_Pic)),
      m_selection(session.files, *m_collecting) {
  setObjectName(QStringLiteral("FrmHide"));
  setWindowTitle(tr(" Hide Files & Folders"));
  Build(std::move(open), std::move(places), std::move(watch));
  m_selection.KeepOut(session.current.CurrentCarrierPath);
  ConnectButtons();
  ApplySettings();
  ShowPanels();
  ShowState();
  StartWhenShown([this] { m_explorer->Activate(GetSession().settings.hide.Start()); });
}

FrmHide::~FrmHide() = default;

void FrmHide::Build(Opener open, std::unique_ptr<Places> places, std::unique_ptr<FolderWatch> watch) {
  m_tree = Named(new ucDirectoryTree(GetSession().files, GetDialogue(), std::move(places), std::move(watch)),
                 "Tree");
  m_explorerFrame = new ExplorerFrame(m_tree);
  m_pages = new QStackedWidget(this);
  m_pages->addWidget(m_explorerFrame);
  m_pages->addWidget(m_frame1);
  m_explorer = std::make_unique<Explorer>(
      *m_tree, *m_explorerFrame->ExplorerFile,
      ExplorerPorts{.files = GetSession().files,
                    .dialogue = GetDialogue(),
                    .icons = m_icons,
                    .open = std::move(open),
                    .runWork = [this](const auto& work) { RunWork(work); },
                    .isShown = [this] { return m_wizard.CurrentStep() == HideWizard::Step::Explorer; }});
  connect(m_explorer.get(), &Explorer::Changed, this, &FrmHide::ShowState);
  m_rows = new HideRowsModel(m_icons, this);
  m_frame1->Files->setModel(m_rows);
  const int digit = fontMetrics().averageCharWidth();
  const auto setWidths = [digit](const FileTable& table, std::initializer_list<int> digits) {
    table.header()->setSectionResizeMode(0, QHeaderView::Stretch);
    for (int section = 1; const int width : digits)
      table.header()->resizeSection(section++, digit * width);
  };
  setWidths(*m_explorerFrame->ExplorerFile, {14, 16, 25});
  setWidths(*m_frame1->Files, {18, 22, 30});
  BuildStatusBar();
  resize(digit * 116, fontMetrics().lineSpacing() * 32);
}

void FrmHide::BuildStatusBar() {
  auto* const bar = Named(new QStatusBar(this), "StatusBar");
  bar->setSizeGripEnabled(false);
  const auto panel = [bar](const char* name) {
    auto* const label = Named(new QLabel, name);
    bar->addWidget(label, 1);
    return label;
  };
  m_filesPanel = panel("Panel1");
  m_foldersPanel = panel("Panel2");
  m_sizePanel = panel("Panel3");
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(m_pages, 1);
  layout->addWidget(bar);
}

void FrmHide::ConnectButtons() {
  const auto on = [this](QPushButton* button, void (FrmHide::*slot)()) {
    connect(button, &QPushButton::clicked, this,
            [this, slot] { Guarded(GetDialogue(), [&] { (this->*slot)(); }); });
  };
  on(m_explorerFrame->Cmd_Hide, &FrmHide::PressHide);
  on(m_explorerFrame->Cmd_Cancel1, &FrmHide::PressCancel1);
  on(m_frame1->Anzeige_Pic->Cmd_StopSearch, &FrmHide::PressStop);
  on(m_frame1->Cmd_Addmore, &FrmHide::PressAddmore);
  on(m_frame1->Cmd_Back, &FrmHide::PressBack);
  on(m_frame1->Cmd_Next, &FrmHide::PressNext);
  on(m_frame1->Cmd_Cancel, &FrmHide::PressCancel);
  connect(m_frame1->Files, &FileTable::DeletePressed, this, &FrmHide::RemoveFiles);
  connect(m_frame1->Options->opt_deletion, &QRadioButton::clicked, this, &FrmHide::ConfirmDeletion);
}

void FrmHide::ApplySettings() {
  const Settings& settings = GetSession().settings;
  m_frame1->Options->Chk_Compress->setChecked(settings.compress);
  m_frame1->Options->Chk_FolderInfo->setChecked(settings.folderInfo);
  m_frame1->Options->Chk_WriteProtection->setChecked(settings.writeProtection);
  ApplyListSettings();
}

void FrmHide::ApplyListSettings() {
  const Settings& settings = GetSession().settings;
  for (FileTable* const table : {m_explorerFrame->ExplorerFile, m_frame1->Files}) {
    table->SetFullRowSelect(settings.fullRowSelect);
    table->SetGridLines(settings.gridLines);
  }
  m_explorer->SetFullRowSelect(settings.fullRowSelect);
  m_rows->SetFullRowSelect(settings.fullRowSelect);
}

QPushButton* FrmHide::CancelButton() const {
  return m_wizard.CurrentStep() == HideWizard::Step::Explorer ? m_explorerFrame->Cmd_Cancel1
                                                              : m_frame1->Cmd_Cancel;
}

void FrmHide::ShowState() {
  const HideWizard::Step step = m_wizard.CurrentStep();
  const auto can =
      m_wizard.CanPress(m_explorer->RowCount(), m_explorer->ListFilling(), m_explorer->ShowsMyComputer());
  m_explorerFrame->Cmd_Hide->setEnabled(can.Cmd_Hide);
  m_explorerFrame->Cmd_Hide->setDefault(step == HideWizard::Step::Explorer);
  m_explorerFrame->Cmd_Cancel1->setEnabled(can.Cmd_Cancel1);
  m_frame1->Anzeige_Pic->Cmd_StopSearch->setEnabled(can.Cmd_StopSearch);
  m_frame1->Cmd_Addmore->setEnabled(can.Cmd_Addmore);
  m_frame1->Cmd_Back->setEnabled(can.Cmd_Back);
  m_frame1->Cmd_Next->setEnabled(can.Cmd_Next);
  m_frame1->Cmd_Cancel->setEnabled(can.Cmd_Cancel);
  m_frame1->ShowCollecting(step == HideWizard::Step::Collecting);
  m_frame1->ShowHiding(step == HideWizard::Step::Hiding);
  m_frame1->Options->setEnabled(step == HideWizard::Step::Files);
  m_pages->setCurrentIndex(step == HideWizard::Step::Explorer ? 0 : 1);
  if (step != HideWizard::Step::Explorer) m_frame1->Cmd_Next->setDefault(true);
}

void FrmHide::ShowPanels() {
  const SelectionPanels panels =
      PanelsOf(m_rows->Rows().size(), m_selection.FoldersCounted(), m_selection.TotalSelectedBytes());
  m_filesPanel->setText(QString::fromStdString(panels.files));
  m_foldersPanel->setText(QString::fromStdString(panels.subfolders));
  m_sizePanel->setText(QString::fromStdString(panels.totalSize));
}

void FrmHide::PressHide() {
  Session& session = GetSession();
  if (session.settings.hide.mode == 2) {
    session.Remember(section::kOptions, "Folder Hide Last", m_tree->Path().native());
    session.ReloadSettings();
  }
  const HideSource source = m_explorer->Source();
  if (source.IsMyComputer() && source.LastFocusHwnd == LastFocus::Tree) {
    GetDialogue().Ask(NothingSpecifiedQuestion());
    return;
  }
  m_explorer->StopFilling();
  ApplyListSettings();
  CollectRows(source);
}

void FrmHide::CollectRows(const HideSource& source) {
  m_chosen = ChosenBy(source);
  m_wizard.BeginCollecting();
  ShowState();
  m_frame1->Anzeige_Pic->Cmd_StopSearch->setFocus();
  RunWork([&] {
    GetDialogue().Yield();
    m_selection.Begin(m_wizard.AddingMore() ? Selection::Before::Kept : Selection::Before::Dropped);
    Collect(source, m_selection, *m_collecting);
  });
  m_wizard.EndCollecting();
  m_rows->Show(m_selection.Rows());
  ShowPanels();
  ShowState();
  m_frame1->Cmd_Next->setFocus();
  const auto report = PassedOverReport(m_selection.Passed());
  if (report && isVisible()) GetDialogue().Ask(*report);
}

void FrmHide::PressAddmore() {
  m_wizard.PressAddmore();
  m_frame1->Options->opt_nodeletion->setChecked(true);
  ShowState();
  m_tree->setFocus();
}

void FrmHide::PressBack() {
  m_wizard.PressBack();
  m_selection.Begin(Selection::Before::Dropped);
  m_rows->Show({});
  m_frame1->Options->opt_nodeletion->setChecked(true);
  for (QLabel* const panel : {m_filesPanel, m_foldersPanel, m_sizePanel})
    panel->clear();
  ShowState();
  m_tree->setFocus();
}

void FrmHide::PressNext() {
  if (!m_rows->Rows().empty()) return Hide();
  GetDialogue().Ask(NoFilesQuestion());
  PressBack();
}

void FrmHide::PressStop() {
  m_wizard.PressStop();
}

void FrmHide::PressCancel() {
  if (m_wizard.Hiding()) return AskToCancel(CancelHideQuestion());
  m_wizard.PressStop();
  RequestCancel();
  done(QDialog::Rejected);
}

void FrmHide::PressCancel1() {
  m_explorer->StopFilling();
  done(QDialog::Rejected);
}

void FrmHide::RemoveFiles() {
  if (m_wizard.CurrentStep() != HideWizard::Step::Files || m_rows->Rows().empty()) return;
  const std::vector<std::size_t> selected = m_frame1->Files->SelectedRows();
  if (selected.empty()) return;
  m_selection.Remove(selected);
  m_rows->Show(m_selection.Rows());
  const int next = std::min(static_cast<int>(selected.front()), m_rows->rowCount() - 1);
  m_frame1->Files->setCurrentIndex(m_rows->index(next, 0));
  ShowPanels();
}

void FrmHide::ConfirmDeletion() {
  if (!m_frame1->Options->opt_deletion->isChecked()) return;
  if (GetDialogue().Ask(DeleteOriginalsQuestion()) != Answer::Yes)
    m_frame1->Options->opt_nodeletion->setChecked(true);
}

HideRequest FrmHide::Request() const {
  const HideOptionsPanel& options = *m_frame1->Options;
  HideRequest request;
  request.rows = m_rows->Rows();
  request.totalBytes = m_selection.TotalSelectedBytes();
  request.compress = options.Chk_Compress->isChecked();
  request.compressionLevel = GetSession().settings.compressLevel;
  request.saveFolders = options.Chk_FolderInfo->isChecked();
  request.writeProtect = options.Chk_WriteProtection->isChecked();
  if (options.opt_deletion->isChecked()) request.originals = Originals::Destroy;
  if (options.opt_recyclebin->isChecked()) request.originals = Originals::Trash;
  request.chosen = m_chosen;
  return request;
}

/// Closes the form when the hide is over; what was refused before anything was done leads back to the
/// options.
void FrmHide::Hide() {
  const Path carrier = GetSession().current.CurrentCarrierPath;
  if (!MayReplace(LeftoversOfHiding(carrier, GetSession().files), GetDialogue())) return;
  std::optional<HideResult> result;
  m_wizard.BeginHiding();
  ShowState();
  m_frame1->Cmd_Cancel->setFocus();
  RunWork([&] {
    const BusyCursor busy;
    result = RunHideAsking(Request());
  });
  m_wizard.EndHiding();
  if (!result) {
    m_rows->SetDone(0);
    ShowState();
    return m_frame1->Cmd_Next->setFocus();
  }
  if (const auto report = HideReport(*result, carrier)) GetDialogue().Ask(*report);
  done(QDialog::Accepted);
}

/// Nothing if the person gave up at what made the hide impossible.
std::optional<HideResult> FrmHide::RunHideAsking(const HideRequest& request) {
  HideOnForm screen(GetSession(), GetDialogue(), CancelFlag(), *m_frame1, *m_rows, [this] {
    m_wizard.BeginLoading();
    ShowState();
  });
  std::optional<HideResult> result;
  try {
    Attempt(GetDialogue(), {HideErrorQuestion}, [&] {
      Reading reading = GetSession().MakeReading();
      result = RunHide(request, reading, screen);
    });
  } catch (const Stop&) {  // then nothing has changed
  }
  return result;
}

}  // namespace tarnel
