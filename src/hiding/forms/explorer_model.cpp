#include "hiding/forms/explorer_model.h"

#include <utility>

#include "base/printable.h"
#include "formkit/text.h"
#include "formkit/type_icons.h"

namespace tarnel {

ExplorerModel::ExplorerModel(const ExplorerList& list, const NameIcons& icons, FolderIcon folderIcon,
                             QObject* parent)
    : QAbstractTableModel(parent), m_list(list), m_icons(icons), m_folderIcon(std::move(folderIcon)) {}

void ExplorerModel::Rebuild() {
  beginResetModel();
  m_keys.clear();
  if (!m_list.ListFilling())
    for (const ExplorerRow& row : m_list.Rows())
      m_keys.push_back(QByteArray::fromStdString(row.key.native()));
  endResetModel();
}

int ExplorerModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_keys.size());
}

int ExplorerModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : 4;
}

QVariant ExplorerModel::data(const QModelIndex& index, int role) const {
  const auto at = static_cast<std::size_t>(index.row());
  if (!index.isValid() || at >= m_list.Rows().size()) return {};
  const ExplorerRow& row = m_list.Rows()[at];
  const auto column = static_cast<ExplorerColumn>(index.column());
  if (role == Qt::DecorationRole && column == ExplorerColumn::File)
    return row.image >= 0 ? m_folderIcon(row.image) : m_icons.Of(row.text);
  if (role == Qt::TextAlignmentRole && column == ExplorerColumn::Size)
    return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  if (role == Qt::EditRole) return ShownPath(row.text);
  if (role == Qt::ToolTipRole)
    return Printable(row.text) != row.text ? tr("The name holds bytes that are no text.") : QVariant();
  if (role != Qt::DisplayRole) return {};
  switch (column) {
    case ExplorerColumn::File:
      return ShownPath(row.text);
    case ExplorerColumn::Size:
      return QString::fromStdString(ExplorerSize(row));
    case ExplorerColumn::Type:
      return row.image >= 0 ? QString() : QString::fromStdString(TypeTextOf(row.text));
    case ExplorerColumn::Modified:
      return QString::fromStdString(ExplorerModified(row));
  }
  return {};
}

QVariant ExplorerModel::headerData(int section, Qt::Orientation orientation, int role) const {
  static constexpr const char* captions[] = {"File", "Size", "Type", "Modified"};
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section >= 4) return {};
  return Translated(captions[section]);
}

Qt::ItemFlags ExplorerModel::flags(const QModelIndex& index) const {
  Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
  if (index.column() == 0 || m_fullRowSelect) flags |= Qt::ItemIsSelectable;
  const bool canBeNamed = index.column() == 0 && m_list.CurrentFolder() != kMyComputer;
  return canBeNamed ? flags | Qt::ItemIsEditable : flags;
}

bool ExplorerModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::EditRole || value.toString() == data(index, role).toString()) return false;
  emit LabelEdited(index.row(), value.toString());
  return false;  // the row shows its new name when it has one
}

}  // namespace tarnel
