#pragma once

#include <QTreeView>
#include <cstddef>
#include <vector>

namespace tarnel {

/// A list of files with columns, with lines between the cells if wanted. What its model lets be checked or
/// edited is: Space checks, F2 edits the label, in whatever column the cell of the last click lies. Return
/// opens a row where somebody hears of it, and is the window's own elsewhere. Names don't go to the
/// clipboard.
class FileTable : public QTreeView {
  Q_OBJECT

 public:
  explicit FileTable(QWidget* parent = nullptr);
  void SetFullRowSelect(bool isOn);
  void SetGridLines(bool isOn);

  /// What stands in grey in the list as long as it has no rows.
  void SetEmptyText(const QString& text);

  /// Ascending, by their place in the model.
  std::vector<std::size_t> SelectedRows() const;

 signals:
  void RowOpened();      ///< by double click or Return
  void DeletePressed();  ///< the Delete key
  void FocusCame();
  void BackspacePressed();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  /// The menu key asks for the menu at the current row.
  void contextMenuEvent(QContextMenuEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QString m_emptyText;
};

}  // namespace tarnel
