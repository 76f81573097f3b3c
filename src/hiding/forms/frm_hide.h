#pragma once

#include <functional>
#include <memory>

#include "formkit/working_form.h"
#include "hiding/forms/explorer_model.h"
#include "hiding/forms/frm_hide_pages.h"
#include "hiding/forms/hide_rows_model.h"
#include "hiding/hide_wizard.h"

class QAction;
class QLabel;
class QMenu;
class QStackedWidget;
class QStatusBar;

namespace tarnel {

class HideOnForm;
class Places;
class FolderWatch;

/// The wizard that hides files: the explorer, what was collected with its options, and the progress. It works
/// on the session's current hideout and closes when the hide is over; what is to be heard of that was said.
class FrmHide : public WorkingForm {
  Q_OBJECT

 public:
  /// Opens a file or folder with the desktop.
  using Opener = std::function<void(const Path&)>;

  FrmHide(Session& session, Dialogue& dialogue, Opener open, QWidget* parent);
  /// With another machine's folders.
  FrmHide(Session& session, Dialogue& dialogue, Opener open, std::unique_ptr<Places> places,
          std::unique_ptr<FolderWatch> watch, QWidget* parent);
  ~FrmHide() override;

 protected:
  QPushButton* CancelButton() const override;

 private:
  class CollectingScreen;
  friend class HideOnForm;

  void Build(std::unique_ptr<Places> places, std::unique_ptr<FolderWatch> watch);
  void BuildStatusBar();
  void BuildMenu();
  void ConnectTree();
  void ConnectExplorer();
  void ConnectButtons();
  void ApplySettings();
  void ApplyListSettings();
  void TreeActivate();
  void ShowState();
  void ShowPanels();

  void ListFolder(const Path& path, ExplorerList::Force force);
  std::vector<ExplorerRow> FolderRows();
  void ExplorerChanged();
  void RowsChanged(bool isChanged);
  void FolderChanged(const Path& path);
  void OpenRow();
  void RenameRow(int row, const QString& text);
  void SortExplorer(int section);
  void ShowMenu(const QPoint& at);
  void DeleteRows();
  void ShowProperties();
  void OpenOutside();
  std::optional<ExplorerRow> SelectedRow() const;

  void PressHide();
  void CollectRows();
  void PressAddmore();
  void PressBack();
  void PressNext();
  void PressStop();
  void PressCancel();
  void PressCancel1();
  void RemoveFiles();
  void ConfirmDeletion();
  void Hide();
  HideRequest Request() const;
  std::optional<HideResult> RunHideAsking(const HideRequest& request);
  void GreyRow(std::size_t number);

  Opener m_open;
  HideWizard m_wizard;
  ExplorerList m_explorer;
  NameIcons m_icons;
  std::unique_ptr<CollectingScreen> m_collecting;
  Selection m_selection;
  LastFocus m_lastFocus = LastFocus::None;
  std::vector<Path> m_chosen;
  ucDirectoryTree* m_tree = nullptr;
  ExplorerFrame* m_explorerFrame = nullptr;
  FilesFrame* m_frame1 = nullptr;
  QStackedWidget* m_pages = nullptr;
  ExplorerModel* m_explorerModel = nullptr;
  HideRowsModel* m_rows = nullptr;
  QMenu* mnuView = nullptr;
  QAction* mnuDelete = nullptr;
  QLabel* m_filesPanel = nullptr;
  QLabel* m_foldersPanel = nullptr;
  QLabel* m_sizePanel = nullptr;
};

}  // namespace tarnel
