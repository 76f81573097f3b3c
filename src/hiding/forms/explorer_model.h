#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QIcon>
#include <functional>
#include <vector>

#include "formkit/type_icons.h"
#include "hiding/explorer_list.h"

namespace tarnel {

/// `ExplorerFile`: the rows as they were at the last Rebuild. Labels can be edited.
class ExplorerModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  using FolderIcon = std::function<QIcon(int image)>;

  /// `list` must outlive the model.
  ExplorerModel(const ExplorerList& list, const NameIcons& icons, FolderIcon folderIcon, QObject* parent);

  void Rebuild();
  /// The key of a row as it was at the last Rebuild.
  QByteArray KeyAt(std::size_t row) const { return m_keys.at(row); }
  void SetFullRowSelect(bool isOn) { m_fullRowSelect = isOn; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 signals:
  /// A label was edited. Nothing has changed yet.
  void LabelEdited(int row, const QString& text);

 private:
  const ExplorerList& m_list;
  const NameIcons& m_icons;
  FolderIcon m_folderIcon;
  std::vector<QByteArray> m_keys;
  bool m_fullRowSelect = false;
};

}  // namespace tarnel
