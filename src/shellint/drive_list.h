#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"

namespace tarnel {

enum class DriveKind { Unknown = 0, Removable = 2, Fixed = 3, Remote = 4, CdRom = 5, RamDisk = 6 };

/// A mounted volume that a person would name.
struct Drive {
  Path root;  ///< where it is mounted
  DriveKind kind = DriveKind::Unknown;
  std::string label;  ///< of the volume, or the share of a server; bytes; may be empty

  bool operator==(const Drive&) const = default;
};

struct DriveSurvey {
  std::vector<Drive> drives;       ///< the root file system first, then as the platform has them
  std::vector<Path> mountPoints;   ///< of everything that is mounted, the kernel's own file systems too
  std::vector<Path> waitingRoots;  ///< mount points where reading may wait for a network or a medium
};

/// Lists the drives of this machine from what the kernel and udev tell. No volume is opened or looked at, so
/// no medium spins up and no network is waited for.
class DriveList {
 public:
  struct Sources {
    Path mountInfo = "/proc/self/mountinfo";
    Path deviceNumbers = "/sys/dev/block";  ///< links named "major:minor"
    Path deviceNames = "/sys/class/block";  ///< links named as in /dev
    Path labels = "/dev/disk/by-label";     ///< links named after labels to device nodes
  };

  explicit DriveList(Files& files) : DriveList(files, Sources()) {}
  DriveList(Files& files, Sources sources);

  /// Throws Error if the kernel's list can't be read.
  DriveSurvey Read();

 private:
  Files& m_files;
  Sources m_sources;
};

}  // namespace tarnel
