#include "hiding/forms/hide_rows_model.h"

#include <QGuiApplication>
#include <QPalette>
#include <utility>

#include "base/formats.h"
#include "formkit/text.h"
#include "formkit/type_icons.h"

namespace tarnel {

HideRowsModel::HideRowsModel(const NameIcons& icons, QObject* parent)
    : QAbstractTableModel(parent), m_icons(icons) {}

void HideRowsModel::Show(std::vector<HideRow> rows) {
  beginResetModel();
  m_rows = std::move(rows);
  m_done = 0;
  endResetModel();
}

void HideRowsModel::SetDone(std::size_t count) {
  m_done = count;
  if (count > 0)
    emit dataChanged(index(static_cast<int>(count) - 1, 0), index(static_cast<int>(count) - 1, 3));
}

int HideRowsModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int HideRowsModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : 4;
}

QVariant HideRowsModel::data(const QModelIndex& index, int role) const {
  const auto at = static_cast<std::size_t>(index.row());
  if (!index.isValid() || at >= m_rows.size()) return {};
  const HideRow& row = m_rows[at];
  if (role == Qt::DecorationRole && index.column() == 0) return m_icons.Of(row.name);
  if (role == Qt::ForegroundRole && at < m_done)
    return QGuiApplication::palette().color(QPalette::Disabled, QPalette::Text);
  if (role == Qt::TextAlignmentRole && index.column() == 1)
    return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  if (role == Qt::ToolTipRole && index.column() == 0) return ShownPath(row.source).toHtmlEscaped();
  if (role != Qt::DisplayRole) return {};
  switch (index.column()) {
    case 0:
      return ShownPath(row.name);
    case 1:
      return QString::fromStdString(GroupedKilobytes(static_cast<double>(row.size)) + " KB");
    case 2:
      return QString::fromStdString(TypeTextOf(row.name));
    default:
      return ShownText(row.folder);
  }
}

QVariant HideRowsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  static constexpr const char* captions[] = {"File", "Size", "Type", "Subfolder"};
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section >= 4) return {};
  return Translated(captions[section]);
}

Qt::ItemFlags HideRowsModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags plain = Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
  return index.column() == 0 || m_fullRowSelect ? plain | Qt::ItemIsSelectable : plain;
}

}  // namespace tarnel
