#pragma once

#include <QDialog>
#include <vector>

#include "app/config_values.h"
#include "app/session.h"
#include "base/dialogue.h"
#include "formkit/file_dialogs.h"

class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class QGroupBox;
class QSlider;
class QStackedWidget;
class QTabBar;
class QVBoxLayout;

namespace tarnel {

class ConfigPasswordPage;
class PathField;

/// What Config does to the main window at once.
class ConfigurableWindow {
 public:
  virtual ~ConfigurableWindow() = default;
  virtual void ShowStatusBar(bool isShown) = 0;
  virtual void ShowFolders(bool isShown) = 0;
};

/// Edits the settings. They go to the settings file; the caller reloads the record.
class Config : public QDialog {
  Q_OBJECT

 public:
  Config(Session& session, ConfigurableWindow& window, Dialogue& dialogue, FileDialogs& fileDialogs,
         QWidget* parent);

 protected:
  /// A click in an empty folder box, and a double click in any, opens the folder dialog.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* MakeGeneralPage();
  QWidget* MakeListingBox();
  QWidget* MakeMouseBox();
  QWidget* MakeColumnsBox();
  QWidget* MakeFoldersPage();
  QWidget* MakeFolderBox(std::size_t group, const char* name, const QString& caption, const QString& last);
  QWidget* MakeOptionsPage();
  QWidget* MakeHideBox();
  QWidget* MakeExtractBox();
  QWidget* MakeViewBox();
  QWidget* MakeLevelRow();
  QCheckBox* MakeFlag(const char* control, const QString& caption);
  QAbstractButton* MakeOption(std::size_t group, std::size_t option, const QString& caption);
  PathField* MakeFolderText(const char* name);

  void ShowValues(const ConfigValues& values);
  ConfigValues Values() const;
  void ChangeTab(int tab);
  void AskForFolderIfEmpty(PathField* text);
  void AskForFolder(PathField* text);
  void FallBack(const PathField* text);
  void PressOk();
  void LoadDefaults();

  Session& m_session;
  ConfigurableWindow& m_window;
  Dialogue& m_dialogue;
  FileDialogs& m_fileDialogs;

  QTabBar* m_tabs;
  QStackedWidget* m_pages;
  ConfigPasswordPage* m_passwordPage;
  std::vector<QAbstractButton*> m_flags;  ///< in the order of ConfigFlags
  std::vector<QButtonGroup*> m_groups;    ///< in the order of ConfigGroups
  std::vector<PathField*> m_folders;      ///< for each group; null where it has none
  QSlider* m_level = nullptr;
  QAbstractButton* m_extractTo = nullptr;
  PathField* m_viewFolder = nullptr;
};

}  // namespace tarnel
