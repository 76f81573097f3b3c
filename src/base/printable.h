#pragma once

#include <string>
#include <string_view>

namespace tarnel {

/// `bytes` as one line that can't drive a terminal and can't pass for another name: control characters (also
/// the C1 ones), line and paragraph separators, direction marks and what is no UTF-8 (RFC 3629) become "\n",
/// "\r", "\t" or
/// "\x1b" escapes, byte by byte. Everything else stays as it is, the backslash too.
std::string Printable(std::string_view bytes);

}  // namespace tarnel
