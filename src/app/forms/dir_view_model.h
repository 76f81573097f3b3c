#pragma once

#include <QAbstractItemModel>
#include <QHash>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "carrier/catalogue.h"

namespace tarnel {

/// The tree of open hideouts and their folders, as it was at the last Rebuild. Between two of them nodes may
/// come and go in the catalogue; NodeAt is for use only while none did. Hostile folder texts nest deeper than
/// a stack goes, so nothing here calls itself, and a node costs the same at any depth.
class DirViewModel : public QAbstractItemModel {
  Q_OBJECT

 public:
  explicit DirViewModel(const Catalogue& catalogue, QObject* parent = nullptr);

  void Rebuild();
  TreeNode* NodeAt(const QModelIndex& index) const;
  QModelIndex IndexOf(const TreeNode* node) const;

  /// Tells nodes apart beyond a Rebuild: the same carrier and folder keep it as long as they are there.
  quint64 KeyAt(const QModelIndex& index) const;
  /// All indexes, parents before children.
  QModelIndexList All() const;

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  struct Item {
    TreeNode* node = nullptr;
    Item* parent = nullptr;
    int row = 0;
    QString text;
    quint64 key = 0;
    std::vector<Item*> children = {};
  };
  /// The key of the node above and the carrier of a root, or the name of a folder.
  using Place = std::pair<quint64, std::string>;
  using Keys = std::map<Place, quint64>;

  void AddItems();
  void AddItem(Item& parent, TreeNode& node, Keys& keys);
  const Item& ItemAt(const QModelIndex& index) const;
  QModelIndex IndexOf(const Item& item) const;

  const Catalogue& m_catalogue;
  Item m_top;
  std::vector<std::unique_ptr<Item>> m_items;  ///< parents before children
  QHash<const TreeNode*, const Item*> m_itemOfNode;
  Keys m_keys;
  quint64 m_lastKey = 0;
};

}  // namespace tarnel
