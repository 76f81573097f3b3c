#include "hiding/forms/frm_hide.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTimer>
#include <QTreeView>
#include <QVBoxLayout>
#include <utility>

#include "app/session_screen.h"
#include "base/attempt.h"
#include "base/destruction.h"
#include "base/formats.h"
#include "carrier/leftovers.h"
#include "formkit/busy_cursor.h"
#include "formkit/file_table.h"
#include "formkit/fit_path_text.h"
#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "formkit/text.h"
#include "formkit/type_icons.h"
#include "formkit/work_progress.h"
#include "hiding/forms/file_properties.h"
#include "hiding/questions.h"
#include "shellint/forms/uc_directory_tree.h"
#include "shellint/inotify_watch.h"

namespace tarnel {

/// What collecting shows in its panel.
class FrmHide::CollectingScreen : public ForwardingScreen<SelectionScreen> {
 public:
  explicit CollectingScreen(FrmHide& form)
      : ForwardingScreen(form.GetDialogue(), form.CancelFlag()), m_form(form) {}

  bool CancelRequested() const override {
    return m_form.m_wizard.StopSelecting() || ForwardingScreen::CancelRequested();
  }
  void ShowFolder(const Path& folder, std::size_t entries) override {
    Panel().Lb_DirSelect->SetPath(ShownPath(folder));
    Panel().ProgressBar2->setRange(0, static_cast<int>(entries) + 1);
    Panel().ProgressBar2->setValue(0);
  }
  void EntryPassed() override { Panel().ProgressBar2->setValue(Panel().ProgressBar2->value() + 1); }
  void ShowAdded(const Path& file, std::size_t found) override {
    Panel().Lb_FileSelect->SetPath(ShownPath(file));
    Panel().Lb_Found->setText(QString::number(found) + tr(" Files"));
  }

 private:
  CollectingPanel& Panel() { return *m_form.m_frame1->Anzeige_Pic; }

  FrmHide& m_form;
};

/// What the hide shows on the form.
class HideOnForm : public SessionScreen<HideScreen> {
 public:
  explicit HideOnForm(FrmHide& form)
      : SessionScreen(form.GetSession(), form.GetDialogue(), form.CancelFlag()),
        m_form(form),
        m_frame(*form.m_frame1->Hiding) {}

  void ShowStage(HideStage stage) override {
    m_frame.Lb_Act->setText(Translated(StageText(stage)) + QStringLiteral("..."));
    if (stage == HideStage::Loading) {
      m_frame.Lb_FileName->SetPath({});
      m_frame.Lb_Filesize->clear();
      m_form.m_wizard.BeginLoading();
      m_form.ShowState();
    }
    if (stage == HideStage::Deleting || stage == HideStage::Loading) m_frame.Progress->Restart();
  }
  void ShowFile(std::size_t number, std::size_t count, const Path& source, Length size) override {
    if (number == 1) m_frame.Progress->Restart();
    ShowNumber(number, count);
    m_frame.Lb_FileName->SetPath(ShownPath(source));
    m_frame.Lb_Filesize->setText(QString::fromStdString(GroupedKilobytes(static_cast<double>(size)) + " KB"));
    m_form.m_frame1->Files->setCurrentIndex(m_form.m_rows->index(static_cast<int>(number) - 1, 0));
  }
  void FileDone(std::size_t number) override { m_form.GreyRow(number); }
  void ShowProgress(Length value, Length maximum) override { m_frame.Progress->Show(value, maximum); }
  void ShowBackup(Length copied, Length size) override { m_frame.Progress->Show(copied, size); }
  void ShowOriginal(OriginalStep step, const Path& original, std::size_t number, std::size_t count) override {
    if (step != m_step) m_frame.Progress->Restart();
    m_step = step;
    m_frame.Lb_FileName->SetPath(ShownPath(original));
    m_frame.Lb_Filesize->clear();
    if (number == 0) return;
    ShowNumber(number, count);
    m_frame.Progress->ShowCount(number, count);
  }
  void ShowReading(Length passed, Length size) override {
    m_frame.Progress->ShowCount(static_cast<std::size_t>(passed), static_cast<std::size_t>(size));
  }

 private:
  void ShowNumber(std::size_t number, std::size_t count) {
    m_frame.Lb_FileNumber->setText(FrmHide::tr("Progress: [%1/%2]").arg(number).arg(count));
  }

