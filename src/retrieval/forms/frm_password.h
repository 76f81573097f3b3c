#pragma once

#include <QFormLayout>

#include "formkit/working_form.h"
#include "retrieval/password_steps.h"

class QGroupBox;

namespace tarnel {

class PasswordField;
class WorkProgress;

/// Changes the password of the current hideout, and closes when that is over, however it ended; what is to be
/// heard of it was said. It stays where nothing was begun.
class FrmPassword : public WorkingForm {
  Q_OBJECT

 public:
  FrmPassword(Session& session, Dialogue& dialogue, QWidget* parent);

 protected:
  QPushButton* CancelButton() const override { return Cmd_Cancel; }

 private:
  class Screen;

  void AddNames(QFormLayout& form);
  void AddFields(QFormLayout& form);
  QWidget* MakeProgress();
  void ShowStep(PasswordStep step);

  void PressOk();
  void PressCancel();
  void Change(const PasswordRequest& request);
  bool MayBegin(PasswordRequest& request);
  PasswordField* FieldOf(PasswordInput input) const;

  PasswordStep m_step = PasswordStep::Asking;
  PasswordField* txt_oldpass = nullptr;
  PasswordField* txt_newpass = nullptr;
  PasswordField* txt_confirm = nullptr;
  QGroupBox* StatusContainer = nullptr;
  QWidget* m_strength = nullptr;
  WorkProgress* m_progress = nullptr;
  QPushButton* Cmd_Ok = nullptr;
  QPushButton* Cmd_Cancel = nullptr;
};

}  // namespace tarnel
