#pragma once

#include <memory>
#include <vector>

#include "base/files.h"

namespace tarnel {

/// The mark of the one running instance: a locked file of this user's. The platform drops the lock with the
/// process, however that ends.
class InstanceLock {
 public:
  /// Takes the first of `places` where a lock file can be had, making its folder if need be. Where there is
  /// none, this instance counts as the only one.
  InstanceLock(Files& files, const std::vector<Path>& places);

  bool IsOtherRunning() const { return m_isOtherRunning; }

 private:
  std::unique_ptr<File> m_file;
  bool m_isOtherRunning = false;
};

/// "tarnel.lock" in $XDG_RUNTIME_DIR, and beside `settings` for where there is no such folder.
std::vector<Path> InstanceLockPlaces(const Path& settings);

}  // namespace tarnel
