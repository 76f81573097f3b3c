#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QIcon>
#include <vector>

#include "app/session.h"

namespace tarnel {

/// The rows of the visible file list, as they were at the last Rebuild.
class FileListModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit FileListModel(const Session& session, QObject* parent = nullptr);

  void Rebuild();
  const std::vector<Column>& Columns() const { return m_columns; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  /// Without full row select only the first column can be selected.
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  QIcon IconOf(const FileListRow& row) const;
  QIcon IconOfType(int icon) const;

  const Session& m_session;
  std::vector<Column> m_columns;
  int m_rowCount = 0;
  mutable QHash<int, QIcon> m_icons;
};

}  // namespace tarnel
