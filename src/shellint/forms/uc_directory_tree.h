#pragma once

#include <QFrame>
#include <QPersistentModelIndex>
#include <QTimer>
#include <memory>

#include "shellint/forms/directory_model.h"

class QAction;
class QMenu;
class QTreeView;

namespace tarnel {

class DirectoryView;

/// The directory tree as a control: folders are opened, made, renamed and deleted in it, and it follows what
/// others do to them.
///
/// What is wrong with a path or at the start is thrown as an Error by the call in question; what a person
/// does in the tree ends in a box.
class ucDirectoryTree : public QFrame {
  Q_OBJECT

 public:
  /// The folders of this machine.
  ucDirectoryTree(Files& files, Dialogue& dialogue, QWidget* parent = nullptr);
  ucDirectoryTree(Files& files, Dialogue& dialogue, std::unique_ptr<Places> places,
                  std::unique_ptr<FolderWatch> watch, QWidget* parent = nullptr);
  ~ucDirectoryTree() override;

  bool HardDelete() const { return m_tree.HardDelete; }
  void SetHardDelete(bool isOn) { m_tree.HardDelete = isOn; }

  /// The edge that is drawn on all four sides: 1 raised and 2 sunken outside, 4 raised and 8 sunken inside,
  /// or sums of one of each; 0 is none.
  int BorderType() const { return m_borderType; }
  void SetBorderType(int edge);

  bool HideSelectionA() const;
  void SetHideSelectionA(bool isOn);

  tarnel::Path Path() const { return m_tree.Path(); }
  void SetPath(const tarnel::Path& path);

  void Initialize();
  void Clear() { m_tree.Clear(); }
  void TreeView_NodeClick(DirectoryNode& node);
  void ShellNotifyMsg(const FolderChange& change);
  void DirectoryRenamed(const tarnel::Path& oldPath, const tarnel::Path& newPath);
  bool SelectDir(const tarnel::Path& path);
  DirectoryNode* SelectedNode() const { return m_tree.SelectedNode(); }
  void RefreshDir();
  bool ClickNodeIndex(std::size_t index);
  bool SelectNode(std::size_t index) { return m_tree.SelectNode(index); }
  std::vector<FolderRow> ListChildren();

  /// The icon of a row of ListChildren.
  QIcon IconOf(const FolderRow& row) const;

  /// The menu for the selected node, at the mouse.
  void PopupM();

  /// What "New Folder" of the menu does, in the selected folder or drive.
  void CreateFolder();

  /// The tree view itself, to see whether it has the focus.
  QTreeView* TreeHwnd() const;

  QSize sizeHint() const override;

 signals:
  // As DirectoryTreeEvents says.
  void OnDirClick(const tarnel::Path& path, bool flag);
  void OnDirDblClick(const tarnel::Path& path);
  void OnDirCreate(const tarnel::Path& path);
  void OnDirRename(const tarnel::Path& oldPath, const tarnel::Path& newPath);
  void OnDirRemove(const tarnel::Path& path);
  void OnFileRemove(const tarnel::Path& path);
  void OnFileCreate(const tarnel::Path& path);
  void OnFileRename(const tarnel::Path& oldPath, const tarnel::Path& newPath);

  void GotFocus();

 private:
  class Events;

  void MakeMenu();
  void Connect();
  void WatchHandles();
  void ShowMenu(const QModelIndex& index, DirectoryTree::MenuRoad road, const QPoint& place);
  void Expanded(const QModelIndex& index);
  void Collapsed(const QModelIndex& index);
  void LabelEdited(const QModelIndex& index, const QString& text);

  /// Does what a person wants with the node, if it is still there; no exception leaves it.
  template <class Body>
  void With(const QModelIndex& index, Body&& body);
  void Work();
  void GoOn();

  Dialogue& m_dialogue;
  std::unique_ptr<Places> m_places;
  std::unique_ptr<FolderWatch> m_watch;
  std::unique_ptr<Events> m_events;
  DirectoryModel m_model;
  DirectoryTree m_tree;
  DirectoryView* TreeView;
  QMenu* mnuDirectory;
  QAction* mnuCreate;
  QAction* mnuRename;
  QAction* mnuDelete;
  QPersistentModelIndex m_menuNode;
  QTimer m_work;
  int m_borderType = 0;
};

}  // namespace tarnel
