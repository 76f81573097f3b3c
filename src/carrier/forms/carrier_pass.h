#pragma once

#include <QDialog>

#include "app/session.h"
#include "base/dialogue.h"
#include "crypto/algorithm.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTabWidget;

namespace tarnel {

class PasswordField;

/// The step from a carrier to a hideout: one side asks for a password and finds the algorithm by trying, the
/// other makes a new hideout in memory. Shown modally; what it opened stands in the session afterwards.
class CarrierPass : public QDialog {
  Q_OBJECT

 public:
  enum class Side { Open = 0, Create = 1 };

  /// Starts on the side that the settings name, or on the creating one while the session is hiding.
  CarrierPass(Path carrier, Session& session, Dialogue& dialogue, QWidget* parent);

  /// The user left by Cancel.
  bool Canceled() const { return m_isCanceled; }

 protected:
  void showEvent(QShowEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

  /// Cancel, the close box and Escape: while a hideout is being read it only stops the reading.
  void reject() override;

 private:
  QWidget* MakeOpenSide();
  QWidget* MakeCreateSide();
  QWidget* MakeAlgorithmBox();
  void ConnectAll();
  void FocusSide();
  void ShowAlgorithm();

  void PressOk();
  void OpenHideout();
  void ShowTrying(bool isTrying);
  void AskForNewHideout();
  void CreateHideout();
  void FocusPasswordAfterTitle();

  const Path m_carrier;
  Session& m_session;
  Dialogue& m_dialogue;
  bool m_isCanceled = false;

  QTabWidget* m_tabs;
  PasswordField* m_password;
  QGroupBox* m_status;
  QProgressBar* m_progress;
  QLineEdit* m_title;
  PasswordField* m_newPassword;
  PasswordField* m_confirmation;
  QComboBox* m_algorithm;
  QLabel* m_algorithmText;
  QPushButton* m_ok;
  QPushButton* m_cancel;
};

}  // namespace tarnel
