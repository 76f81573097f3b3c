#pragma once

#include <sys/stat.h>

#include "base/files.h"

namespace tarnel {

/// Reading, writing and executing for owner, group and others.
inline constexpr mode_t kPermissionBits = S_IRWXU | S_IRWXG | S_IRWXO;

inline bool OwnerMayWrite(const FileStat& stat) {
  return (stat.mode & S_IWUSR) != 0;
}

/// Sees to it that the open file has these permission bits. A file that has them is left alone. Where the
/// platform refuses to set them (see IsRefusalOfModes), bits that allow no less than the wanted ones are good
/// enough: many network folders and memory sticks keep no others. Throws Error.
void SettleMode(File& file, mode_t mode);

/// Gives the file the owner, the group and the access list of `model`, as far as this user may, and then the
/// permission bits `mode`. What can't be given narrows the bits, so that nobody gains by it: without the
/// group those of the group's and all others' bits stay that both have, without the access list only the
/// owner's. Throws Error.
void TakeAccessOf(File& model, File& file, mode_t mode);

}  // namespace tarnel
