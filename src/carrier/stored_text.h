#pragma once

#include <string>
#include <string_view>

namespace tarnel {

/// Stored text is what stands in tags: one byte a character in Windows-1252, with everything that this can't
/// carry escaped by means of the five codes that Windows-1252 leaves unassigned (0x81, 0x8D, 0x8F, 0x90,
/// 0x9D) and ASCII. The rules stand in doc/format.md. For every byte string b without a zero byte,
/// ToPlatform(ToStored(b)) == b. Stored text never holds ">", nor "=<", so that no value can be taken for the
/// beginning of a tag.

enum class TextKind {
  Plain,          ///< a title or a whole path: "\" stays
  PathComponent,  ///< a file name or one folder: "\" is escaped, for it joins folders inside a hideout
};

std::string ToStored(std::string_view bytes, TextKind kind);

/// The platform's bytes. Text that ToStored can't have made is taken as Windows-1252 as far as it goes.
std::string ToPlatform(std::string_view stored);

/// Valid UTF-8 for the eye: what is no character of the platform's names becomes U+FFFD. Never turned back.
std::string ToDisplay(std::string_view stored);

}  // namespace tarnel
