#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/files.h"

namespace tarnel::test {

/// The kinds of carriers that somebody who knows the password "one" and means harm could make, so that reading
/// them costs most.
std::vector<std::string> WorstKinds();

/// Writes a carrier of `bytes` bytes, or a few more, of that kind.
void WriteWorstCarrier(const std::string& kind, const Path& path, std::size_t bytes);

}  // namespace tarnel::test
