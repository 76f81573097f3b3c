#include "crypto/phrase_strength.h"

#include <zxcvbn.h>

#include <algorithm>
#include <array>
#include <optional>

#include "crypto/phrase_words.h"

namespace tarnel {

namespace {

constexpr double kBitsOfAWord = 16;
constexpr std::size_t kStackOfTheLibrary = std::size_t{64} * 1024;
constexpr std::size_t kLongest = 1024;  ///< more makes no phrase weaker than strong

bool IsContinued(std::string_view text, std::size_t at) {
  return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
}

/// One byte for each character, for the library takes bytes for characters; ended by a zero byte.
Secret OneByteEach(std::string_view phrase) {
  Secret bytes;
  for (std::size_t i = 0; i < std::min(phrase.size(), kLongest); ++i)
    if (!IsContinued(phrase, i + 1) && phrase[i] != '\0') bytes.Append(phrase[i]);
  bytes.Append('\0');
  return bytes;
}

[[gnu::noinline]] double AskTheLibrary(const Secret& bytes) {
  return ZxcvbnMatch(bytes.View().data(), nullptr, nullptr);
}

[[gnu::noinline]] void WipeStack() {
  std::array<unsigned char, kStackOfTheLibrary> below;
  Wipe(below.data(), below.size());
}

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// At most so many bits for a phrase that is nothing but two words or more.
std::optional<double> LimitOfWords(std::string_view phrase) {
  double bits = 0;
  std::size_t words = 0;
  while (!phrase.empty()) {
    const std::size_t length = std::min(phrase.find(' '), phrase.size());
    const std::string_view word = phrase.substr(0, length);
    phrase.remove_prefix(std::min(length + 1, phrase.size()));
    if (word.empty()) continue;
    ++words;
    if (std::ranges::binary_search(PhraseWords(), word))
      bits += BitsOfRandomPhrase(1);
    else if (std::ranges::all_of(word, IsLetter))
      bits += kBitsOfAWord;
    else
      return std::nullopt;
  }
  return words > 1 ? std::optional(bits) : std::nullopt;
}

Strength GradeOf(double bits) {
  if (bits < 40) return Strength::Weak;
  if (bits < 60) return Strength::Fair;
  return bits < 75 ? Strength::Good : Strength::Strong;
}

}  // namespace

PhraseStrength StrengthOf(const Secret& phrase) {
  const Secret bytes = OneByteEach(phrase.View());
  double bits = AskTheLibrary(bytes);
  WipeStack();
  bits = std::min(bits, LimitOfWords(phrase.View()).value_or(bits));
  return {bits, GradeOf(bits)};
}

std::string_view WordOf(Strength strength) {
  static constexpr std::array<std::string_view, 4> words = {"weak", "fair", "good", "strong"};
  return words.at(static_cast<std::size_t>(strength));
}

}  // namespace tarnel
