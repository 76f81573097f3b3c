#pragma once

#include <cstdint>

#include "base/error.h"

namespace tarnel {

/// What the directory tree raises, beside errors of files.
enum class TreeFault : std::uint32_t {
  AlreadyInitialized = 0x80040001,
  CantWatch = 0x80040003,
  NoDriveList = 0x80040004,
  CantList = 0x80040005,
  NoSuchDrive = 0x80040006,
  NoSuchFolder = 0x80040007,  ///< not on the disk, or not in the tree
};

constexpr ErrorNumber NumberOf(TreeFault fault) {
  return static_cast<ErrorNumber>(static_cast<std::int32_t>(fault));
}

}  // namespace tarnel
