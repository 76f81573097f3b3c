#pragma once

#include <string_view>

#include "base/secret.h"

namespace tarnel {

enum class Strength { Weak, Fair, Good, Strong };

/// How hard a pass phrase is to guess for somebody who knows what people choose: words, names, dates, keys
/// side by side, repetitions, and what stands for them.
struct PhraseStrength {
  double bits = 0;  ///< the logarithm of the guesses that it takes
  Strength grade = Strength::Weak;
};

/// An estimate, that errs to the weak side: a phrase of words is worth 16 bits for each at most, and what the
/// word list has itself 13. Quick enough for each key that is typed.
///
/// The phrase passes through a library that wipes nothing. It takes parts of it apart on the stack, which is
/// overwritten afterwards. What can't be wiped: registers, and on the heap where each part begins, how long
/// it is and of what sort; Debian's version puts no character of the phrase there.
PhraseStrength StrengthOf(const Secret& phrase);

/// "weak", "fair", "good" or "strong".
std::string_view WordOf(Strength strength);

/// For somebody whose phrase isn't strong: what to do.
inline constexpr std::string_view kStrengthAdvice = "six random words are strong";

}  // namespace tarnel
