#pragma once

#include <QStyledItemDelegate>
#include <QTreeView>

namespace tarnel {

/// The tree of hideouts. A node is clicked by the mouse, or by the keys that move to it.
class DirTree : public QTreeView {
  Q_OBJECT

 public:
  explicit DirTree(QWidget* parent = nullptr);

 signals:
  void NodeClicked(const QModelIndex& index);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};

/// The list of hidden files, with lines between the cells if wanted.
class FileTable : public QTreeView {
  Q_OBJECT

 public:
  explicit FileTable(QWidget* parent = nullptr);
  void SetFullRowSelect(bool isOn);
  void SetGridLines(bool isOn);

 signals:
  void RowOpened();      ///< by double click or Return
  void DeletePressed();  ///< the Delete key

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace tarnel
