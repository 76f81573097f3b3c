#include "retrieval/forms/delete_rows_model.h"

#include <utility>

#include "carrier/stored_text.h"
#include "formkit/text.h"

namespace tarnel {

namespace {

enum ListColumn { kFile, kSize, kSubfolder, kColumns };

}  // namespace

DeleteRowsModel::DeleteRowsModel(DeleteList list, QObject* parent)
    : QAbstractTableModel(parent), m_list(std::move(list)) {}

void DeleteRowsModel::SetRunning(bool isRunning) {
  if (isRunning)
    m_list.BeginRunning();
  else
    m_list.EndRunning();
}

void DeleteRowsModel::RemoveSelected(const std::vector<std::size_t>& rows) {
  beginResetModel();
  m_list.RemoveSelected(rows);
  endResetModel();
}

int DeleteRowsModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_list.Rows().size());
}

int DeleteRowsModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QVariant DeleteRowsModel::data(const QModelIndex& index, int role) const {
  const auto at = static_cast<std::size_t>(index.row());
  if (!index.isValid() || at >= m_list.Rows().size()) return {};
  const DeleteList::Row& row = m_list.Rows()[at];
  if (role == Qt::DecorationRole && index.column() == kFile) return m_icons.Of(ToPlatform(row.name));
  if (role == Qt::CheckStateRole && index.column() == kFile) return Qt::Checked;
  if (role == Qt::TextAlignmentRole && index.column() == kSize)
    return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  if (role == Qt::ToolTipRole) return TextAt(index).toHtmlEscaped();
  return role == Qt::DisplayRole ? TextAt(index) : QVariant();
}

QString DeleteRowsModel::TextAt(const QModelIndex& index) const {
  const DeleteList::Row& row = m_list.Rows()[static_cast<std::size_t>(index.row())];
  switch (index.column()) {
    case kFile:
      return ShownText(row.name);
    case kSize:
      return QString::fromStdString(row.size);
    default:
      return ShownText(row.folder);
  }
}

bool DeleteRowsModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  const int row = index.row();
  if (role != Qt::CheckStateRole || value.toInt() != Qt::Unchecked || m_list.Running()) return false;
  beginRemoveRows({}, row, row);
  m_list.Uncheck(static_cast<std::size_t>(row));
  endRemoveRows();
  emit RowUnchecked(row);
  return true;
}

QVariant DeleteRowsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  static constexpr const char* captions[kColumns] = {"File", "Size", "Subfolder"};
  if (orientation != Qt::Horizontal || section >= kColumns) return {};
  if (role == Qt::TextAlignmentRole && section == kSize) return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  return role == Qt::DisplayRole ? Translated(captions[section]) : QVariant();
}

Qt::ItemFlags DeleteRowsModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags plain = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
  return index.column() == kFile ? plain | Qt::ItemIsUserCheckable : plain;
}

}  // namespace tarnel
