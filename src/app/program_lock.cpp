#include "app/program_lock.h"

namespace tarnel {

LockInput ProgramLock::Lock(const Secret& password) {
  if (password.IsEmpty()) return LockInput::Empty;
  m_password = password;
  m_isLocked = true;
  return LockInput::Accepted;
}

LockInput ProgramLock::Check(const Secret& password) const {
  if (password.IsEmpty()) return LockInput::Empty;
  return password == m_password ? LockInput::Accepted : LockInput::Wrong;
}

}  // namespace tarnel
