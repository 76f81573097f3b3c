#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "crypto/algorithm.h"
#include "crypto/keys.h"

namespace tarnel::fuzz {

/// What anybody can write into a carrier: 40 characters that hold `text` (its first 14 bytes, more are cut
/// off) under the public pass phrase of the trailer.
std::string PublicField(std::string_view text, std::uint8_t nonce);

/// An encrypted string as Base64 text, the same each time for the same nonce.
std::string SealWith(Algorithm algorithm, const Key& key, std::string_view plain, std::uint8_t nonce);

}  // namespace tarnel::fuzz
