#include "shellint/forms/directory_view.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyledItemDelegate>
#include <algorithm>

#include "formkit/layouts.h"
#include "formkit/text.h"

namespace tarnel {

namespace {

/// Shows the open folder where a node is selected.
class DirectoryDelegate : public QStyledItemDelegate {
 public:
  explicit DirectoryDelegate(DirectoryView& view) : QStyledItemDelegate(&view), m_view(view) {}

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override {
    auto* const editor = Named(new QLineEdit(parent), "LabelEdit");
    editor->setAccessibleName(Translated("Name of the folder"));
    return editor;
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    option->state.setFlag(QStyle::State_Open, option->state.testFlag(QStyle::State_Selected));
    if (m_view.HidesSelection() && !m_view.hasFocus()) option->state.setFlag(QStyle::State_Selected, false);
  }

 private:
  DirectoryView& m_view;
};

}  // namespace

DirectoryView::DirectoryView(QWidget* parent) : QTreeView(parent) {
  setHeaderHidden(true);
  setUniformRowHeights(true);
  setEditTriggers(QAbstractItemView::EditKeyPressed);
  setItemDelegate(new DirectoryDelegate(*this));
  setFrameShape(QFrame::NoFrame);
  header()->setStretchLastSection(false);
  header()->setResizeContentsPrecision(0);  // what is in sight counts; a folder may have 50,000 rows
  header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  connect(this, &QTreeView::clicked, this, &DirectoryView::NodeClicked);
  setExpandsOnDoubleClick(false);
  connect(this, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
    if (isExpanded(index))
      collapse(index);
    else
      Open(index);
  });
}

void DirectoryView::SetHidesSelection(bool isOn) {
  m_hidesSelection = isOn;
  viewport()->update();
}

/// The rows fill the width also where all names are short.
int DirectoryView::sizeHintForColumn(int column) const {
  return std::max(QTreeView::sizeHintForColumn(column), viewport()->width());
}

void DirectoryView::keyPressEvent(QKeyEvent* event) {
  if (state() != EditingState && DoKey(*event)) return;
  const QModelIndex before = currentIndex();
  QTreeView::keyPressEvent(event);
  if (currentIndex().isValid() && currentIndex() != before) emit NodeClicked(currentIndex());
}

bool DirectoryView::DoKey(const QKeyEvent& event) {
  const QModelIndex at = currentIndex();
  if (!at.isValid()) return false;
  const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
  const bool isUnread = model()->rowCount(at) == 0 && model()->hasChildren(at);
  if (isReturn || (event.key() == Qt::Key_Right && isUnread)) {
    Open(at);
  } else if (event.matches(QKeySequence::Delete)) {
    emit DeletePressed(at);
  } else if (event.key() == Qt::Key_Backspace) {
    if (at.parent().isValid()) emit NodeClicked(at.parent());
  } else {
    return false;
  }
  return true;
}

void DirectoryView::Open(const QModelIndex& index) {
  if (model()->rowCount(index) > 0)
    expand(index);
  else
    emit OpenPressed(index);
}

void DirectoryView::mousePressEvent(QMouseEvent* event) {
  QTreeView::mousePressEvent(event);
  m_pressed = currentIndex();
}

/// The pointer may have moved on to another node in between.
void DirectoryView::mouseReleaseEvent(QMouseEvent* event) {
  QTreeView::mouseReleaseEvent(event);
  const bool isOther = event->button() == Qt::LeftButton && m_pressed != currentIndex();
  if (isOther && currentIndex().isValid()) emit NodeClicked(currentIndex());
  m_pressed = currentIndex();
}

void DirectoryView::contextMenuEvent(QContextMenuEvent* event) {
  const bool isByMouse = event->reason() == QContextMenuEvent::Mouse;
  const QModelIndex at = isByMouse ? indexAt(event->pos()) : currentIndex();
  const QPoint place = isByMouse ? event->pos() : visualRect(at).bottomLeft();
  emit MenuWanted(at, viewport()->mapToGlobal(place));
  event->accept();
}

void DirectoryView::focusInEvent(QFocusEvent* event) {
  QTreeView::focusInEvent(event);
  emit FocusCame();
}

}  // namespace tarnel
