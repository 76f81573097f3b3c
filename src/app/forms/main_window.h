#pragma once

#include <QMainWindow>
#include <QTimer>

#include "app/forms/main_commands.h"

class QLabel;
class QSplitter;

namespace tarnel {

class CommandActions;
class DirTree;
class DirViewModel;
class FileListModel;
class FileTable;
class StatusPanels;

/// The program's one top-level window: toolbar, folders, hidden files and status bar of the session.
class MainWindow : public QMainWindow, private SessionView, private CommandedWindow {
  Q_OBJECT

 public:
  MainWindow(Session& session, const WindowPorts& ports);
  ~MainWindow() override;

  /// Opens a carrier named at the start, if it is a file. The window need not be visible yet.
  void StartWith(const Path& carrier);

  /// Shows the guide in a moment, if the settings want it at the start.
  void ShowGuideSoon();

 protected:
  /// Gate, then geometry and columns go to the settings if the user wants that.
  void closeEvent(QCloseEvent* event) override;
  /// A drop copies, whatever its source proposes, for one that is told of a move deletes its file.
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  /// The carrier is opened when the source of the drop has been answered.
  void dropEvent(QDropEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void TreeChanged() override;
  void FileListChanged() override;
  void SettingsChanged() override;
  void ShowStatusBar(bool isShown) override;
  void ShowFolders(bool isShown) override;
  bool IsStatusBarShown() const override;
  bool IsFoldersShown() const override;
  void SelectAllRows() override;
  void ClearRowSelection() override;
  void LockChanged() override;

  void MakePanes();
  void ConnectAll();
  void ShowContextMenus();
  void RestoreGeometry();
  void SaveGeometry();
  void ShowColumns();
  void ShowGuideAtStart();
  void RefreshCommands();
  void ReadRowSelection();
  void ShowSorting();
  void ClickNode(const QModelIndex& index);
  void ClickColumn(int section);
  void OpenRow();
  void SetAttention(Attention view);

  Session& m_session;
  WindowPorts m_ports;
  MainCommands m_commands;
  CommandActions* m_actions;
  QSplitter* m_sizer;
  QWidget* m_dirFrame;
  DirTree* m_dirView;
  DirViewModel* m_dirModel;
  FileTable* m_fileList;
  FileListModel* m_fileModel;
  StatusPanels* m_status;
  QTimer m_refresh;
  QTimer m_stepbyStepTimer;
  int m_dirWidth = 0;  ///< of the folder pane when it was last visible
};

}  // namespace tarnel
