#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarnel {

struct Utf8Character {
  char32_t code = 0;
  std::size_t length = 0;  ///< bytes; 0 where no well-formed sequence (RFC 3629) begins
};

/// The first character of `bytes`, which are not empty.
Utf8Character FirstUtf8Character(std::string_view bytes);

}  // namespace tarnel
