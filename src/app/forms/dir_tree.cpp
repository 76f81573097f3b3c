#include "app/forms/dir_tree.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace tarnel {

namespace {

/// Levels that open at once. The toolkit lays open levels out by recursion, and hostile folders have no end.
constexpr int kDeepestAtOnce = 100;

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

}  // namespace tarnel
