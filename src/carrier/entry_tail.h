#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

#include "base/files.h"

namespace tarnel {

/// What follows the payload of an entry, its encrypted record and trailer as stored: enough to know it again.
/// A record takes up to a mebibyte, so the bytes themselves are not kept. Two different tails are taken for
/// one with a chance of 2^-64; whoever could bring that about on purpose can write to the carrier anyway, and
/// contents are authenticated apart from this.
struct EntryTail {
  EntryTail() = default;
  explicit EntryTail(std::string_view bytes)
      : length(static_cast<Length>(bytes.size())), hash(std::hash<std::string_view>()(bytes)) {}
  bool operator==(const EntryTail&) const = default;

  Length length = 0;  ///< R + 80
  std::size_t hash = 0;
};

}  // namespace tarnel
