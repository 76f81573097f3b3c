#pragma once

#include <QPersistentModelIndex>
#include <QTreeView>

namespace tarnel {

/// The tree of hideouts. A node is clicked by the mouse, with either button, or by the keys that move to it,
/// so that the highlighted node always is the one that was clicked last. Names don't go to the clipboard.
class DirTree : public QTreeView {
  Q_OBJECT

 public:
  explicit DirTree(QWidget* parent = nullptr);

 signals:
  void NodeClicked(const QModelIndex& index);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  void ClickIfMoved();

  QPersistentModelIndex m_clicked;  ///< current when the mouse was pressed, or clicked since
};

}  // namespace tarnel
