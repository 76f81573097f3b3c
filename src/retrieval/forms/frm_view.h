#pragma once

#include <QTimer>
#include <functional>

#include "formkit/working_form.h"
#include "retrieval/run_update.h"
#include "retrieval/view_steps.h"

class QLabel;
class QStackedWidget;

namespace tarnel {

class PathLabel;
class WorkProgress;

/// Shows the file of the session's parcel with the desktop, puts it back as often as wanted, and destroys the
/// plain copy when it is left. The parcel follows each update, and goes with the form.
class FrmView : public WorkingForm {
  Q_OBJECT

 public:
  /// Opens a file or folder with the desktop. Throws Error.
  using ShellOpen = std::function<void(const Path&)>;

  FrmView(Session& session, Dialogue& dialogue, ShellOpen open, QWidget* parent);
  ~FrmView() override;

 protected:
  QPushButton* CancelButton() const override { return Cmd_Cancel; }

 private:
  class OpeningOnForm;
  class UpdatingOnForm;
  class Returning;

  QWidget* MakeOpeningFrame();
  QWidget* MakeWaitingFrame();
  QLayout* MakeButtons();
  void ShowFileName();
  void ShowStep(ViewStep step);
  void ShowChange();
  Reading ViewedReading();

  void Open();
  void PressUpdate();
  bool FindEntryAgain();
  void Update(Leftover leftover);
  void PressOk();
  void PressCancel();

  const ShellOpen m_open;
  CurrentHideout m_viewed;  ///< stays, whichever hideout becomes current meanwhile
  ViewStep m_step = ViewStep::Opening;
  ViewResult m_view;
  bool m_wasUpdated = false;
  std::optional<bool> m_isUpdatePreset;
  QTimer m_watch;
  QStackedWidget* m_frames = nullptr;
  PathLabel* Lb_File = nullptr;
  PathLabel* Lb_extractingTo = nullptr;
  WorkProgress* ProgressBar = nullptr;
  PathLabel* Lb_Name = nullptr;
  QLabel* Lb_Change = nullptr;
  WorkProgress* ProgressBar1 = nullptr;
  QLabel* m_panel = nullptr;
  QPushButton* Cmd_Ok = nullptr;
  QPushButton* Cmd_Update = nullptr;
  QPushButton* Cmd_Cancel = nullptr;
};

}  // namespace tarnel
