#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarnel {

/// 40 characters that hold `number` (not negative, at most 10 digits) under the fixed pass phrase. Two fields
/// of one number differ.
std::string PackLengthField(std::int64_t number);

struct LengthField {
  double number = 0;   ///< 0 for anything that holds none; hostile input can give any double but NaN
  bool holds = false;  ///< written as a length field: no other 40 characters come to its key check of 64 bits
};
LengthField ReadLengthField(std::string_view field);

/// The number alone.
double UnpackLengthField(std::string_view field);

/// The whole numbers that the field would give if one character of its text were another, ascending: what may
/// have stood there before a bit of it was turned.
std::vector<std::int64_t> NumbersOneCharacterAway(std::string_view field);

}  // namespace tarnel
