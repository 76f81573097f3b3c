#pragma once

#include <QGroupBox>

class QAbstractItemModel;
class QCheckBox;
class QHBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QSplitter;
class QStackedWidget;

namespace tarnel {

class FileTable;
class PathLabel;
class WorkProgress;
class ucDirectoryTree;

/// Step 1: the explorer.
class ExplorerFrame : public QGroupBox {
  Q_OBJECT

 public:
  explicit ExplorerFrame(ucDirectoryTree* tree);

  FileTable* ExplorerFile;
  QSplitter* ExplSizer;
  QPushButton* Cmd_Hide;
  QPushButton* Cmd_Cancel1;
};

/// The panel that lies where the list will be while rows are collected.
class CollectingPanel : public QWidget {
  Q_OBJECT

 public:
  CollectingPanel();

  QPushButton* Cmd_StopSearch;
  QProgressBar* ProgressBar2;
  PathLabel* Lb_FileSelect;
  PathLabel* Lb_DirSelect;
  QLabel* Lb_Found;
};

/// What is to be done beside hiding.
class HideOptionsPanel : public QWidget {
  Q_OBJECT

 public:
  HideOptionsPanel();

  QCheckBox* Chk_Compress;
  QCheckBox* Chk_FolderInfo;
  QCheckBox* Chk_Subfolders;
  QCheckBox* Chk_WriteProtection;
  QRadioButton* opt_deletion;
  QRadioButton* opt_recyclebin;
  QRadioButton* opt_nodeletion;

 private:
  QWidget* MakeChecks();
  QWidget* MakeOriginals();
};

/// Step 3, in the place of the options.
class HideFrame : public QGroupBox {
  Q_OBJECT

 public:
  HideFrame();

  QLabel* Lb_Act;
  PathLabel* Lb_FileName;
  QLabel* Lb_Filesize;
  QLabel* Lb_FileNumber;
  WorkProgress* Progress;
};

/// Steps 2 and 3.
class FilesFrame : public QGroupBox {
  Q_OBJECT

 public:
  FilesFrame();

  void ShowCollecting(bool isCollecting);
  void ShowHiding(bool isHiding);

  FileTable* Files;
  CollectingPanel* Anzeige_Pic;
  HideOptionsPanel* Options;
  HideFrame* Hiding;
  QPushButton* Cmd_Addmore;
  QPushButton* Cmd_Back;
  QPushButton* Cmd_Next;
  QPushButton* Cmd_Cancel;

 private:
  QHBoxLayout* MakeButtons();

  QStackedWidget* m_upper;
  QStackedWidget* m_lower;
};

}  // namespace tarnel
