#pragma once

namespace tarnel::test {

/// Stands between this program and the C library's calls that change files: writing, cutting, creating,
/// renaming, removing, changing modes, syncing.

enum class Moment { Before, Half, After };  ///< Half: of a write; other calls don't happen

/// From now on: SIGKILL at the n-th such call, from 1; 0 is never. Counting starts afresh.
void KillAt(long n, Moment moment = Moment::Before);

/// Such calls since then.
long ChangesSeen();

}  // namespace tarnel::test
