#include "app/forms/config_password_page.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "formkit/layouts.h"
#include "formkit/password_field.h"

namespace tarnel {

ConfigPasswordPage::ConfigPasswordPage(QWidget* parent) : QFrame(parent) {
  setObjectName(QStringLiteral("Frame_4"));
  const std::pair<const char*, QString> actions[] = {
      {"chk_pro_hidefiles", tr("Hide Files")},
      {"chk_pro_extractfiles", tr("Extract Hidden Files")},
      {"chk_pro_viewfiles", tr("View/Edit Hidden Files")},
      {"chk_pro_showconfig", tr("Show Configuration")},
      {"chk_pro_changepassword", tr("Change Carrier File Password")},
      {"Chk_Pro_Search", tr("Search for Carrier Files")},
      {"Chk_Pro_CarrierProperties", tr("Show Carrier File Properties")},
  };
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(
      Explanation(tr("Do you want to lock your hidden files from unauthorized users trying to have access "
                     "while carrie file is opened and you are away?")));
  layout->addWidget(Explanation(tr("Therefore use this password protection!")));
  m_require = Named(new QCheckBox(tr("Require password for following actions:")), "Chk_pro_require");
  layout->addWidget(m_require);
  for (const auto& [name, caption] : actions) {
    m_actions.push_back(Named(new QCheckBox(caption), name));
    layout->addWidget(m_actions.back());
  }
  m_showConfig = m_actions[3];
  m_label = Named(new QLabel(tr("Password:")), "Lb_Pro_Password");
  m_password = Named(new PasswordField, "txt_pro_password");
  m_password->setAccessibleName(tr("Password"));
  auto* const form = new QFormLayout;
  form->addRow(m_label, m_password);
  layout->addLayout(form);
  layout->addStretch();
  RequirePassword(false);
  connect(m_require, &QCheckBox::toggled, this, &ConfigPasswordPage::RequirePassword);
}

void ConfigPasswordPage::RequirePassword(bool isRequired) {
  for (QCheckBox* const action : m_actions) {
    action->setEnabled(isRequired);
    action->setChecked(isRequired && action != m_showConfig);
  }
  m_label->setEnabled(isRequired);
  m_password->setEnabled(isRequired);
  if (isRequired) FocusPassword();
}

bool ConfigPasswordPage::IsPasswordMissing() const {
  return m_require->isChecked() && m_password->IsEmpty();
}

void ConfigPasswordPage::FocusPassword() {
  m_password->setFocus();
}

}  // namespace tarnel
