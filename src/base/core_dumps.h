#pragma once

namespace tarnel {

enum class Dumpable {
  Kept,  ///< for the window: the desktop's portals look into the process and refuse one that is not dumpable
  Off,   ///< nobody without privileges can look into the process or trace it
};

/// From now on a crash writes no memory to disk. The core size limit becomes 1, hard limit included, because
/// 0 does not stop a core handler that reads from a pipe (core(5)). False if the platform refused a part of
/// it.
bool ForbidCoreDumps(Dumpable dumpable);

}  // namespace tarnel
