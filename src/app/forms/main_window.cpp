#include "app/forms/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QSet>
#include <QSplitter>
#include <QVBoxLayout>

#include "app/forms/command_actions.h"
#include "app/forms/dir_tree.h"
#include "app/forms/dir_view_model.h"
#include "app/forms/file_list_model.h"
#include "app/forms/manual.h"
#include "app/forms/status_panels.h"
#include "app/step_by_step.h"
#include "formkit/dropped_path.h"
#include "formkit/file_table.h"
#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "formkit/text.h"

namespace tarnel {

namespace {

constexpr int kRefreshInterval = 100;
constexpr int kGuideDelay = 500;
constexpr int kLeastFolders = 1100 / kTwipsPerPixel;
constexpr int kLeastList = 600 / kTwipsPerPixel;
/// What lies between the folder pane's width and the left edge of the list, in twips.
constexpr int kPaneGap = 80;

bool IsFile(const Path& path, Files& files) {
  const auto stat = path.empty() ? std::nullopt : files.Stat(path);
  return stat && stat->kind != FileKind::Folder;
}

void AcceptCopy(QDropEvent& event) {
  event.setDropAction(Qt::CopyAction);
  event.setAccepted(event.possibleActions().testFlag(Qt::CopyAction));
}

}  // namespace

MainWindow::MainWindow(Session& session, const WindowPorts& ports)
    : m_session(session), m_ports(ports), m_commands(session, *this, ports, *this) {
  setObjectName(QStringLiteral("Main"));
  setWindowTitle(tr(" Tarnel 7.0"));
  setAcceptDrops(true);
  m_actions = new CommandActions(*this);
  MakePanes();
  m_status = new StatusPanels(this);
  setStatusBar(m_status);
  ConnectAll();
  ShowContextMenus();
  qApp->installEventFilter(new HelpKey(ports.openOutside, this));
  m_session.SetView(this);
  RestoreGeometry();
  FileListChanged();
  SettingsChanged();
  ShowFolders(true);
  ShowStatusBar(
      m_session.settingsFile.Flag(section::kOptions, setting::kStatusBar.key, setting::kStatusBar.preset));
  m_refresh.start(kRefreshInterval);
  RefreshCommands();
}

MainWindow::~MainWindow() {
  m_session.SetView(nullptr);
}

void MainWindow::MakePanes() {
  m_sizer = Named(new QSplitter(Qt::Horizontal, this), "Sizer");
  m_sizer->setChildrenCollapsible(false);
  m_dirFrame = Named(new QWidget(m_sizer), "DirFrame");
  m_dirFrame->setMinimumWidth(kLeastFolders);
  m_dirView = Named(new DirTree(m_dirFrame), "DirView");
  m_dirView->setAccessibleName(tr("Folders"));
  m_dirModel = new DirViewModel(m_session.catalogue, this);
  m_dirView->setModel(m_dirModel);
  auto* const caption = Named(new QLabel(tr("Folders"), m_dirFrame), "Dir_Label");
  caption->setMargin(3);
  auto* const layout = new QVBoxLayout(m_dirFrame);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(caption);
  layout->addWidget(m_dirView);

  m_fileList = Named(new FileTable(m_sizer), "FileList");
  m_fileList->setAccessibleName(tr("Hidden files"));
  m_fileList->setMinimumWidth(kLeastList);
  m_fileModel = new FileListModel(m_session, this);
  m_fileList->setModel(m_fileModel);
  m_sizer->setStretchFactor(0, 0);
  m_sizer->setStretchFactor(1, 1);
  setCentralWidget(m_sizer);
}

void MainWindow::ConnectAll() {
  connect(m_actions, &CommandActions::Triggered, this, [this](CommandId id, CommandSource source) {
    ReadRowSelection();
    m_commands.Run(id, source);
    RefreshCommands();
  });
  connect(m_dirView, &DirTree::NodeClicked, this, &MainWindow::ClickNode);
  for (const auto signal : {&QTreeView::expanded, &QTreeView::collapsed}) {
    connect(m_dirView, signal, this, [this] { SetAttention(Attention::DirView); });
  }
  connect(m_fileList, &FileTable::RowOpened, this, &MainWindow::OpenRow);
  connect(m_fileList, &FileTable::DeletePressed, this, [this] {
    ReadRowSelection();
    m_commands.RunIfEnabled(CommandId::Delete);
  });
  connect(m_fileList->header(), &QHeaderView::sectionClicked, this, &MainWindow::ClickColumn);
  connect(m_status->info, &StatusPanel::DoubleClicked, this,
          [this] { m_commands.RunIfEnabled(CommandId::CarrierProperties); });
  connect(m_status->lock, &StatusPanel::DoubleClicked, this,
          [this] { m_commands.Run(CommandId::Lock, CommandSource::Menu); });
  connect(&m_refresh, &QTimer::timeout, this, &MainWindow::RefreshCommands);
  m_stepbyStepTimer.setInterval(kGuideDelay);
  connect(&m_stepbyStepTimer, &QTimer::timeout, this, &MainWindow::ShowGuideAtStart);
  for (QWidget* const watched : {static_cast<QWidget*>(m_dirView), m_dirView->viewport(),
                                 static_cast<QWidget*>(m_fileList), m_fileList->viewport()}) {
    watched->installEventFilter(this);
  }
}

void MainWindow::ShowContextMenus() {
  const struct {
    QWidget* widget;
    QWidget* place;  ///< what the widget counts points from
    const char* menu;
  } menus[] = {{m_dirView, m_dirView->viewport(), "Menu_File"},
               {m_fileList, m_fileList->viewport(), "Menu_Actions"},
               {m_status, m_status, "mnuStatusbar"}};
  for (const auto& [widget, place, menu] : menus) {
    connect(widget, &QWidget::customContextMenuRequested, this,
            [this, place = place, menu = menu](const QPoint& at) {
              m_actions->MenuOf(menu)->popup(place->mapToGlobal(at));
            });
  }
}

void MainWindow::RestoreGeometry() {
  const WindowGeometry geometry = LoadGeometry(m_session.settingsFile);
  setMinimumSize(320, 240);
  resize(geometry.width / kTwipsPerPixel, geometry.height / kTwipsPerPixel);
  m_dirWidth = std::max(kLeastFolders, (geometry.fileListLeft - kPaneGap) / kTwipsPerPixel);
  m_sizer->setSizes({m_dirWidth, std::max(kLeastList, width() - m_dirWidth)});
}

void MainWindow::SaveGeometry() {
  SettingsFile& file = m_session.settingsFile;
  const auto set = [&file](std::string_view key, int pixels, int gap = 0) {
    file.Set(section::kForm, key, std::to_string(pixels * kTwipsPerPixel + gap));
  };
  if (windowState() == Qt::WindowNoState) {
    set("Height", height());
    set("Width", width());
  }
  const auto& columns = m_fileModel->Columns();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    set(ColumnKey(columns[i]), m_fileList->header()->sectionSize(static_cast<int>(i)));
  }
  set("FileList_Left", IsFoldersShown() ? m_dirFrame->width() : m_dirWidth, kPaneGap);
  file.Save();
}

