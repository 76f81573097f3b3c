#pragma once

#include <sys/types.h>

#include <optional>
#include <string_view>

#include "base/files.h"

namespace tarnel {

/// The attribute word that a record keeps of a file.
namespace attribute {
inline constexpr int kReadOnly = 1;  ///< the owner may not write
inline constexpr int kHidden = 2;    ///< the name begins with a dot
inline constexpr int kArchive = 32;  ///< every file
}  // namespace attribute

int AttributesOf(const FileStat& stat, std::string_view name);

/// `mode` with the write permission that the word asks for: nobody may write, or at least the owner may. All
/// else stays as it is; a hidden file is one by its name.
mode_t ApplyReadOnly(mode_t mode, int attributes);

/// The permission bits, never beyond 0777, if they say more than the word can: all but 0644 and 0444.
std::optional<mode_t> ModeBeyond(mode_t mode);

/// The permission bits that a file gets back, never beyond 0777: `beyond` as it stands where it is there,
/// else 0644 or 0444 after the word. So RestoredMode(ModeBeyond(m), AttributesOf(m)) is m for every m up to
/// 0777.
mode_t RestoredMode(std::optional<mode_t> beyond, int attributes);

}  // namespace tarnel
