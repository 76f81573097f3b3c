#include "shellint/forms/uc_directory_tree.h"

#include <QAction>
#include <QMenu>
#include <QSocketNotifier>
#include <QVBoxLayout>

#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "formkit/text.h"
#include "shellint/forms/directory_view.h"
#include "shellint/inotify_watch.h"

namespace tarnel {

namespace {

constexpr int kSunkenEdge = 2 + 8;

QFrame::Shadow ShadowOf(int edge) {
  const bool isSunkenOutside = (edge & 2) != 0, isSunkenInside = (edge & 8) != 0;
  const bool isOneWay = (edge & 3) == 0 || (edge & 12) == 0 || isSunkenOutside == isSunkenInside;
  if (!isOneWay) return isSunkenOutside ? QFrame::Sunken : QFrame::Raised;
  return isSunkenOutside || isSunkenInside ? QFrame::Sunken : QFrame::Raised;
}

QFrame::Shape ShapeOf(int edge) {
  if (edge == 0) return QFrame::NoFrame;
  if (edge == kSunkenEdge) return QFrame::StyledPanel;  // as the style frames its own lists
  const bool isBoth = (edge & 3) != 0 && (edge & 12) != 0;
  const bool isOneWay = ((edge & 2) != 0) == ((edge & 8) != 0);
  return !isBoth ? QFrame::Panel : isOneWay ? QFrame::WinPanel : QFrame::Box;
}

}  // namespace

/// What the tree tells, as signals, and what it wants of the view.
class ucDirectoryTree::Events : public DirectoryTreeEvents {
 public:
  explicit Events(ucDirectoryTree& owner) : m_owner(owner) {}

  void OnDirClick(const tarnel::Path& path, bool flag) override { emit m_owner.OnDirClick(path, flag); }
  void OnDirDblClick(const tarnel::Path& path) override { emit m_owner.OnDirDblClick(path); }
  void OnDirCreate(const tarnel::Path& path) override { emit m_owner.OnDirCreate(path); }
  void OnDirRename(const tarnel::Path& from, const tarnel::Path& to) override {
    emit m_owner.OnDirRename(from, to);
  }
  void OnDirRemove(const tarnel::Path& path) override { emit m_owner.OnDirRemove(path); }
  void OnFileRemove(const tarnel::Path& path) override { emit m_owner.OnFileRemove(path); }
  void OnFileCreate(const tarnel::Path& path) override { emit m_owner.OnFileCreate(path); }
  void OnFileRename(const tarnel::Path& from, const tarnel::Path& to) override {
    emit m_owner.OnFileRename(from, to);
  }

  void SelectionMoved() override {
    const DirectoryNode* const node = m_owner.m_tree.SelectedNode();
    const QModelIndex index = node == nullptr ? QModelIndex() : m_owner.m_model.IndexOf(*node);
    if (index == m_owner.TreeView->currentIndex()) return;
    m_owner.TreeView->setCurrentIndex(index);
    if (index.isValid()) m_owner.TreeView->scrollTo(index);
  }

  void ShowExpanded(const DirectoryNode& node) override {
    m_owner.TreeView->expand(m_owner.m_model.IndexOf(node));
  }

  /// Not before the host has heard of the folder: what it does then could end the edit.
  void EditLabel(const DirectoryNode& node) override {
    const QPersistentModelIndex index = m_owner.m_model.IndexOf(node);
    QTimer::singleShot(0, &m_owner, [this, index] {
      if (index.isValid()) m_owner.TreeView->edit(index);
    });
  }

