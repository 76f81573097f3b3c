#pragma once

#include <memory>

#include "base/files.h"

namespace tarnel {

/// The mark of the one running instance: a locked file in the user's runtime folder. The platform drops the
/// lock with the process, however that ends.
class InstanceLock {
 public:
  /// Where no lock file can be made, this instance counts as the only one.
  InstanceLock(Files& files, const Path& path);

  bool IsOtherRunning() const { return m_isOtherRunning; }

 private:
  std::unique_ptr<File> m_file;
  bool m_isOtherRunning = false;
};

/// "tarnel.lock" in $XDG_RUNTIME_DIR, or beside `settings` where there is no such folder.
Path InstanceLockPath(const Path& settings);

}  // namespace tarnel
