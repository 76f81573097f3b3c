#include "base/attributes.h"

#include "base/permissions.h"

namespace tarnel {

namespace {

constexpr mode_t kEveryWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr mode_t kPlainMode = 0644;

}  // namespace

int AttributesOf(const FileStat& stat, std::string_view name) {
  int attributes = attribute::kArchive;
  if (!OwnerMayWrite(stat)) attributes |= attribute::kReadOnly;
  if (name.starts_with('.')) attributes |= attribute::kHidden;
  return attributes;
}

mode_t ApplyReadOnly(mode_t mode, int attributes) {
  return (attributes & attribute::kReadOnly) != 0 ? mode & ~kEveryWriteBit : mode | S_IWUSR;
}

std::optional<mode_t> ModeBeyond(mode_t mode) {
  const mode_t bits = mode & kPermissionBits;
  if (bits == kPlainMode || bits == (kPlainMode & ~kEveryWriteBit)) return std::nullopt;
  return bits;
}

mode_t RestoredMode(std::optional<mode_t> beyond, int attributes) {
  return beyond ? *beyond & kPermissionBits : ApplyReadOnly(kPlainMode, attributes);
}

}  // namespace tarnel
