#include "formkit/file_table.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QPainter>
#include <QStyledItemDelegate>
#include <algorithm>

#include "formkit/layouts.h"

namespace tarnel {

namespace {

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

FileTable::FileTable(QWidget* parent) : QTreeView(parent) {
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setUniformRowHeights(true);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::EditKeyPressed);
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
    event->setAccepted(isSignalConnected(QMetaMethod::fromSignal(&FileTable::RowOpened)));
    emit RowOpened();
  } else if (event->matches(QKeySequence::Delete)) {
    emit DeletePressed();
  } else if (event->key() == Qt::Key_Backspace) {
    emit BackspacePressed();
  } else if (!event->matches(QKeySequence::Copy)) {
    if (currentIndex().column() > 0)
      selectionModel()->setCurrentIndex(currentIndex().siblingAtColumn(0), QItemSelectionModel::NoUpdate);
    QTreeView::keyPressEvent(event);
  }
}

void FileTable::contextMenuEvent(QContextMenuEvent* event) {
  const bool isKey = event->reason() == QContextMenuEvent::Keyboard;
  emit customContextMenuRequested(isKey ? visualRect(currentIndex()).bottomLeft() : event->pos());
}

void FileTable::focusInEvent(QFocusEvent* event) {
  QTreeView::focusInEvent(event);
  emit FocusCame();
}

void FileTable::SetEmptyText(const QString& text) {
  m_emptyText = text;
  viewport()->update();
}

void FileTable::paintEvent(QPaintEvent* event) {
  QTreeView::paintEvent(event);
  if (m_emptyText.isEmpty() || (model() != nullptr && model()->rowCount() > 0)) return;
  QPainter painter(viewport());
  painter.setPen(palette().color(QPalette::Text));
  painter.setOpacity(kRemarkOpacity);
  painter.drawText(viewport()->rect().adjusted(8, 8, -8, -8),
                   Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, m_emptyText);
}

std::vector<std::size_t> FileTable::SelectedRows() const {
  std::vector<std::size_t> rows;
  for (const QItemSelectionRange& range : selectionModel()->selection()) {
    if (range.left() > 0) continue;
    for (int row = range.top(); row <= range.bottom(); ++row)
      rows.push_back(static_cast<std::size_t>(row));
  }
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

}  // namespace tarnel
