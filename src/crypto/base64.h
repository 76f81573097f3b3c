#pragma once

#include <string>
#include <string_view>

#include "base/bytes.h"

namespace tarnel {

/// RFC 4648 alphabet with padding. A text longer than 76 characters gets CR LF behind every full line of 76.
std::string Base64Encode(Bytes bytes);

/// Drops every CR LF pair and every "=" first. Never fails: a character outside the alphabet counts as "A", a
/// single left-over character adds nothing.
std::string Base64Decode(std::string_view text);

}  // namespace tarnel
