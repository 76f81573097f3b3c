#pragma once

#include <QDialog>
#include <functional>

#include "app/program_lock.h"
#include "base/dialogue.h"

class QLabel;

namespace tarnel {

class PasswordField;

/// What both forms of the lock are made of: two lines of text, a password with "Show Password", OK, Cancel.
/// Closing by the frame is Cancel.
class LockForm : public QDialog {
  Q_OBJECT

 protected:
  LockForm(const QString& text, const QString& prompt, Dialogue& dialogue, QWidget* parent);

  /// What the password leads to. Anything but Accepted is told, and the form stays.
  virtual LockInput Enter(const Secret& password) = 0;

 private:
  void PressOk();

  Dialogue& m_dialogue;
  PasswordField* m_password;
};

/// Asks for a new password and locks the program with it.
class FrmLock : public LockForm {
  Q_OBJECT

 public:
  FrmLock(ProgramLock& lock, Dialogue& dialogue, QWidget* parent);

 protected:
  LockInput Enter(const Secret& password) override { return m_lock.Lock(password); }

 private:
  ProgramLock& m_lock;
};

/// Asks for the password of the locked program. It lifts nothing: exec() gives Accepted for a right one.
class FrmUnlock : public LockForm {
  Q_OBJECT

 public:
  FrmUnlock(const ProgramLock& lock, Dialogue& dialogue, QWidget* parent);

  bool PasswordAccepted() const { return result() == QDialog::Accepted; }

 protected:
  LockInput Enter(const Secret& password) override { return m_lock.Check(password); }

 private:
  const ProgramLock& m_lock;
};

}  // namespace tarnel
