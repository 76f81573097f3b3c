#include "shellint/forms/directory_model.h"

#include "base/printable.h"
#include "formkit/icons.h"
#include "formkit/text.h"

namespace tarnel {

namespace {

constexpr std::array<const char*, 10> kPictures = {
    "desktop",       "documents",  "computer",     "drive-removable", "drive-fixed",
    "drive-network", "drive-disc", "drive-memory", "drive-fixed",     "folder"};

/// The closed folder, and the open one for the state "on".
QIcon FolderIcon() {
  QIcon icon = OwnIcon("folder");
  const QString open = QStringLiteral(":/icons/folder-open.svg");
  icon.addFile(open, {}, QIcon::Normal, QIcon::On);
  icon.addFile(open, {}, QIcon::Selected, QIcon::On);
  return icon;
}

QVariant ToolTipOf(const DirectoryNode& node) {
  if (Printable(node.Text()) == node.Text()) return {};
  return Translated(
      "This name holds bytes that are no text. They are shown as \"\\x\" and two digits, and stay as they "
      "are.");
}

}  // namespace

DirectoryModel::DirectoryModel(QObject* parent) : QAbstractItemModel(parent) {
  for (std::size_t i = 0; i < kPictures.size(); ++i)
    m_icons[i] = OwnIcon(kPictures[i]);
  m_icons[static_cast<std::size_t>(NodeImage::Folder)] = FolderIcon();
}

DirectoryNode* DirectoryModel::NodeAt(const QModelIndex& index) const {
  return static_cast<DirectoryNode*>(index.internalPointer());
}

const DirectoryNode& DirectoryModel::NodeOrTop(const QModelIndex& index) const {
  return index.isValid() ? *NodeAt(index) : m_tree->Top();
}

QModelIndex DirectoryModel::IndexOf(const DirectoryNode& node) const {
  if (&node == &m_tree->Top()) return {};
  return createIndex(static_cast<int>(DirectoryNodes::RowOf(node)), 0, &node);
}

QModelIndex DirectoryModel::index(int row, int column, const QModelIndex& parent) const {
  const auto& children = NodeOrTop(parent).children;
  if (row < 0 || column != 0 || static_cast<std::size_t>(row) >= children.size()) return {};
  return createIndex(row, 0, children[static_cast<std::size_t>(row)].get());
}

QModelIndex DirectoryModel::parent(const QModelIndex& child) const {
  return child.isValid() ? IndexOf(*NodeAt(child)->parent) : QModelIndex();
}

int DirectoryModel::rowCount(const QModelIndex& parent) const {
  return m_tree == nullptr ? 0 : static_cast<int>(NodeOrTop(parent).children.size());
}

int DirectoryModel::columnCount(const QModelIndex&) const {
  return 1;
}

bool DirectoryModel::hasChildren(const QModelIndex& parent) const {
  return m_tree != nullptr && NodeOrTop(parent).MayHaveChildren();
}

QVariant DirectoryModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const DirectoryNode& node = *NodeAt(index);
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return ShownPath(node.Text());
    case Qt::DecorationRole:
      return IconOf(node.image);
    case Qt::ToolTipRole:
      return ToolTipOf(node);
    default:
      return {};
  }
}

/// Shown to screen readers only.
QVariant DirectoryModel::headerData(int, Qt::Orientation, int role) const {
  return role == Qt::DisplayRole ? Translated("Folders") : QVariant();
}

Qt::ItemFlags DirectoryModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  return m_tree->CanRename(*NodeAt(index)) ? flags | Qt::ItemIsEditable : flags;
}

bool DirectoryModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::EditRole || value == data(index, Qt::EditRole)) return false;
  emit LabelEdited(index, value.toString());
  return true;
}

void DirectoryModel::RowsComing(const DirectoryNode& parent, std::size_t first, std::size_t count) {
  beginInsertRows(IndexOf(parent), static_cast<int>(first), static_cast<int>(first + count - 1));
}

void DirectoryModel::RowsGoing(const DirectoryNode& parent, std::size_t first, std::size_t count) {
  beginRemoveRows(IndexOf(parent), static_cast<int>(first), static_cast<int>(first + count - 1));
}

void DirectoryModel::RowMoving(const DirectoryNode& parent, std::size_t from, std::size_t to) {
  const QModelIndex place = IndexOf(parent);
  beginMoveRows(place, static_cast<int>(from), static_cast<int>(from), place, static_cast<int>(to));
}

void DirectoryModel::RowChanged(const DirectoryNode& node) {
  const QModelIndex index = IndexOf(node);
  emit dataChanged(index, index);
  if (!node.IsReadOnlyWhenOpened()) return;
  emit layoutAboutToBeChanged();  // views ask only then whether there are children
  emit layoutChanged();
}

}  // namespace tarnel