  FrmHide& m_form;
  HideFrame& m_frame;
  OriginalStep m_step = OriginalStep::Comparing;
};

FrmHide::FrmHide(Session& session, Dialogue& dialogue, Opener open, QWidget* parent)
    : FrmHide(session, dialogue, std::move(open), std::make_unique<MachinePlaces>(session.files),
              std::make_unique<InotifyWatch>(), parent) {}

FrmHide::FrmHide(Session& session, Dialogue& dialogue, Opener open, std::unique_ptr<Places> places,
                 std::unique_ptr<FolderWatch> watch, QWidget* parent)
    : WorkingForm(session, dialogue, parent),
      m_open(std::move(open)),
      m_explorer(session.files, TypeTextOf),
      m_collecting(std::make_unique<CollectingScreen>(*this)),
      m_selection(session.files, *m_collecting) {
  setObjectName(QStringLiteral("FrmHide"));
  setWindowTitle(tr(" Hide Files & Folders"));
  Build(std::move(places), std::move(watch));
  m_selection.KeepOut(session.current.CurrentCarrierPath);
  ConnectTree();
  ConnectExplorer();
  ConnectButtons();
  ApplySettings();
  ShowPanels();
  ShowState();
  StartWhenShown([this] { TreeActivate(); });
}

FrmHide::~FrmHide() = default;

void FrmHide::Build(std::unique_ptr<Places> places, std::unique_ptr<FolderWatch> watch) {
  m_tree = Named(new ucDirectoryTree(GetSession().files, GetDialogue(), std::move(places), std::move(watch)),
                 "Tree");
  m_explorerFrame = new ExplorerFrame(m_tree);
  m_frame1 = new FilesFrame;
  m_pages = new QStackedWidget(this);
  m_pages->addWidget(m_explorerFrame);
  m_pages->addWidget(m_frame1);
  const auto folderIcon = [this](int image) {
    return m_tree->IconOf({.text = {}, .image = static_cast<NodeImage>(image), .path = {}, .tag = {}});
  };
  m_explorerModel = new ExplorerModel(m_explorer, m_icons, folderIcon, this);
  m_explorerFrame->ExplorerFile->setModel(m_explorerModel);
  m_rows = new HideRowsModel(m_icons, this);
  m_frame1->Files->setModel(m_rows);
  const int digit = fontMetrics().averageCharWidth();
  for (FileTable* const table : {m_explorerFrame->ExplorerFile, m_frame1->Files}) {
    table->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    table->header()->resizeSection(1, digit * 14);
    table->header()->resizeSection(2, digit * 15);
    table->header()->resizeSection(3, digit * 24);
  }
  BuildStatusBar();
  BuildMenu();
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

void FrmHide::BuildMenu() {
  mnuView = Named(new QMenu(this), "mnuView");
  const auto add = [this](const char* caption, const char* name, void (FrmHide::*slot)()) {
    QAction* const action = mnuView->addAction(Translated(caption));
    action->setObjectName(QLatin1String(name));
    connect(action, &QAction::triggered, this,
            [this, slot] { Guarded(GetDialogue(), [&] { (this->*slot)(); }); });
    return action;
  };
  FileTable* const list = m_explorerFrame->ExplorerFile;
  add("&Open", "menu_shell", &FrmHide::OpenOutside);
  connect(mnuView->addAction(Translated("&Select All")), &QAction::triggered, list, &FileTable::selectAll);
  QAction* const rename = Named(mnuView->addAction(Translated("Re&name")), "mnuRename");
  connect(rename, &QAction::triggered, this, [list] { list->edit(list->currentIndex().siblingAtColumn(0)); });
  mnuDelete = add("&Delete", "mnuDelete", &FrmHide::DeleteRows);
  add("&Properties", "mnuProperties", &FrmHide::ShowProperties);
  QAction* const refresh = Named(mnuView->addAction(Translated("&Refresh")), "mnuViewRefresh");
  connect(refresh, &QAction::triggered, this,
          [this] { ListFolder(m_tree->Path(), ExplorerList::Force::Yes); });
}

void FrmHide::ConnectTree() {
  connect(m_tree, &ucDirectoryTree::OnDirClick, this, [this](const Path& path) {
    m_lastFocus = LastFocus::Tree;
    ListFolder(path, ExplorerList::Force::No);
  });
  connect(m_tree, &ucDirectoryTree::GotFocus, this, [this] { m_lastFocus = LastFocus::Tree; });
  connect(m_tree, &ucDirectoryTree::OnFileCreate, this,
          [this](const Path& path) { RowsChanged(m_explorer.FileCreated(path)); });
  connect(m_tree, &ucDirectoryTree::OnFileRemove, this,
          [this](const Path& path) { RowsChanged(m_explorer.FileRemoved(path)); });
  connect(m_tree, &ucDirectoryTree::OnFileRename, this,
          [this](const Path& from, const Path& to) { RowsChanged(m_explorer.FileRenamed(from, to)); });
  connect(m_tree, &ucDirectoryTree::OnDirRemove, this, &FrmHide::FolderChanged);
  connect(m_tree, &ucDirectoryTree::OnDirCreate, this, &FrmHide::FolderChanged);
  connect(m_tree, &ucDirectoryTree::OnDirRename, this,
          [this](const Path&, const Path& to) { FolderChanged(to); });
}

void FrmHide::ConnectExplorer() {
  FileTable* const list = m_explorerFrame->ExplorerFile;
  const auto touched = [this] {
    if (m_explorerModel->rowCount() > 0) m_lastFocus = LastFocus::ExplorerFile;
  };
  connect(list, &FileTable::FocusCame, this, touched);
  connect(list, &FileTable::clicked, this, touched);
  connect(list, &FileTable::RowOpened, this, &FrmHide::OpenRow);
  connect(list, &FileTable::DeletePressed, this, [this] { mnuDelete->trigger(); });
  connect(list, &FileTable::BackspacePressed, this, [this] {
    const Path folder = m_tree->Path();
    if (folder != kMyComputer) m_tree->SelectDir(Path(ParentOf(folder.native())));
  });
  connect(list, &QWidget::customContextMenuRequested, this, &FrmHide::ShowMenu);
  connect(list->header(), &QHeaderView::sectionClicked, this, &FrmHide::SortExplorer);
  connect(m_explorerModel, &ExplorerModel::LabelEdited, this, &FrmHide::RenameRow);
  connect(m_frame1->Files, &FileTable::DeletePressed, this, &FrmHide::RemoveFiles);
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
  m_explorerModel->SetFullRowSelect(settings.fullRowSelect);
  m_rows->SetFullRowSelect(settings.fullRowSelect);
}

/// What the tree can't find or watch is told, and it works without.
void FrmHide::TreeActivate() {
  Guarded(GetDialogue(), [this] { m_tree->Initialize(); });
  const Path start = GetSession().settings.hide.Start();
  if (start.empty())
    m_tree->ClickNodeIndex(1);
  else
    m_tree->SetPath(start);
  m_tree->setFocus();
  m_lastFocus = LastFocus::Tree;
}

QPushButton* FrmHide::CancelButton() const {
  return m_wizard.CurrentStep() == HideWizard::Step::Explorer ? m_explorerFrame->Cmd_Cancel1
                                                              : m_frame1->Cmd_Cancel;
}

void FrmHide::ShowState() {
  const HideWizard::Step step = m_wizard.CurrentStep();
  const auto can = m_wizard.CanPress(m_explorer.Rows().size(), m_explorer.ListFilling(),
                                     m_explorer.CurrentFolder() == kMyComputer);
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

void FrmHide::ListFolder(const Path& path, ExplorerList::Force force) {
  if (m_wizard.CurrentStep() != HideWizard::Step::Explorer) return;
  RunWork([&] {
    m_explorer.Show(path, force,
                    {.listChildren = [this] { return FolderRows(); },
                     .changed = [this] { ExplorerChanged(); },
                     .dialogue = GetDialogue()});
  });
}

std::vector<ExplorerRow> FrmHide::FolderRows() {
  std::vector<ExplorerRow> rows;
  for (const FolderRow& row : m_tree->ListChildren())
    rows.push_back({.key = row.path, .text = row.text, .tag = row.tag, .image = static_cast<int>(row.image)});
  return rows;
}

void FrmHide::ExplorerChanged() {
  const bool isFilling = m_explorer.ListFilling();
  FileTable* const list = m_explorerFrame->ExplorerFile;
  m_explorerModel->Rebuild();
  list->SetEmptyText(isFilling ? tr("Loading...") : tr("No files in this folder"));
  list->header()->setSortIndicatorShown(false);
  if (m_explorerModel->rowCount() > 0)
    list->selectionModel()->setCurrentIndex(m_explorerModel->index(0, 0), QItemSelectionModel::NoUpdate);
  if (isFilling != (list->cursor().shape() == Qt::BusyCursor)) {
    if (isFilling)
      list->setCursor(Qt::BusyCursor);
    else
      list->unsetCursor();
  }
  ShowState();
}

/// Rows that stay keep their selection.
void FrmHide::RowsChanged(bool isChanged) {
  if (!isChanged) return;
  FileTable* const list = m_explorerFrame->ExplorerFile;
  QSet<QByteArray> selected;
  const auto keyOf = [](const ExplorerRow& row) { return QByteArray::fromStdString(row.key.native()); };
  const int current = list->currentIndex().row();
  for (const std::size_t row : list->SelectedRows())
    selected << m_explorerModel->KeyAt(row);
  m_explorerModel->Rebuild();
  QItemSelection kept;
  for (int row = 0; row < m_explorerModel->rowCount(); ++row)
    if (selected.contains(keyOf(m_explorer.Rows()[static_cast<std::size_t>(row)])))
      kept.select(m_explorerModel->index(row, 0), m_explorerModel->index(row, 0));
  const QModelIndex next = m_explorerModel->index(std::min(current, m_explorerModel->rowCount() - 1), 0);
  list->selectionModel()->setCurrentIndex(next, QItemSelectionModel::NoUpdate);
  list->selectionModel()->select(kept, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  ShowState();
}

void FrmHide::FolderChanged(const Path& path) {
  if (Path(ParentOf(path.native())) == m_explorer.CurrentFolder())
    ListFolder(m_explorer.CurrentFolder(), ExplorerList::Force::Yes);
}

std::optional<ExplorerRow> FrmHide::SelectedRow() const {
  const QModelIndex current = m_explorerFrame->ExplorerFile->currentIndex();
  const auto row = static_cast<std::size_t>(current.row());
  if (!current.isValid() || row >= m_explorer.Rows().size()) return std::nullopt;
  return m_explorer.Rows()[row];
}

void FrmHide::OpenRow() {
  const auto row = SelectedRow();
  if (row && row->IsFolder()) m_tree->SelectDir(row->FolderPath());
  m_explorerFrame->ExplorerFile->setFocus();
}

void FrmHide::RenameRow(int row, const QString& text) {
  Guarded(GetDialogue(), [&] {
    const ExplorerRow before = m_explorer.Rows().at(static_cast<std::size_t>(row));
    const auto outcome = m_explorer.Rename(static_cast<std::size_t>(row), text.toStdString(), m_tree->Path());
    if (outcome == ExplorerList::Renamed::BadName) GetDialogue().Ask(BadNameQuestion());
    if (outcome != ExplorerList::Renamed::Done) return;
    RowsChanged(true);
    if (before.image < 0) return;
    m_tree->DirectoryRenamed(before.key, m_explorer.Rows().at(static_cast<std::size_t>(row)).key / "");
    ListFolder(m_explorer.CurrentFolder(), ExplorerList::Force::Yes);
  });
}

void FrmHide::SortExplorer(int section) {
  if (m_explorer.ListFilling()) return;
  m_explorer.ColumnClick(static_cast<ExplorerColumn>(section));
  RowsChanged(true);
  QHeaderView* const header = m_explorerFrame->ExplorerFile->header();
  header->setSortIndicatorShown(true);
  header->setSortIndicator(section,
                           m_explorer.SortState()->isDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void FrmHide::ShowMenu(const QPoint& at) {
  FileTable* const list = m_explorerFrame->ExplorerFile;
  const bool isSelected = list->currentIndex().isValid() &&
                          list->selectionModel()->isSelected(list->currentIndex().siblingAtColumn(0));
  if (m_tree->Path() == kMyComputer || !isSelected) return;
  mnuView->popup(list->viewport()->mapToGlobal(at));
}

void FrmHide::DeleteRows() {
  const Path folder = m_tree->Path();
  if (folder == kMyComputer) return;
  std::vector<Path> paths;
  for (const std::size_t row : m_explorerFrame->ExplorerFile->SelectedRows())
    paths.push_back(folder / m_explorer.Rows().at(row).text);
  RunWork([&] { ShellDelete(paths, GetDialogue(), GetSession().files); });
  m_tree->RefreshDir();
}

void FrmHide::ShowProperties() {
  if (const auto row = SelectedRow())
    FileProperties(m_tree->Path() / row->text, GetSession().files, this).exec();
}

/// What the platform can't open is passed over in silence.
void FrmHide::OpenOutside() {
  const auto row = SelectedRow();
  if (!row) return;
  try {
    m_open(m_tree->Path() / row->text);
  } catch (const Error&) {
  }
}

void FrmHide::PressHide() {
  Session& session = GetSession();
  if (session.settings.hide.mode == 2) {
    session.Remember(section::kOptions, "Folder Hide Last", m_tree->Path().native());
    session.ReloadSettings();
  }
  if (m_tree->Path() == kMyComputer && m_lastFocus == LastFocus::Tree) {
    GetDialogue().Ask(NothingSpecifiedQuestion());
    return;
  }
  m_explorer.StopFilling();
  ApplyListSettings();
  CollectRows();
}

void FrmHide::CollectRows() {
  const HideSource source{.LastFocusHwnd = m_lastFocus,
                          .treePath = m_tree->Path(),
                          .rows = m_explorer.Rows(),
                          .selected = m_explorerFrame->ExplorerFile->SelectedRows()};
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
  m_explorer.StopFilling();
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
    return ShowState();
  }
  if (const auto report = HideReport(*result, carrier)) GetDialogue().Ask(*report);
  done(QDialog::Accepted);
}

/// Nothing if the person gave up at what made the hide impossible.
std::optional<HideResult> FrmHide::RunHideAsking(const HideRequest& request) {
  HideOnForm screen(*this);
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

void FrmHide::GreyRow(std::size_t number) {
  m_rows->SetDone(number);
  m_frame1->Files->scrollTo(m_rows->index(static_cast<int>(number) - 1, 0));
}

}  // namespace tarnel
