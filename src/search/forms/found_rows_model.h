#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "app/file_types.h"
#include "formkit/type_icons.h"
#include "search/search_results.h"

namespace tarnel {

/// `FileList`: the carriers that were found. It only grows, so what is selected stays so.
class FoundRowsModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// Both must outlive the model.
  FoundRowsModel(const SearchResults& results, FileTypes& types, QObject* parent);

  /// Shows the rows that were added to the results.
  void TakeNewRows();
  void SetFullRowSelect(bool isOn) { m_fullRowSelect = isOn; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  QString TextOf(const SearchRow& row, std::size_t at, int column) const;

  const SearchResults& m_results;
  FileTypes& m_types;
  NameIcons m_icons;
  std::vector<QString> m_typeTexts;  ///< of the rows that are shown
  bool m_fullRowSelect = false;
};

}  // namespace tarnel
