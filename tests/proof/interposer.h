#pragma once

namespace tarnel::test {

/// What stands between a program and the C library's file calls. Linked into a program it works once
/// Interpose has been called; preloaded into one it reads its settings from the environment, in the order of
/// the fields: TARNEL_KILL_AT, TARNEL_KILL_MOMENT (0 to 2), TARNEL_SHORT_EVERY, TARNEL_INTERRUPT_EVERY,
/// TARNEL_COUNT_TO.
struct Interposition {
  enum class Moment { Before, Half, After };
  long killAt = 0;  ///< the call that changes files, from 1, at which SIGKILL comes; 0 is never
  Moment moment = Moment::Before;  ///< Half: of a write; other calls don't happen
  long shortEvery = 0;             ///< every n-th write and read does only half of what was asked
  long interruptEvery = 0;  ///< every n-th call that a signal can interrupt fails once with EINTR; from 2
  const char* countTo = nullptr;  ///< a file that gets the number of changing calls at the program's end
};

/// From now on. Counting starts afresh.
void Interpose(const Interposition& settings);

/// Calls that change files: writing, cutting, creating, renaming, removing, changing modes, syncing.
long ChangesSeen();

}  // namespace tarnel::test
