#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace tarnel {

/// One item of the list "Carrier Type:".
struct CarrierType {
  std::string_view text;
  std::span<const std::string_view>
      extensions;  ///< a group's members; empty where the text itself names them
};

/// The items in the order of the list; an item's place is its index. The first is preset.
std::span<const CarrierType> CarrierTypes();

/// True if files with this extension (lower case, without the point, not empty) count as this type. An item
/// without a group takes every extension that continues a "*." anywhere in its text, so "mp" passes as a
/// movie clip.
bool TypeAccepts(const CarrierType& type, std::string_view extension);

/// What follows the last point of a file name, ASCII letters in lower case; empty if there is none.
std::string LowerExtension(std::string_view fileName);

}  // namespace tarnel