void MainWindow::StartWith(const Path& carrier) {
  Guarded(m_ports.dialogue, [&] {
    if (IsFile(carrier, m_session.files)) m_commands.OpenCarrier(carrier);
  });
  RefreshCommands();
}

void MainWindow::ShowGuideSoon() {
  if (ShowsGuideAtStart(m_session.settingsFile)) m_stepbyStepTimer.start();
}

/// Not behind a form that would keep it from being read.
void MainWindow::ShowGuideAtStart() {
  if (QApplication::activeModalWidget() != nullptr) return;
  m_stepbyStepTimer.stop();
  m_commands.ShowGuide();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  bool mayClose = false;
  Guarded(m_ports.dialogue, [&] {
    mayClose = m_commands.PassGate();
    if (mayClose && m_session.settings.saveSettingsExit) SaveGeometry();
  });
  if (mayClose) m_commands.EndSearch();
  event->setAccepted(mayClose);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) AcceptCopy(*event);
}

void MainWindow::dragMoveEvent(QDragMoveEvent* event) {
  AcceptCopy(*event);
}

void MainWindow::dropEvent(QDropEvent* event) {
  AcceptCopy(*event);
  if (!event->isAccepted()) return;
  QTimer::singleShot(0, this, [this, path = FirstDroppedPath(*event->mimeData())] { StartWith(path); });
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  const bool isAttention = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::KeyPress ||
                           event->type() == QEvent::FocusIn;
  if (isAttention && event->type() == QEvent::FocusIn) {
    const auto reason = static_cast<QFocusEvent*>(event)->reason();
    if (reason != Qt::TabFocusReason && reason != Qt::BacktabFocusReason) return false;
  }
  if (isAttention) {
    const bool isList = watched == m_fileList || watched == m_fileList->viewport();
    SetAttention(isList ? Attention::FileList : Attention::DirView);
  }
  return QMainWindow::eventFilter(watched, event);
}

