#include "search/forms/found_rows_model.h"

#include "carrier/stored_text.h"
#include "formkit/text.h"

namespace tarnel {

namespace {

enum Column { kName, kTitle, kType, kLocation, kColumns };

}  // namespace

FoundRowsModel::FoundRowsModel(const SearchResults& results, FileTypes& types, QObject* parent)
    : QAbstractTableModel(parent), m_results(results), m_types(types) {}

void FoundRowsModel::TakeNewRows() {
  const auto& rows = m_results.Rows();
  if (rows.size() == m_typeTexts.size()) return;
  beginInsertRows({}, rowCount(), static_cast<int>(rows.size()) - 1);
  while (m_typeTexts.size() < rows.size())
    m_typeTexts.push_back(
        ShownText(m_types.Of(ToStored(rows[m_typeTexts.size()].name, TextKind::PathComponent)).text));
  endInsertRows();
}

int FoundRowsModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_typeTexts.size());
}

int FoundRowsModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QVariant FoundRowsModel::data(const QModelIndex& index, int role) const {
  const auto at = static_cast<std::size_t>(index.row());
  if (!index.isValid() || at >= m_typeTexts.size()) return {};
  const SearchRow& row = m_results.Rows()[at];
  if (role == Qt::DisplayRole) return TextOf(row, at, index.column());
  if (role == Qt::DecorationRole && index.column() == kName) return m_icons.Of(row.name);
  if (role == Qt::ToolTipRole) return ShownPath(row.carrier).toHtmlEscaped();
  return {};
}

QString FoundRowsModel::TextOf(const SearchRow& row, std::size_t at, int column) const {
  switch (column) {
    case kName:
      return ShownPath(row.name);
    case kTitle:
      return ShownText(row.title);
    case kType:
      return m_typeTexts[at];
    default:
      return ShownPath(row.location);
  }
}

QVariant FoundRowsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  static constexpr const char* captions[kColumns] = {"Name", "Hideout Titel", "Type", "Location"};
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section >= kColumns) return {};
  return Translated(captions[section]);
}

Qt::ItemFlags FoundRowsModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags plain = Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
  return index.column() == 0 || m_fullRowSelect ? plain | Qt::ItemIsSelectable : plain;
}

}  // namespace tarnel
