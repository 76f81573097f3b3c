#include "retrieval/forms/frm_password.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/session_screen.h"
#include "base/attempt.h"
#include "carrier/leftovers.h"
#include "carrier/open_hideout.h"
#include "formkit/busy_cursor.h"
#include "formkit/check_carrier.h"
#include "formkit/fit_path_text.h"
#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "formkit/password_field.h"
#include "formkit/strength_bar.h"
#include "formkit/text.h"
#include "formkit/work_progress.h"
#include "retrieval/questions.h"

namespace tarnel {

/// The change as the form shows it.
class FrmPassword::Screen : public RewritingSessionScreen<RewriteScreen> {
 public:
  explicit Screen(FrmPassword& form)
      : RewritingSessionScreen(form.GetSession(), form.GetDialogue(), form.CancelFlag()), m_form(form) {}

  void ShowProgress(Length value, Length maximum) override { m_form.m_progress->Show(value, maximum); }
  void CarrierReplaced() override { m_form.ShowStep(PasswordStep::Reading); }
  void ShowReading(Length, Length) override {}

 private:
  FrmPassword& m_form;
};

FrmPassword::FrmPassword(Session& session, Dialogue& dialogue, QWidget* parent)
    : WorkingForm(session, dialogue, parent) {
  setObjectName(QStringLiteral("FrmPassword"));
  setWindowTitle(tr(" Change Hideout Password"));
  auto* const form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form->setRowWrapPolicy(QFormLayout::WrapLongRows);
  AddNames(*form);
  AddFields(*form);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  Cmd_Ok = Named(buttons->button(QDialogButtonBox::Ok), "Cmd_Ok");
  Cmd_Ok->setText(tr("OK"));
  Cmd_Cancel = Named(buttons->button(QDialogButtonBox::Cancel), "Cmd_Cancel");
  Cmd_Cancel->setText(tr("Cancel"));
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addStretch();
  layout->addWidget(MakeProgress());
  layout->addWidget(buttons);
  connect(Cmd_Ok, &QPushButton::clicked, this, [this] { Guarded(GetDialogue(), [this] { PressOk(); }); });
  connect(Cmd_Cancel, &QPushButton::clicked, this,
          [this] { Guarded(GetDialogue(), [this] { PressCancel(); }); });
  setMinimumWidth(fontMetrics().averageCharWidth() * 84);
  ShowStep(PasswordStep::Asking);
  txt_oldpass->setFocus();
}

void FrmPassword::AddNames(QFormLayout& form) {
  const CurrentHideout& current = GetSession().current;
  const auto add = [&form](const QString& caption, const char* name, const QString& text) {
    auto* const label = Named(new PathLabel, name);
    label->SetPath(text);
    form.addRow(caption, label);
  };
  add(tr("Carrier File Name:"), "Lb_CarrierName", ShownText(current.CurrentCarrierName));
  add(tr("Hideout Titel:"), "Lb_HideOutName", ShownText(current.CurrentHideoutTitle));
}

void FrmPassword::AddFields(QFormLayout& form) {
  txt_oldpass = Named(new PasswordField, "txt_oldpass");
  txt_newpass = Named(new PasswordField, "txt_newpass");
  txt_newpass->SetRefused(NewPasswordRefuses);
  txt_confirm = Named(new PasswordField, "txt_confirm");
  AddRow(form, tr("&Old Password:"), txt_oldpass);
  AddRow(form, tr("&New Password:"), txt_newpass);
  m_strength = Named(new StrengthBar(*txt_newpass, GetDialogue()), "Strength");
  form.addRow(QString(), m_strength);
  AddRow(form, tr("&Retype Password for Confirmation:"), txt_confirm);
  form.addRow(Hint(tr("Be aware of upper-/lowercase!")));
}

QWidget* FrmPassword::MakeProgress() {
  StatusContainer = Named(new QGroupBox(tr("Progress")), "StatusContainer");
  m_progress = new WorkProgress("ProgressBar", tr("Progress"));
  auto* const layout = new QVBoxLayout(StatusContainer);
  layout->addWidget(Named(new QLabel(tr("Please wait...")), "Lb_Wait"));
  layout->addWidget(m_progress);
  KeepPlaceWhenHidden(*StatusContainer);
  return StatusContainer;
}

void FrmPassword::ShowStep(PasswordStep step) {
  m_step = step;
  const PasswordControls controls = ControlsOf(step);
  for (PasswordField* const field : {txt_oldpass, txt_newpass, txt_confirm})
    field->setEnabled(controls.fields);
  m_strength->setEnabled(controls.fields);
  StatusContainer->setVisible(controls.isProgressShown);
  Cmd_Ok->setEnabled(controls.Cmd_Ok);
  Cmd_Cancel->setEnabled(controls.Cmd_Cancel);
}

PasswordField* FrmPassword::FieldOf(PasswordInput input) const {
  switch (input) {
    case PasswordInput::txt_oldpass:
      return txt_oldpass;
    case PasswordInput::txt_newpass:
      return txt_newpass;
    case PasswordInput::txt_confirm:
      break;
  }
  return txt_confirm;
}

void FrmPassword::PressOk() {
  PasswordRequest request{.oldPassword = Key(txt_oldpass->Password()),
                          .newPassword = Key(txt_newpass->Password()),
                          .confirmation = txt_confirm->Password()};
  if (const auto fault = FaultOf(request, GetSession().current.CurrentPassword)) {
    GetDialogue().Ask(questions::PasswordRefused(*fault));
    PasswordField* const field = FieldOf(InputOf(*fault));
    field->setFocus();
    field->selectAll();
    return;
  }
  if (MayBegin(request)) Change(request);
}

/// False where the person doesn't want it, or where there is nothing left to change, which closes the form.
bool FrmPassword::MayBegin(PasswordRequest& request) {
  Session& session = GetSession();
  const Path carrier = session.current.CurrentCarrierPath;
  const bool isReadable = CheckCarrier(session, GetDialogue(), this) != CarrierCheck::GaveUp;
  if (session.current.CurrentCarrierPath != carrier || session.FilesOf(carrier) == 0) {
    done(QDialog::Rejected);
    return false;
  }
  const std::vector<Path> leftovers = LeftoversOfRewriting(carrier, session.files);
  if (!isReadable || !MayReplace(leftovers, GetDialogue())) return false;
  if (!leftovers.empty()) request.leftover = Leftover::Replace;
  return true;
}

void FrmPassword::Change(const PasswordRequest& request) {
  std::optional<PasswordResult> result;
  m_progress->Restart();
  ShowStep(PasswordStep::Running);
  Cmd_Cancel->setFocus();
  RunWork([&] {
    const BusyCursor busy;
    Screen screen(*this);
    try {
      Attempt(GetDialogue(), {questions::PasswordError}, [&] {
        Reading reading = GetSession().MakeReading();
        result = RunPassword(request, reading, screen);
      });
    } catch (const Stop&) {  // then nothing has changed
    }
  });
  if (!result || result->ending != RewriteEnding::Done) GetSession().CarrierKeptItsBytes();
  ShowStep(PasswordStep::Asking);
  if (result) done(QDialog::Accepted);
}

void FrmPassword::PressCancel() {
  if (m_step == PasswordStep::Asking) return done(QDialog::Rejected);
  AskToCancel(questions::ReallyCancel("password.cancel", questions::kChangingPassword));
}

}  // namespace tarnel
