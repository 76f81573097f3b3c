#include "crypto/phrase_words.h"

#include <cmath>
#include <vector>

#include "crypto/random.h"

namespace tarnel {

namespace {

constexpr std::string_view kText =
#include <phrase_words.inc>  // made by CMake of the list in share/words
    ;

std::vector<std::string_view> Lines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return lines;
}

}  // namespace

std::span<const std::string_view> PhraseWords() {
  static const std::vector<std::string_view> words = Lines(kText);
  return words;
}

Secret RandomPhrase(int words) {
  const std::span<const std::string_view> list = PhraseWords();
  Secret phrase;
  for (int i = 0; i < words; ++i) {
    if (i > 0) phrase.Append(' ');
    const auto chosen = static_cast<std::size_t>(RandomBetween(0, static_cast<int>(list.size()) - 1));
    for (const char c : list[chosen])
      phrase.Append(c);
  }
  return phrase;
}

double BitsOfRandomPhrase(int words) {
  return words * std::log2(static_cast<double>(PhraseWords().size()));
}

}  // namespace tarnel
