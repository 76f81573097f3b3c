#pragma once

#include <QAbstractItemModel>
#include <QIcon>
#include <array>

#include "shellint/directory_tree.h"

namespace tarnel {

/// The directory tree for the toolkit's view. It holds nothing: the nodes are the items.
class DirectoryModel : public QAbstractItemModel, public TreeRows {
  Q_OBJECT

 public:
  explicit DirectoryModel(QObject* parent = nullptr);

  /// Before anything is shown.
  void SetTree(const DirectoryTree& tree) { m_tree = &tree; }

  const QIcon& IconOf(NodeImage image) const { return m_icons[static_cast<std::size_t>(image)]; }

  QModelIndex IndexOf(const DirectoryNode& node) const;
  /// Null for no index.
  DirectoryNode* NodeAt(const QModelIndex& index) const;

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  bool hasChildren(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

  void RowsComing(const DirectoryNode& parent, std::size_t first, std::size_t count) override;
  void RowsCame() override { endInsertRows(); }
  void RowsGoing(const DirectoryNode& parent, std::size_t first, std::size_t count) override;
  void RowsGone() override { endRemoveRows(); }
  void RowMoving(const DirectoryNode& parent, std::size_t from, std::size_t to) override;
  void RowMoved() override { endMoveRows(); }
  void RowChanged(const DirectoryNode& node) override;

 signals:
  /// The label was edited. Nothing has changed yet.
  void LabelEdited(const QModelIndex& index, const QString& text);

 private:
  const DirectoryNode& NodeOrTop(const QModelIndex& index) const;

  const DirectoryTree* m_tree = nullptr;
  std::array<QIcon, 10> m_icons;  // by NodeImage
};

}  // namespace tarnel
