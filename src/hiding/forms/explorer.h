#pragma once

#include <QObject>
#include <functional>
#include <optional>
#include <vector>

#include "formkit/type_icons.h"
#include "hiding/explorer_list.h"
#include "hiding/forms/explorer_model.h"
#include "hiding/hide_wizard.h"

class QAction;
class QMenu;
class QPoint;

namespace tarnel {

class FileTable;
class ucDirectoryTree;

/// Opens a file or folder with the desktop.
using Opener = std::function<void(const Path&)>;

/// What the explorer needs of the form around it; all of it outlives the explorer.
struct ExplorerPorts {
  Files& files;
  Dialogue& dialogue;
  const NameIcons& icons;
  Opener open;
  std::function<void(const std::function<void()>&)> runWork;  ///< as WorkingForm::RunWork
  std::function<bool()> isShown;                              ///< else no folder is listed
};

/// The first step at work: the list shows what the tree's folder holds and follows what others do there; its
/// rows are opened, renamed, sorted, and deleted, by keys, clicks and the pop-up menu.
class Explorer : public QObject {
  Q_OBJECT

 public:
  Explorer(ucDirectoryTree& tree, FileTable& list, ExplorerPorts ports);

  /// Shows the folder with which the person begins, the desktop if it is empty. What the tree can't find or
  /// watch is told, and it works without.
  void Activate(const Path& start);
  void StopFilling() { m_rows.StopFilling(); }
  void SetFullRowSelect(bool isOn) { m_model.SetFullRowSelect(isOn); }

  std::size_t RowCount() const { return m_rows.Rows().size(); }
  bool ListFilling() const { return m_rows.ListFilling(); }
  bool ShowsMyComputer() const { return m_rows.CurrentFolder() == kMyComputer; }
  /// Where collecting begins now.
  HideSource Source() const;

 signals:
  /// Rows came or went, or a filling began or ended.
  void Changed();

 private:
  void BuildMenu();
  void ConnectTree();
  void ConnectList();
  void ListFolder(const Path& path, ExplorerList::Force force);
  std::vector<ExplorerRow> FolderRows();
  void ShowFill();
  void RowsChanged(bool isChanged);
  void FolderChanged(const Path& path);
  std::optional<ExplorerRow> CurrentRow() const;
  void OpenRow();
  void RenameRow(int row, const QString& text);
  void Sort(int section);
  void ShowMenu(const QPoint& at);
  void DeleteRows();
  void ShowProperties();
  void OpenOutside();

  ucDirectoryTree& m_tree;
  FileTable& m_list;
  ExplorerPorts m_ports;
  ExplorerList m_rows;
  ExplorerModel m_model;
  LastFocus m_lastFocus = LastFocus::None;
  QMenu* mnuView = nullptr;
  QAction* mnuDelete = nullptr;
};

}  // namespace tarnel
