#pragma once

#include <QAbstractItemModel>
#include <memory>
#include <vector>

#include "carrier/catalogue.h"

namespace tarnel {

/// The tree of open hideouts and their folders, as it was at the last Rebuild. Between two of them nodes may
/// come and go in the catalogue; NodeAt is for use only while none did.
class DirViewModel : public QAbstractItemModel {
  Q_OBJECT

 public:
  explicit DirViewModel(const Catalogue& catalogue, QObject* parent = nullptr);

  void Rebuild();
  TreeNode* NodeAt(const QModelIndex& index) const;
  QModelIndex IndexOf(const TreeNode* node) const;

  /// Tells nodes apart beyond a Rebuild: carrier and folder.
  QString KeyAt(const QModelIndex& index) const;
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
    QString key;
    std::vector<std::unique_ptr<Item>> children;
  };

  void AddChild(Item& parent, TreeNode& node);
  const Item& ItemAt(const QModelIndex& index) const;
  QModelIndex IndexOf(const Item& item) const;
  void Collect(const Item& item, QModelIndexList& indexes) const;

  const Catalogue& m_catalogue;
  Item m_top;
};

}  // namespace tarnel
