#include "app/forms/dir_view_model.h"

#include "formkit/icons.h"
#include "formkit/text.h"

namespace tarnel {

DirViewModel::DirViewModel(const Catalogue& catalogue, QObject* parent)
    : QAbstractItemModel(parent), m_catalogue(catalogue) {}

void DirViewModel::Rebuild() {
  beginResetModel();
  m_top.children.clear();
  for (const auto& root : m_catalogue.Roots())
    AddChild(m_top, *root);
  endResetModel();
}

void DirViewModel::AddChild(Item& parent, TreeNode& node) {
  auto item = std::make_unique<Item>();
  item->node = &node;
  item->parent = &parent;
  item->row = static_cast<int>(parent.children.size());
  item->text = ShownText(node.text);
  const std::string key = node.hideout->carrier.string() + '\0' + std::string(node.FolderPath());
  item->key = QString::fromLatin1(key.data(), static_cast<qsizetype>(key.size()));
  for (const auto& child : node.children)
    AddChild(*item, *child);
  parent.children.push_back(std::move(item));
}

const DirViewModel::Item& DirViewModel::ItemAt(const QModelIndex& index) const {
  return index.isValid() ? *static_cast<const Item*>(index.internalPointer()) : m_top;
}

QModelIndex DirViewModel::IndexOf(const Item& item) const {
  return createIndex(item.row, 0, &item);
}

TreeNode* DirViewModel::NodeAt(const QModelIndex& index) const {
  return ItemAt(index).node;
}

QString DirViewModel::KeyAt(const QModelIndex& index) const {
  return ItemAt(index).key;
}

QModelIndexList DirViewModel::All() const {
  QModelIndexList indexes;
  for (const auto& root : m_top.children)
    Collect(*root, indexes);
  return indexes;
}

void DirViewModel::Collect(const Item& item, QModelIndexList& indexes) const {
  indexes << IndexOf(item);
  for (const auto& child : item.children)
    Collect(*child, indexes);
}

QModelIndex DirViewModel::IndexOf(const TreeNode* node) const {
  if (node == nullptr) return {};
  for (const QModelIndex& index : All()) {
    if (NodeAt(index) == node) return index;
  }
  return {};
}

QModelIndex DirViewModel::index(int row, int column, const QModelIndex& parent) const {
  if (!hasIndex(row, column, parent)) return {};
  return IndexOf(*ItemAt(parent).children[static_cast<std::size_t>(row)]);
}

QModelIndex DirViewModel::parent(const QModelIndex& child) const {
  const Item* const parent = child.isValid() ? ItemAt(child).parent : nullptr;
  return parent == nullptr || parent == &m_top ? QModelIndex() : IndexOf(*parent);
}

int DirViewModel::rowCount(const QModelIndex& parent) const {
  return static_cast<int>(ItemAt(parent).children.size());
}

int DirViewModel::columnCount(const QModelIndex&) const {
  return 1;
}

QVariant DirViewModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Item& item = ItemAt(index);
  if (role == Qt::DisplayRole) return item.text;
  if (role != Qt::DecorationRole) return {};
  if (item.parent == &m_top) return OwnIcon("hideout");
  QIcon icon = OwnIcon("folder");
  icon.addFile(QStringLiteral(":/icons/folder-open.svg"), {}, QIcon::Normal, QIcon::On);
  return icon;
}

}  // namespace tarnel
