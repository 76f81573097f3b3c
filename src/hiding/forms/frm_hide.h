#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "formkit/working_form.h"
#include "hiding/forms/explorer.h"
#include "hiding/forms/frm_hide_pages.h"
#include "hiding/hide_wizard.h"

class QLabel;
class QStackedWidget;

namespace tarnel {

class CollectingOnForm;
class HideRowsModel;
class Places;
class FolderWatch;

/// The wizard that hides files: the explorer, what was collected with its options, and the progress. It works
/// on the session's current hideout and closes when the hide is over; what is to be heard of that was said.
class FrmHide : public WorkingForm {
  Q_OBJECT

 public:
  FrmHide(Session& session, Dialogue& dialogue, Opener open, QWidget* parent);
  /// With another machine's folders.
  FrmHide(Session& session, Dialogue& dialogue, Opener open, std::unique_ptr<Places> places,
          std::unique_ptr<FolderWatch> watch, QWidget* parent);
  ~FrmHide() override;

 protected:
  QPushButton* CancelButton() const override;

 private:
  void Build(Opener open, std::unique_ptr<Places> places, std::unique_ptr<FolderWatch> watch);
  void BuildStatusBar();
  void ConnectButtons();
  void ApplySettings();
  void ApplyListSettings();
  void ShowState();
  void ShowPanels();

  void PressHide();
  void CollectRows(const HideSource& source);
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

  HideWizard m_wizard;
  NameIcons m_icons;
  FilesFrame* m_frame1;
  std::unique_ptr<CollectingOnForm> m_collecting;
  Selection m_selection;
  std::vector<Path> m_chosen;
  ucDirectoryTree* m_tree = nullptr;
  ExplorerFrame* m_explorerFrame = nullptr;
  QStackedWidget* m_pages = nullptr;
  HideRowsModel* m_rows = nullptr;
  QLabel* m_filesPanel = nullptr;
  QLabel* m_foldersPanel = nullptr;
  QLabel* m_sizePanel = nullptr;
  std::unique_ptr<Explorer> m_explorer;
};

}  // namespace tarnel
