#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"

namespace tarnel {

/// Replaces the contents of a file and deletes it. True only if nothing has the name afterwards.
///
/// Each block of 4096 bytes is overwritten with "X" and then with blanks, in one pass from front to back that
/// ends beyond the old end of the file, and the blanks are on the medium before the name goes. The strength
/// of the method is no more than that: flash storage, copy-on-write and journaling file systems, snapshots
/// and backups keep copies that no overwriting reaches.
///
/// A symbolic link is only unlinked; the file it points to keeps its bytes. Of a file with several names all
/// names show the blanks, for they are one file. A path where nothing stands is gone, and nobody is asked.
/// Attributes are left alone, so a file that may not be written is an error.
///
/// Errors are asked about with OverwriteError: Retry repeats the step, and blocks that failed to reach the
/// medium are written again; Ignore goes on with the next one (what needs the open file is left out if it
/// could not be opened, and the medium is tried once more at the end only); Abort gives false. Yields at
/// least every 100 ms.
bool OverwriteAndKill(const Path& path, Dialogue& dialogue, Files& files);

enum class Destroyed {
  Gone,       ///< nothing has the name
  Spoilt,     ///< still there, but overwritten at least in part
  Untouched,  ///< still there, and nothing was written to it
  Changed,    ///< no longer the file that was seen: what stands there now was left alone
};

/// OverwriteAndKill for a file whose contents are needed no more as they were when it was `seen`, by Stat of
/// the open file. The file must be untouched since: that is looked at on the open file right before the first
/// block, and the name must still lead to it when it is deleted. A symbolic link is not compared.
Destroyed OverwriteAndKillAsSeen(const Path& path, const FileStat& seen, Dialogue& dialogue, Files& files);

/// Removes a folder with all it holds, or a file, however write-protected. Symbolic links go, what they point
/// to stays. A path where nothing stands is no error. Asks with RemoveError: Retry removes what is left,
/// Ignore and Abort leave it. Yields at least every 100 ms.
void RemovePath(const Path& path, Dialogue& dialogue, Files& files);

enum class TrashOutcome { Moved, Failed, NotTried };

struct ShellDeleteResult {
  std::vector<TrashOutcome> outcomes;  ///< one for each path, in their order
  bool isAborted = false;              ///< the person said No or Abort

  /// Whether no path failed. That is also so if the person declined: then nothing was tried.
  bool Succeeded() const;
};

/// Asked right before a path is moved; false leaves it untried.
using TrashGuard = std::function<bool(const Path&)>;

/// Moves files and folders to the desktop's trash, from where the user can bring them back, after asking
/// ConfirmTrash. A path that can't go is asked about with TrashError: Retry tries again, Ignore goes on with
/// the next path, Abort ends with the rest untried. No paths: nothing is asked. Yields at least every 100 ms.
ShellDeleteResult ShellDelete(const std::vector<Path>& paths, Dialogue& dialogue, Files& files,
                              const TrashGuard& mayGo = {});

}  // namespace tarnel
