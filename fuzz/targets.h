#pragma once

#include <array>

#include "base/bytes.h"

namespace tarnel::fuzz {

/// What must hold for any input at all. Each target takes apart any bytes, runs the code that reads such
/// bytes from carriers, and throws Violation where one of that code's promises is broken. Targets keep no
/// state and give the same result for the same input, but for the random filling of length fields.
void FuzzTags(Bytes input);
void FuzzNumber(Bytes input);
void FuzzLengthField(Bytes input);
void FuzzBase64(Bytes input);
void FuzzStoredText(Bytes input);
void FuzzWalk(Bytes input);
void FuzzDecompression(Bytes input);

struct Target {
  const char* name;  ///< of its source file and of its folder in fuzz/corpus
  void (*run)(Bytes);
};

inline constexpr std::array<Target, 7> kTargets = {{{"tags", FuzzTags},
                                                    {"number", FuzzNumber},
                                                    {"length_field", FuzzLengthField},
                                                    {"base64", FuzzBase64},
                                                    {"stored_text", FuzzStoredText},
                                                    {"walk", FuzzWalk},
                                                    {"decompression", FuzzDecompression}}};

}  // namespace tarnel::fuzz
