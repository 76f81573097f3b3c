#pragma once

#include <cstddef>
#include <string_view>

#include "base/files.h"

namespace tarnel {

/// How the text of a record looks, whoever can read it: Base64 with CR LF behind every full line of 76
/// characters. No other bytes look so by chance, and so a text shows where it begins.

inline constexpr std::size_t kLineCharacters = 76;
inline constexpr std::size_t kLineSize = kLineCharacters + 2;  ///< with its CR LF

bool IsBase64Character(char c);

/// True if `line`, which has kLineSize bytes, is a full line; a few altered bytes do no harm.
bool LooksLikeLine(std::string_view line);

/// True if the text that ends before `trailer` begins elsewhere than `recordLength` bytes before it. A text
/// that isn't as told above disproves nothing.
bool IsDisprovedByText(File& carrier, Position trailer, Length recordLength);

/// How many bytes of full lines and a shorter last one end before `trailer`; 0 where that is no text.
Length LengthOfTextBefore(File& carrier, Position trailer);

}  // namespace tarnel
