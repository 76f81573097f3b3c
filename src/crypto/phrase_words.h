#pragma once

#include <span>
#include <string_view>

#include "base/secret.h"

namespace tarnel {

/// The 7,776 words that random pass phrases are made of: the long list for dice of the Electronic Frontier
/// Foundation, sorted.
std::span<const std::string_view> PhraseWords();

inline constexpr int kUsualPhraseWords = 6;
inline constexpr int kMostPhraseWords = 64;

/// So many words with blanks between them, each chosen uniformly and for itself. Throws Error (DeviceIo) if
/// the system gives no random numbers.
Secret RandomPhrase(int words);

/// What such a phrase is worth to somebody who knows how it was made.
double BitsOfRandomPhrase(int words);

}  // namespace tarnel