 private:
  ucDirectoryTree& m_owner;
};

ucDirectoryTree::ucDirectoryTree(Files& files, Dialogue& dialogue, QWidget* parent)
    : ucDirectoryTree(files, dialogue, std::make_unique<MachinePlaces>(files),
                      std::make_unique<InotifyWatch>(), parent) {}

ucDirectoryTree::ucDirectoryTree(Files& files, Dialogue& dialogue, std::unique_ptr<Places> places,
                                 std::unique_ptr<FolderWatch> watch, QWidget* parent)
    : QFrame(parent),
      m_dialogue(dialogue),
      m_places(std::move(places)),
      m_watch(std::move(watch)),
      m_events(std::make_unique<Events>(*this)),
      m_tree({.files = files,
              .places = *m_places,
              .watch = *m_watch,
              .dialogue = dialogue,
              .rows = m_model,
              .events = *m_events}),
      TreeView(Named(new DirectoryView, "TreeView")) {
  m_model.SetTree(m_tree);
  TreeView->setModel(&m_model);
  TreeView->setAccessibleName(Translated("Folders"));
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->addWidget(TreeView);
  setFocusProxy(TreeView);
  SetBorderType(kSunkenEdge);
  MakeMenu();
  Connect();
  WatchHandles();
}

ucDirectoryTree::~ucDirectoryTree() {
  qDeleteAll(findChildren<QSocketNotifier*>());  // before what they listen to is closed
  TreeView->setModel(nullptr);
}

void ucDirectoryTree::MakeMenu() {
  mnuDirectory = Named(new QMenu(this), "mnuDirectory");
  const auto add = [this](const char* caption, const char* name) {
    QAction* const action = mnuDirectory->addAction(Translated(caption));
    action->setObjectName(QLatin1String(name));
    return action;
  };
  mnuCreate = add("&New Folder", "mnuCreate");
  mnuDirectory->addSeparator()->setObjectName(QStringLiteral("mnuSeperatorA"));
  mnuRename = add("&Rename", "mnuRename");
  mnuDirectory->addSeparator()->setObjectName(QStringLiteral("mnuSeperatorC"));
  mnuDelete = add("&Delete", "mnuDelete");
  connect(mnuCreate, &QAction::triggered, this,
          [this] { With(m_menuNode, [this](DirectoryNode& node) { m_tree.CreateFolder(node); }); });
  connect(mnuRename, &QAction::triggered, this, [this] { TreeView->edit(m_menuNode); });
  connect(mnuDelete, &QAction::triggered, this,
          [this] { With(m_menuNode, [this](DirectoryNode& node) { m_tree.Delete(node); }); });
}

void ucDirectoryTree::Connect() {
  connect(TreeView, &DirectoryView::NodeClicked, this, [this](const QModelIndex& index) {
    With(index, [this](DirectoryNode& node) { m_tree.TreeView_NodeClick(node); });
  });
  connect(TreeView, &DirectoryView::OpenPressed, this, [this](const QModelIndex& index) {
    With(index, [this](DirectoryNode& node) { m_tree.DoubleClick(node); });
  });
  connect(TreeView, &DirectoryView::DeletePressed, this, [this](const QModelIndex& index) {
    With(index, [this](DirectoryNode& node) { m_tree.Delete(node); });
  });
  connect(TreeView, &DirectoryView::MenuWanted, this, [this](const QModelIndex& index, const QPoint& place) {
    ShowMenu(index, DirectoryTree::MenuRoad::Tree, place);
  });
  connect(TreeView, &DirectoryView::FocusCame, this, &ucDirectoryTree::GotFocus);
  connect(TreeView, &QTreeView::expanded, this, &ucDirectoryTree::Expanded);
  connect(TreeView, &QTreeView::collapsed, this, &ucDirectoryTree::Collapsed);
  connect(&m_model, &DirectoryModel::LabelEdited, this, &ucDirectoryTree::LabelEdited);
  connect(&m_work, &QTimer::timeout, this, &ucDirectoryTree::Work);
}

void ucDirectoryTree::WatchHandles() {
  if (m_watch->Handle() >= 0) {
    auto* const changes = new QSocketNotifier(m_watch->Handle(), QSocketNotifier::Read, this);
    connect(changes, &QSocketNotifier::activated, this, [this] {
      m_tree.TakeChanges();
      GoOn();
    });
  }
  if (m_places->DrivesHandle() < 0) return;
  auto* const drives = new QSocketNotifier(m_places->DrivesHandle(), QSocketNotifier::Exception, this);
  connect(drives, &QSocketNotifier::activated, this, [this] {
    Guarded(m_dialogue, [this] { m_tree.RefreshDrives(); });
    GoOn();
  });
}

template <class Body>
void ucDirectoryTree::With(const QModelIndex& index, Body&& body) {
  DirectoryNode* const node = m_model.NodeAt(index);
  if (node != nullptr) Guarded(m_dialogue, [&] { body(*node); });
  GoOn();
}

/// The tree's waiting work is done between events.
void ucDirectoryTree::GoOn() {
  if (!m_work.isActive()) m_work.start(0);
}

void ucDirectoryTree::Work() {
  bool isLeft = false;
  Guarded(m_dialogue, [&] { isLeft = m_tree.Continue(); });
  if (!isLeft) m_work.stop();
}

void ucDirectoryTree::Expanded(const QModelIndex& index) {
  const QPersistentModelIndex kept = index;
  With(index, [&](DirectoryNode& node) {
    if (!m_tree.NodeExpanded(node) && kept.isValid()) TreeView->collapse(kept);
  });
}

/// A selection that is no longer in sight goes to the node that hides it.
void ucDirectoryTree::Collapsed(const QModelIndex& index) {
  With(index, [this](DirectoryNode& node) {
    m_tree.NodeCollapsed(node);
    const DirectoryNode* above = m_tree.SelectedNode();
    while (above != nullptr && above != &node)
      above = above->parent;
    if (above != nullptr && above != m_tree.SelectedNode()) m_tree.TreeView_NodeClick(node);
  });
}

/// Once the editor is closed: a box would take the focus from it, and so end the edit a second time.
void ucDirectoryTree::LabelEdited(const QModelIndex& index, const QString& text) {
  const QPersistentModelIndex kept = index;
  QTimer::singleShot(0, this, [this, kept, text] {
    With(kept, [&](DirectoryNode& node) { m_tree.Rename(node, PathOf(text).native()); });
  });
}

void ucDirectoryTree::ShowMenu(const QModelIndex& index, DirectoryTree::MenuRoad road, const QPoint& place) {
  m_menuNode = index;
  const DirectoryNode* const node = m_model.NodeAt(index);
  const MenuItems items = m_tree.MenuFor(node, road);
  mnuCreate->setEnabled(items.mnuCreate);
  mnuRename->setEnabled(items.mnuRename);
  mnuDelete->setEnabled(items.mnuDelete);
  mnuDirectory->popup(place);
  if (node != nullptr && node != m_tree.SelectedNode()) emit TreeView->NodeClicked(index);
}

void ucDirectoryTree::PopupM() {
  ShowMenu(TreeView->currentIndex(), DirectoryTree::MenuRoad::PopupM, QCursor::pos());
}

void ucDirectoryTree::CreateFolder() {
  const QModelIndex index = TreeView->currentIndex();
  if (!m_tree.MenuFor(m_model.NodeAt(index), DirectoryTree::MenuRoad::PopupM).mnuCreate) return;
  With(index, [this](DirectoryNode& node) { m_tree.CreateFolder(node); });
}

void ucDirectoryTree::SetBorderType(int edge) {
  m_borderType = edge;
  setFrameStyle(static_cast<int>(ShapeOf(edge)) | static_cast<int>(ShadowOf(edge)));
}

bool ucDirectoryTree::HideSelectionA() const {
  return TreeView->HidesSelection();
}

void ucDirectoryTree::SetHideSelectionA(bool isOn) {
  TreeView->SetHidesSelection(isOn);
}

void ucDirectoryTree::SetPath(const tarnel::Path& path) {
  GoOn();
  m_tree.SetPath(path);
}

void ucDirectoryTree::Initialize() {
  GoOn();
  m_tree.Initialize();
}

void ucDirectoryTree::TreeView_NodeClick(DirectoryNode& node) {
  m_tree.TreeView_NodeClick(node);
}

void ucDirectoryTree::ShellNotifyMsg(const FolderChange& change) {
  GoOn();
  m_tree.ShellNotifyMsg(change);
}

void ucDirectoryTree::DirectoryRenamed(const tarnel::Path& oldPath, const tarnel::Path& newPath) {
  GoOn();
  m_tree.DirectoryRenamed(oldPath, newPath);
}

bool ucDirectoryTree::SelectDir(const tarnel::Path& path) {
  GoOn();
  return m_tree.SelectDir(path);
}

void ucDirectoryTree::RefreshDir() {
  m_tree.RefreshDir();
}

bool ucDirectoryTree::ClickNodeIndex(std::size_t index) {
  return m_tree.ClickNodeIndex(index);
}

std::vector<FolderRow> ucDirectoryTree::ListChildren() {
  GoOn();
  return m_tree.ListChildren();
}

QIcon ucDirectoryTree::IconOf(const FolderRow& row) const {
  return m_model.IconOf(row.image);
}

QTreeView* ucDirectoryTree::TreeHwnd() const {
  return TreeView;
}

QSize ucDirectoryTree::sizeHint() const {
  return {fontMetrics().averageCharWidth() * 36, fontMetrics().lineSpacing() * 18};
}

}  // namespace tarnel
