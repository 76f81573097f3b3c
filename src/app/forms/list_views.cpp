#include "app/forms/list_views.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace tarnel {

namespace {

/// Levels that open at once. The toolkit lays open levels out by recursion, and hostile folders have no end.
constexpr int kDeepestAtOnce = 100;

/// Paints a line at the right and at the bottom of each cell.
class GridDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QStyledItemDelegate::paint(painter, option, index);
    painter->save();
    QColor line = option.palette.color(QPalette::WindowText);
    line.setAlpha(50);
    painter->setPen(line);
    painter->drawLine(option.rect.topRight(), option.rect.bottomRight());
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    painter->restore();
  }
};

}  // namespace

DirTree::DirTree(QWidget* parent) : QTreeView(parent) {
  setHeaderHidden(true);
  setUniformRowHeights(true);
  setContextMenuPolicy(Qt::CustomContextMenu);
  connect(this, &QTreeView::clicked, this, [this](const QModelIndex& index) {
    m_clicked = index;
    emit NodeClicked(index);
  });
}

/// The right button opens the menu while it is down, so its click comes before that.
void DirTree::mousePressEvent(QMouseEvent* event) {
  m_clicked = currentIndex();
  QTreeView::mousePressEvent(event);
  if (event->button() == Qt::RightButton) ClickIfMoved();
}

/// Pressed on one node and released over another, the second is highlighted, and the toolkit calls it no
/// click.
void DirTree::mouseReleaseEvent(QMouseEvent* event) {
  QTreeView::mouseReleaseEvent(event);
  ClickIfMoved();
}

void DirTree::ClickIfMoved() {
  if (!currentIndex().isValid() || m_clicked == currentIndex()) return;
  m_clicked = currentIndex();
  emit NodeClicked(currentIndex());
}

void DirTree::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) return;
  if (event->key() == Qt::Key_Asterisk) return expandRecursively(currentIndex(), kDeepestAtOnce);
  const QModelIndex before = currentIndex();
  QTreeView::keyPressEvent(event);
  if (currentIndex().isValid() && currentIndex() != before) emit NodeClicked(currentIndex());
}

FileTable::FileTable(QWidget* parent) : QTreeView(parent) {
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setUniformRowHeights(true);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setContextMenuPolicy(Qt::CustomContextMenu);
  header()->setStretchLastSection(false);
  header()->setSectionsClickable(true);
  header()->setSectionsMovable(false);
  header()->setHighlightSections(false);
  header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  connect(this, &QTreeView::doubleClicked, this, &FileTable::RowOpened);
}

void FileTable::SetFullRowSelect(bool isOn) {
  setSelectionBehavior(isOn ? QAbstractItemView::SelectRows : QAbstractItemView::SelectItems);
  setAllColumnsShowFocus(isOn);
}

void FileTable::SetGridLines(bool isOn) {
  const QAbstractItemDelegate* const old = itemDelegate();
  setItemDelegate(isOn ? new GridDelegate(this) : new QStyledItemDelegate(this));
  delete old;
}

void FileTable::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    emit RowOpened();
  } else if (event->matches(QKeySequence::Delete)) {
    emit DeletePressed();
  } else if (!event->matches(QKeySequence::Copy)) {
    QTreeView::keyPressEvent(event);
  }
}

}  // namespace tarnel