/// A view that shows nothing gets no attention.
void MainWindow::SetAttention(Attention view) {
  const bool isShowing =
      view == Attention::FileList ? !m_session.fileList.Rows().empty() : !m_session.catalogue.Roots().empty();
  if (isShowing) m_session.ActiveListHwnd = view;
}

void MainWindow::TreeChanged() {
  QSet<quint64> known;
  QSet<quint64> expanded;
  for (const QModelIndex& index : m_dirModel->All()) {
    known << m_dirModel->KeyAt(index);
    if (m_dirView->isExpanded(index)) expanded << m_dirModel->KeyAt(index);
  }
  m_dirModel->Rebuild();
  const Attention attention = m_session.ActiveListHwnd;
  for (const QModelIndex& index : m_dirModel->All()) {
    const quint64 key = m_dirModel->KeyAt(index);
    const bool isNewRoot = !index.parent().isValid() && !known.contains(key);
    if (isNewRoot || expanded.contains(key)) m_dirView->expand(index);
  }
  m_session.ActiveListHwnd = attention;
  m_dirView->setCurrentIndex(m_dirModel->IndexOf(m_session.SelectedNode()));
}

void MainWindow::FileListChanged() {
  const bool hasOtherColumns = m_fileModel->Columns() != m_session.fileList.Columns();
  if (hasOtherColumns) {
    ShowColumns();
  } else {
    m_fileModel->Rebuild();
  }
  ShowSorting();
}

void MainWindow::SettingsChanged() {
  m_fileList->SetFullRowSelect(m_session.settings.fullRowSelect);
  m_fileList->SetGridLines(m_session.settings.gridLines);
}

/// A column keeps its width; one that comes anew has the width of the last start.
void MainWindow::ShowColumns() {
  QHeaderView& header = *m_fileList->header();
  QHash<int, int> widths;
  for (std::size_t i = 0; i < m_fileModel->Columns().size(); ++i) {
    widths[static_cast<int>(m_fileModel->Columns()[i])] = header.sectionSize(static_cast<int>(i));
  }
  m_fileModel->Rebuild();
  for (std::size_t i = 0; i < m_fileModel->Columns().size(); ++i) {
    const Column column = m_fileModel->Columns()[i];
    const int stored = LoadColumnWidth(m_session.settingsFile, ColumnKey(column)) / kTwipsPerPixel;
    header.resizeSection(static_cast<int>(i), widths.value(static_cast<int>(column), stored));
  }
}

