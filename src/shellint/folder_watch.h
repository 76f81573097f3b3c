#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/files.h"

namespace tarnel {

/// A watched folder, whatever has become of its name. A folder that is reached by two paths has one id.
using WatchId = int;

/// Something that happened in a watched folder.
struct FolderChange {
  enum class Kind {
    Created,   ///< `name` is there
    Removed,   ///< `name` is no longer there
    Renamed,   ///< `name` is now `newName` in `newFolder`, which is watched too
    Gone,      ///< the folder itself is gone or unmounted; the watch has ended
    Overflow,  ///< changes were lost; nothing else is set
  };

  Kind kind = Kind::Created;
  WatchId folder = 0;
  bool isFolder = false;  ///< `name` is a folder; a symbolic link is none
  std::string name;
  WatchId newFolder = 0;
  std::string newName;
};

/// Tells what others do in folders.
class FolderWatch {
 public:
  virtual ~FolderWatch() = default;

  /// Nothing where the folder can't be watched or the platform's limit is reached.
  virtual std::optional<WatchId> Watch(const Path& folder) = 0;
  virtual void Unwatch(WatchId folder) = 0;

  /// What has happened since the last call, in its order. Doesn't wait.
  virtual std::vector<FolderChange> Take() = 0;

  /// A descriptor that is readable when Take has something to give; -1 if nothing can be watched at all.
  virtual int Handle() const = 0;
};

}  // namespace tarnel
