#pragma once

#include <QPersistentModelIndex>
#include <QTreeView>

namespace tarnel {

/// The view of the directory tree. It tells what a person means by mouse and keys; moving to a node by a key
/// is a click on it.
class DirectoryView : public QTreeView {
  Q_OBJECT

 public:
  explicit DirectoryView(QWidget* parent = nullptr);

  /// Without the focus no selection is shown.
  bool HidesSelection() const { return m_hidesSelection; }
  void SetHidesSelection(bool isOn);

 signals:
  void NodeClicked(const QModelIndex& index);
  void OpenPressed(const QModelIndex& index);  ///< double click, or Return
  void DeletePressed(const QModelIndex& index);
  void MenuWanted(const QModelIndex& index, const QPoint& globalPosition);
  void FocusCame();

 protected:
  int sizeHintForColumn(int column) const override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  bool DoKey(const QKeyEvent& event);
  void Open(const QModelIndex& index);

  QPersistentModelIndex m_pressed;
  bool m_hidesSelection = false;
};

}  // namespace tarnel
