#pragma once

#include <QGroupBox>
#include <vector>

class QCheckBox;
class QLabel;

namespace tarnel {

class PasswordField;

/// The page of Config that no tab leads to. Nothing of it is stored, and nothing asks it.
class ConfigPasswordPage : public QFrame {
  Q_OBJECT

 public:
  explicit ConfigPasswordPage(QWidget* parent = nullptr);

  /// Protection is asked for without a password: the page may not be left.
  bool IsPasswordMissing() const;
  void FocusPassword();

 private:
  void RequirePassword(bool isRequired);

  QCheckBox* m_require;
  std::vector<QCheckBox*> m_actions;
  QCheckBox* m_showConfig = nullptr;
  QLabel* m_label;
  PasswordField* m_password;
};

}  // namespace tarnel
