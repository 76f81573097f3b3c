#pragma once

#include <QAbstractTableModel>

#include "formkit/type_icons.h"
#include "retrieval/delete_list.h"

namespace tarnel {

/// `FileList` of `FrmDelete`: rows with check marks. A row whose mark is taken away leaves the list, so each
/// row that stands is checked.
class DeleteRowsModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  DeleteRowsModel(DeleteList list, QObject* parent);

  const DeleteList& List() const { return m_list; }
  void SetRunning(bool isRunning);
  void RemoveSelected(const std::vector<std::size_t>& rows);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 signals:
  void RowUnchecked(int row);  ///< it stood there, and is gone

 private:
  QString TextAt(const QModelIndex& index) const;

  DeleteList m_list;
  NameIcons m_icons;
};

}  // namespace tarnel
