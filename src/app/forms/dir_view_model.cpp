#include "app/forms/dir_view_model.h"

#include "formkit/icons.h"
#include "formkit/text.h"

namespace tarnel {

DirViewModel::DirViewModel(const Catalogue& catalogue, QObject* parent)
    : QAbstractItemModel(parent), m_catalogue(catalogue) {}

void DirViewModel::Rebuild() {
  beginResetModel();
  m_top.children.clear();
  m_itemOfNode.clear();
  m_items.clear();
  AddItems();
  endResetModel();
}

/// Level by level: each item's children come when it is its turn.
void DirViewModel::AddItems() {
  Keys keys;
  for (const auto& root : m_catalogue.Roots())
    AddItem(m_top, *root, keys);
  for (std::size_t next = 0; next < m_items.size(); ++next) {
    Item& item = *m_items[next];
    for (const auto& child : item.node->children)
      AddItem(item, *child, keys);
  }
  m_keys = std::move(keys);
}

void DirViewModel::AddItem(Item& parent, TreeNode& node, Keys& keys) {
  Place place(parent.key, node.IsRoot() ? node.hideout->carrier.native() : std::string(node.text));
  const auto known = m_keys.find(place);
  auto item = std::make_unique<Item>(Item{.node = &node,
                                          .parent = &parent,
                                          .row = static_cast<int>(parent.children.size()),
                                          .text = ShownText(node.text),
                                          .key = known == m_keys.end() ? ++m_lastKey : known->second});
  keys.emplace(std::move(place), item->key);
  m_itemOfNode.insert(&node, item.get());
  parent.children.push_back(item.get());
  m_items.push_back(std::move(item));
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

quint64 DirViewModel::KeyAt(const QModelIndex& index) const {
  return ItemAt(index).key;
}

QModelIndexList DirViewModel::All() const {
  QModelIndexList indexes;
  for (const auto& item : m_items)
    indexes << IndexOf(*item);
  return indexes;
}

QModelIndex DirViewModel::IndexOf(const TreeNode* node) const {
  const Item* const item = m_itemOfNode.value(node);
  return item == nullptr ? QModelIndex() : IndexOf(*item);
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
