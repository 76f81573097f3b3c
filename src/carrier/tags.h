#pragma once

#include <string_view>

#include "base/secret.h"

namespace tarnel {

/// A tag string is a run of items, each a key such as "?Fnm=<", a value and ">", with nothing between them.
/// All text in it is stored text (stored_text.h), one byte a character.

/// The value behind the first occurrence of `key`, which includes its "=<", up to the first ">". Empty if the
/// key is missing, the item is unclosed or the value is empty: callers can't tell these apart.
std::string_view GetTag(std::string_view tags, std::string_view key);

/// Appends one item. `value` holds no ">".
void AppendTag(WipedText& tags, std::string_view key, std::string_view value);

/// Reads a number leniently: blanks, tabs and line feeds are skipped wherever they stand; sign, digits,
/// point, digits, exponent; "&H" and "&O" prefixes; what can't continue the number ends it. 0 if nothing was
/// read. Never fails.
double ReadNumber(std::string_view text);

}  // namespace tarnel