void MainWindow::ShowSorting() {
  const auto sorting = m_session.fileList.Sorting();
  m_fileList->header()->setSortIndicatorShown(sorting.has_value());
  if (!sorting) return;
  const auto& columns = m_fileModel->Columns();
  const auto place = std::find(columns.begin(), columns.end(), sorting->column) - columns.begin();
  m_fileList->header()->setSortIndicator(static_cast<int>(place),
                                         sorting->isDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void MainWindow::RefreshCommands() {
  ReadRowSelection();
  const RefreshResult refresh = m_session.RefreshNow();
  m_actions->Apply(refresh);
  m_status->ShowInfo(refresh.isInfoPanelOn);
  m_status->files->SetText(QString::fromStdString(m_session.filesPanel));
  m_status->algorithm->SetText(QString::fromStdString(m_session.algorithmPanel));
}

void MainWindow::ReadRowSelection() {
  Session::RowSelection selection;
  selection.rows = m_fileList->SelectedRows();
  const QModelIndex current = m_fileList->currentIndex().siblingAtColumn(0);
  if (current.isValid() && m_fileList->selectionModel()->isSelected(current))
    selection.current = static_cast<std::size_t>(current.row());
  m_session.rowSelection = std::move(selection);
}

void MainWindow::ClickNode(const QModelIndex& index) {
  Guarded(m_ports.dialogue, [&] {
    if (m_session.guards.TreeClickBlocked) return;
    if (TreeNode* const node = m_dirModel->NodeAt(index)) m_session.DirView_NodeClick(*node);
    RefreshCommands();
  });
}

void MainWindow::ClickColumn(int section) {
  Guarded(m_ports.dialogue,
          [&] { m_session.ColumnClick(m_fileModel->Columns().at(static_cast<std::size_t>(section))); });
}

void MainWindow::OpenRow() {
  const QModelIndex current = m_fileList->currentIndex();
  const auto& rows = m_session.fileList.Rows();
  if (!current.isValid() || static_cast<std::size_t>(current.row()) >= rows.size()) return;
  const FileListRow& row = rows[static_cast<std::size_t>(current.row())];
  if (row.kind == FileListRow::Kind::Folder) {
    TreeNode* const node = m_session.NodeOfFolderRow(row);
    if (node == nullptr) return;
    const QModelIndex index = m_dirModel->IndexOf(node);
    m_dirView->expand(index);
    m_dirView->setCurrentIndex(index);
    ClickNode(index);
    return;
  }
  m_session.ActiveListHwnd = Attention::FileList;
  ReadRowSelection();
  if (const auto command = DoubleClickCommand(m_session.settings.mouseEvent))
    m_commands.RunIfEnabled(*command);
}

void MainWindow::ShowStatusBar(bool isShown) {
  m_status->setVisible(isShown);
  m_actions->SetChecked(CommandId::ShowStatus, isShown);
}

bool MainWindow::IsStatusBarShown() const {
  return !m_status->isHidden();
}

void MainWindow::ShowFolders(bool isShown) {
  if (IsFoldersShown() && m_dirFrame->isVisible()) m_dirWidth = m_dirFrame->width();
  m_dirFrame->setVisible(isShown);
  m_actions->SetChecked(CommandId::Folders, isShown);
  m_session.ActiveListHwnd = Attention::FileList;
}

bool MainWindow::IsFoldersShown() const {
  return !m_dirFrame->isHidden();
}

void MainWindow::SelectAllRows() {
  m_fileList->selectAll();
}

void MainWindow::ClearRowSelection() {
  m_fileList->clearSelection();
}

void MainWindow::LockChanged() {
  const bool isLocked = m_session.lock.ProgramLocked();
  m_status->ShowLock(isLocked);
  m_actions->ItemOf(CommandId::Lock)->setText(isLocked ? tr("Unlock...") : tr("Lock..."));
}

}  // namespace tarnel
