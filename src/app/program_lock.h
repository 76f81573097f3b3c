#pragma once

#include "base/secret.h"

namespace tarnel {

enum class LockInput { Accepted, Empty, Wrong };

/// What asks for the password of a locked program, and therefore what its box says.
enum class UnlockPrompt {
  Continue,  ///< a command, since the last lock
  Unlock,    ///< the lock itself, and every command after an unlock that was given up
};

/// The lock of the running program. Nothing of it is stored, and it never lifts itself: a right password lets
/// one command through.
class ProgramLock {
 public:
  bool ProgramLocked() const { return m_isLocked; }
  UnlockPrompt Prompt() const { return m_prompt; }

  /// The user turned to the lock while it was off, or on.
  void StartLocking() { m_prompt = UnlockPrompt::Continue; }
  void StartUnlocking() { m_prompt = UnlockPrompt::Unlock; }

  /// Accepted or Empty. The password stays known until the next lock.
  LockInput Lock(const Secret& password);

  /// Compares whole and with regard to case. Changes nothing.
  LockInput Check(const Secret& password) const;

  void Unlock() { m_isLocked = false; }

 private:
  bool m_isLocked = false;
  Secret m_password;
  UnlockPrompt m_prompt = UnlockPrompt::Continue;
};

}  // namespace tarnel
