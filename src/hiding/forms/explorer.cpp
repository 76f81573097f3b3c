#include "hiding/forms/explorer.h"

#include <QHeaderView>
#include <QMenu>
#include <QSet>
#include <utility>

#include "base/destruction.h"
#include "formkit/file_table.h"
#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "formkit/text.h"
#include "hiding/forms/file_properties.h"
#include "hiding/questions.h"
#include "shellint/forms/uc_directory_tree.h"

namespace tarnel {

Explorer::Explorer(ucDirectoryTree& tree, FileTable& list, ExplorerPorts ports)
    : m_tree(tree),
      m_list(list),
      m_ports(std::move(ports)),
      m_rows(m_ports.files, TypeTextOf),
      m_model(
          m_rows, m_ports.icons,
          [this](int image) {
            return m_tree.IconOf({.text = {}, .image = static_cast<NodeImage>(image), .path = {}, .tag = {}});
          },
          this) {
  m_list.setModel(&m_model);
  BuildMenu();
  ConnectTree();
  ConnectList();
}

void Explorer::Activate(const Path& start) {
  Guarded(m_ports.dialogue, [this] { m_tree.Initialize(); });
  if (start.empty())
    m_tree.ClickNodeIndex(1);
  else
    m_tree.SetPath(start);
  m_tree.setFocus();
  m_lastFocus = LastFocus::Tree;
}

HideSource Explorer::Source() const {
  return {.LastFocusHwnd = m_lastFocus,
          .treePath = m_tree.Path(),
          .rows = m_rows.Rows(),
          .selected = m_list.SelectedRows()};
}

void Explorer::BuildMenu() {
  mnuView = Named(new QMenu(&m_list), "mnuView");
  const auto add = [this](const char* caption, const char* name, void (Explorer::*slot)()) {
    QAction* const action = mnuView->addAction(Translated(caption));
    action->setObjectName(QLatin1String(name));
    connect(action, &QAction::triggered, this,
            [this, slot] { Guarded(m_ports.dialogue, [&] { (this->*slot)(); }); });
    return action;
  };
  add("&Open", "menu_shell", &Explorer::OpenOutside);
  connect(mnuView->addAction(Translated("&Select All")), &QAction::triggered, &m_list, &FileTable::selectAll);
  QAction* const rename = Named(mnuView->addAction(Translated("Re&name")), "mnuRename");
  connect(rename, &QAction::triggered, this,
          [this] { m_list.edit(m_list.currentIndex().siblingAtColumn(0)); });
  mnuDelete = add("&Delete", "mnuDelete", &Explorer::DeleteRows);
  add("&Properties", "mnuProperties", &Explorer::ShowProperties);
  QAction* const refresh = Named(mnuView->addAction(Translated("&Refresh")), "mnuViewRefresh");
  connect(refresh, &QAction::triggered, this,
          [this] { ListFolder(m_tree.Path(), ExplorerList::Force::Yes); });
}

void Explorer::ConnectTree() {
  connect(&m_tree, &ucDirectoryTree::OnDirClick, this, [this](const Path& path) {
    m_lastFocus = LastFocus::Tree;
    ListFolder(path, ExplorerList::Force::No);
  });
  connect(&m_tree, &ucDirectoryTree::GotFocus, this, [this] { m_lastFocus = LastFocus::Tree; });
  connect(&m_tree, &ucDirectoryTree::OnFileCreate, this,
          [this](const Path& path) { RowsChanged(m_rows.FileCreated(path)); });
  connect(&m_tree, &ucDirectoryTree::OnFileRemove, this,
          [this](const Path& path) { RowsChanged(m_rows.FileRemoved(path)); });
  connect(&m_tree, &ucDirectoryTree::OnFileRename, this,
          [this](const Path& from, const Path& to) { RowsChanged(m_rows.FileRenamed(from, to)); });
  connect(&m_tree, &ucDirectoryTree::OnDirRemove, this, &Explorer::FolderChanged);
  connect(&m_tree, &ucDirectoryTree::OnDirCreate, this, &Explorer::FolderChanged);
  connect(&m_tree, &ucDirectoryTree::OnDirRename, this,
          [this](const Path&, const Path& to) { FolderChanged(to); });
}

void Explorer::ConnectList() {
  const auto touched = [this] {
    if (m_model.rowCount() > 0) m_lastFocus = LastFocus::ExplorerFile;
  };
  connect(&m_list, &FileTable::FocusCame, this, touched);
  connect(&m_list, &FileTable::clicked, this, touched);
  connect(m_list.selectionModel(), &QItemSelectionModel::selectionChanged, this,
          [this](const QItemSelection& selected) {
            if (m_list.hasFocus() && !selected.isEmpty()) m_lastFocus = LastFocus::ExplorerFile;
          });
  connect(&m_list, &FileTable::RowOpened, this, &Explorer::OpenRow);
  connect(&m_list, &FileTable::DeletePressed, this, [this] { mnuDelete->trigger(); });
  connect(&m_list, &FileTable::BackspacePressed, this, [this] {
    const Path folder = m_tree.Path();
    if (folder != kMyComputer) m_tree.SelectDir(Path(ParentOf(folder.native())));
  });
  connect(&m_list, &QWidget::customContextMenuRequested, this, &Explorer::ShowMenu);
  connect(m_list.header(), &QHeaderView::sectionClicked, this, &Explorer::Sort);
  connect(&m_model, &ExplorerModel::LabelEdited, this, &Explorer::RenameRow);
}

void Explorer::ListFolder(const Path& path, ExplorerList::Force force) {
  if (!m_ports.isShown()) return;
  m_ports.runWork([&] {
    m_rows.Show(path, force,
                {.listChildren = [this] { return FolderRows(); },
                 .changed = [this] { ShowFill(); },
                 .dialogue = m_ports.dialogue});
  });
}

std::vector<ExplorerRow> Explorer::FolderRows() {
  std::vector<ExplorerRow> rows;
  for (const FolderRow& row : m_tree.ListChildren())
    rows.push_back({.key = row.path, .text = row.text, .tag = row.tag, .image = static_cast<int>(row.image)});
  return rows;
}

void Explorer::ShowFill() {
  const bool isFilling = m_rows.ListFilling();
  m_model.Rebuild();
  m_list.SetEmptyText(isFilling ? tr("Loading...") : tr("No files in this folder"));
  m_list.header()->setSortIndicatorShown(false);
  if (m_model.rowCount() > 0)
    m_list.selectionModel()->setCurrentIndex(m_model.index(0, 0), QItemSelectionModel::NoUpdate);
  if (isFilling != (m_list.cursor().shape() == Qt::BusyCursor)) {
    if (isFilling)
      m_list.setCursor(Qt::BusyCursor);
    else
      m_list.unsetCursor();
  }
  emit Changed();
}

/// Rows that stay keep their selection.
void Explorer::RowsChanged(bool isChanged) {
  if (!isChanged) return;
  QSet<QByteArray> selected;
  const auto keyOf = [](const ExplorerRow& row) { return QByteArray::fromStdString(row.key.native()); };
  const int current = m_list.currentIndex().row();
  for (const std::size_t row : m_list.SelectedRows())
    selected << m_model.KeyAt(row);
  m_model.Rebuild();
  QItemSelection kept;
  for (int row = 0; row < m_model.rowCount(); ++row)
    if (selected.contains(keyOf(m_rows.Rows()[static_cast<std::size_t>(row)])))
      kept.select(m_model.index(row, 0), m_model.index(row, 0));
  const QModelIndex next = m_model.index(std::min(current, m_model.rowCount() - 1), 0);
  m_list.selectionModel()->setCurrentIndex(next, QItemSelectionModel::NoUpdate);
  m_list.selectionModel()->select(kept, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  emit Changed();
}

void Explorer::FolderChanged(const Path& path) {
  if (Path(ParentOf(path.native())) == m_rows.CurrentFolder())
    ListFolder(m_rows.CurrentFolder(), ExplorerList::Force::Yes);
}

std::optional<ExplorerRow> Explorer::CurrentRow() const {
  const QModelIndex current = m_list.currentIndex();
  const auto row = static_cast<std::size_t>(current.row());
  if (!current.isValid() || row >= m_rows.Rows().size()) return std::nullopt;
  return m_rows.Rows()[row];
}

void Explorer::OpenRow() {
  const auto row = CurrentRow();
  if (row && row->IsFolder()) m_tree.SelectDir(row->FolderPath());
  m_list.setFocus();
}

void Explorer::RenameRow(int row, const QString& text) {
  Guarded(m_ports.dialogue, [&] {
    const ExplorerRow before = m_rows.Rows().at(static_cast<std::size_t>(row));
    const auto outcome = m_rows.Rename(static_cast<std::size_t>(row), text.toStdString(), m_tree.Path());
    if (outcome == ExplorerList::Renamed::BadName) m_ports.dialogue.Ask(BadNameQuestion());
    if (outcome != ExplorerList::Renamed::Done) return;
    RowsChanged(true);
    if (before.image < 0) return;
    m_tree.DirectoryRenamed(before.key, m_rows.Rows().at(static_cast<std::size_t>(row)).key / "");
    ListFolder(m_rows.CurrentFolder(), ExplorerList::Force::Yes);
  });
}

void Explorer::Sort(int section) {
  if (m_rows.ListFilling()) return;
  m_rows.ColumnClick(static_cast<ExplorerColumn>(section));
  RowsChanged(true);
  QHeaderView* const header = m_list.header();
  header->setSortIndicatorShown(true);
  header->setSortIndicator(section,
                           m_rows.SortState()->isDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void Explorer::ShowMenu(const QPoint& at) {
  const bool isSelected = m_list.currentIndex().isValid() &&
                          m_list.selectionModel()->isSelected(m_list.currentIndex().siblingAtColumn(0));
  if (m_tree.Path() == kMyComputer || !isSelected) return;
  mnuView->popup(m_list.viewport()->mapToGlobal(at));
}

void Explorer::DeleteRows() {
  const Path folder = m_tree.Path();
  if (folder == kMyComputer) return;
  std::vector<Path> paths;
  for (const std::size_t row : m_list.SelectedRows())
    paths.push_back(folder / m_rows.Rows().at(row).text);
  m_ports.runWork([&] { ShellDelete(paths, m_ports.dialogue, m_ports.files); });
  m_tree.RefreshDir();
}

void Explorer::ShowProperties() {
  if (const auto row = CurrentRow()) FileProperties(m_tree.Path() / row->text, m_ports.files, &m_list).exec();
}

/// What the platform can't open is passed over in silence.
void Explorer::OpenOutside() {
  const auto row = CurrentRow();
  if (!row) return;
  try {
    m_ports.open(m_tree.Path() / row->text);
  } catch (const Error&) {
  }
}

}  // namespace tarnel
