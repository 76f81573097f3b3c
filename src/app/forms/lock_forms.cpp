#include "app/forms/lock_forms.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "formkit/guarded.h"
#include "formkit/icons.h"
#include "formkit/layouts.h"
#include "formkit/password_field.h"

namespace tarnel {

LockForm::LockForm(const QString& text, const QString& prompt, Dialogue& dialogue, QWidget* parent)
    : QDialog(parent), m_dialogue(dialogue) {
  m_password = Named(new PasswordField(this), "Text1");
  m_password->setMinimumWidth(fontMetrics().averageCharWidth() * 32);
  auto* const show = Named(new QCheckBox(tr("Show Password"), this), "Check1");
  connect(show, &QCheckBox::toggled, m_password, &PasswordField::SetShown);
  auto* const picture = new QLabel(this);
  picture->setPixmap(OwnIcon("locked").pixmap(QSize(48, 48), devicePixelRatioF()));
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  QPushButton* const ok = Named(buttons->button(QDialogButtonBox::Ok), "Command2");
  ok->setText(tr("OK"));
  QPushButton* const cancel = Named(buttons->button(QDialogButtonBox::Cancel), "Cmd_Cancel");
  cancel->setText(tr("Cancel"));

  auto* const form = new QFormLayout;
  AddRow(*form, tr("Password:"), m_password);
  form->addRow(QString(), show);
  auto* const texts = new QVBoxLayout;
  texts->addWidget(Named(Explanation(text), "Label1"));
  texts->addWidget(Named(Explanation(prompt), "Label3"));
  auto* const head = new QHBoxLayout;
  head->addWidget(picture, 0, Qt::AlignTop);
  head->addLayout(texts, 1);
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(head);
  layout->addLayout(form);
  layout->addStretch();
  layout->addWidget(buttons);
  m_password->setFocus();
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(ok, &QPushButton::clicked, this, [this] { Guarded(m_dialogue, [this] { PressOk(); }); });
}

void LockForm::PressOk() {
  const LockInput input = Enter(m_password->Password());
  if (input == LockInput::Accepted) {
    accept();
    return;
  }
  m_dialogue.Ask(LockMessage(input));
  m_password->setFocus();
  m_password->selectAll();
}

FrmLock::FrmLock(ProgramLock& lock, Dialogue& dialogue, QWidget* parent)
    : LockForm(tr("Lock Tarnel from unauthorized users! "), tr("Please enter a new password."), dialogue,
               parent),
      m_lock(lock) {
  setObjectName(QStringLiteral("FrmLock"));
  setWindowTitle(tr(" Lock Tarnel"));
}

FrmUnlock::FrmUnlock(const ProgramLock& lock, Dialogue& dialogue, QWidget* parent)
    : LockForm(tr("Tarnel is locked from unauthorized users!"),
               lock.Prompt() == UnlockPrompt::Unlock ? tr("Please enter the password to unlock Tarnel.")
                                                     : tr("Please enter the password to continue..."),
               dialogue, parent),
      m_lock(lock) {
  setObjectName(QStringLiteral("FrmUnlock"));
  setWindowTitle(tr(" Unlock Tarnel"));
}

}  // namespace tarnel
