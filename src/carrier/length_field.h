#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarnel {

/// 40 characters that hold `number` (not negative, at most 10 digits) under the fixed pass phrase. Two fields
/// of one number differ.
std::string PackLengthField(std::int64_t number);

/// The number of a field, or 0 for anything that holds none. Hostile input can give any double but NaN.
double UnpackLengthField(std::string_view field);

}  // namespace tarnel
