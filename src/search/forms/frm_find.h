#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "formkit/working_form.h"
#include "search/find_state.h"
#include "search/search_folder.h"

class QAction;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QStatusBar;

namespace tarnel {

class FileTable;
class FolderWatch;
class FoundRowsModel;
class PasswordField;
class PathLabel;
class Places;
class ucDirectoryTree;

/// Finds the carriers that a password opens. Modeless: it works on while other windows are used, and deletes
/// itself when it is closed. Its controls count while a search runs, from the next file on.
class FrmFind : public WorkingForm {
  Q_OBJECT

 public:
  struct Ports {
    /// True lets a search begin, or a result be opened.
    std::function<bool()> passGate;
    /// Goes on to the password of a carrier, and returns when that has come to its end.
    std::function<void(const Path& carrier)> open;
  };

  /// The folders of this machine.
  FrmFind(Session& session, Dialogue& dialogue, Ports ports, QWidget* parent);
  FrmFind(Session& session, Dialogue& dialogue, Ports ports, std::unique_ptr<Places> places,
          std::unique_ptr<FolderWatch> watch, QWidget* parent);
  ~FrmFind() override;

  /// Closes the form; a running search is stopped first, and its end not waited for.
  void Leave();

 protected:
  QPushButton* CancelButton() const override { return Cmd_Cancel; }

 private:
  class Screen;

  void BuildTree(std::unique_ptr<Places> places, std::unique_ptr<FolderWatch> watch);
  QWidget* BuildControls();
  QWidget* BuildResults();
  void BuildStatusBar();
  void BuildMenu();
  void ConnectAll();
  void TreeActivate();
  void ShowState();
  void ReadControls();

  void PressSearch();
  void Search();
  void PressCancel();
  void OpenRow();
  void ListNotSearched();

  Ports m_ports;
  FindState m_state;
  SearchRequest m_request;
  SearchResults m_results;
  std::vector<NotSearched> m_notSearched;
  FoundRowsModel* m_rows;
  ucDirectoryTree* DirTree = nullptr;
  QLineEdit* Txt_SearchIn = nullptr;
  PasswordField* txt_Pass = nullptr;
  QComboBox* Cmb_Encrypt = nullptr;
  QComboBox* Cmb_Type = nullptr;
  QCheckBox* Chk_Subfolders = nullptr;
  QCheckBox* Chk_Superficial = nullptr;
  QPushButton* Cmd_Search = nullptr;
  QPushButton* Cmd_Cancel = nullptr;
  FileTable* FileList = nullptr;
  QMenu* Menu_Main = nullptr;
  QAction* menu_search = nullptr;
  QAction* menu_cancel = nullptr;
  QAction* menu_open = nullptr;
  QStatusBar* StatusBar = nullptr;
  QLabel* m_countPanel = nullptr;
  PathLabel* m_folderPanel = nullptr;
  QPushButton* m_notSearchedPanel = nullptr;
};

}  // namespace tarnel
