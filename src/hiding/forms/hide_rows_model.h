#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "hiding/forms/explorer_model.h"
#include "hiding/run_hide.h"

namespace tarnel {

/// `Files`: what is going to be hidden, and while it is, what has been.
class HideRowsModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  HideRowsModel(const NameIcons& icons, QObject* parent);

  void Show(std::vector<HideRow> rows);
  const std::vector<HideRow>& Rows() const { return m_rows; }
  void SetFullRowSelect(bool isOn) { m_fullRowSelect = isOn; }
  /// The first `count` rows are grey.
  void SetDone(std::size_t count);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  const NameIcons& m_icons;
  std::vector<HideRow> m_rows;
  std::size_t m_done = 0;
  bool m_fullRowSelect = false;
};

}  // namespace tarnel
