#include "app/forms/file_list_model.h"

#include "formkit/icons.h"
#include "formkit/text.h"
#include "formkit/type_icons.h"

namespace tarnel {

namespace {

constexpr int kStandByIcon = 2;
constexpr int kFirstTypeIcon = 4;

}  // namespace

FileListModel::FileListModel(const Session& session, QObject* parent)
    : QAbstractTableModel(parent), m_session(session) {}

void FileListModel::Rebuild() {
  beginResetModel();
  m_columns = m_session.fileList.Columns();
  m_rowCount = static_cast<int>(m_session.fileList.Rows().size());
  endResetModel();
}

int FileListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : m_rowCount;
}

int FileListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant FileListModel::data(const QModelIndex& index, int role) const {
  const auto row = static_cast<std::size_t>(index.row());
  const auto section = static_cast<std::size_t>(index.column());
  if (!index.isValid() || row >= m_session.fileList.Rows().size() || section >= m_columns.size()) return {};
  const FileListRow& shown = m_session.fileList.Rows()[row];
  const Column column = m_columns[section];
  switch (role) {
    case Qt::DisplayRole:
      return ShownText(shown.texts[static_cast<std::size_t>(column)]);
    case Qt::DecorationRole:
      return column == Column::File ? QVariant(IconOf(shown)) : QVariant();
    case Qt::TextAlignmentRole:
      return column == Column::Size ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant();
    default:
      return {};
  }
}

QVariant FileListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  const auto at = static_cast<std::size_t>(section);
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || at >= m_columns.size()) return {};
  return Translated(ColumnKey(m_columns[at]).data());
}

Qt::ItemFlags FileListModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags plain = Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
  return index.column() == 0 || m_session.settings.fullRowSelect ? plain | Qt::ItemIsSelectable : plain;
}

QIcon FileListModel::IconOf(const FileListRow& row) const {
  if (row.kind == FileListRow::Kind::Folder) return OwnIcon("folder");
  const auto known = m_icons.constFind(row.icon);
  if (known != m_icons.constEnd()) return *known;
  return *m_icons.insert(row.icon, IconOfType(row.icon));
}

QIcon FileListModel::IconOfType(int icon) const {
  const auto& keys = m_session.types.Keys();
  const auto at = static_cast<std::size_t>(icon - kFirstTypeIcon);
  if (icon <= kStandByIcon || at >= keys.size()) return OwnIcon("file");
  if (keys[at] == "setup") return OwnIcon("file-program");
  return IconOfName("x." + ShownText(keys[at]).toStdString());
}

}  // namespace tarnel
