#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

#include "crypto/phrase_strength.h"
#include "crypto/phrase_words.h"

namespace tarnel::test {

TEST(PhraseStrength, GradesWhatPeopleChooseAndIsNotFooledByLengthOrLetters) {
  const std::pair<const char*, Strength> cases[] = {
      {"", Strength::Weak},
      {"password1", Strength::Weak},
      {"aaaaaaaaaaaaaaaaaaaaaaaa", Strength::Weak},
      {"summer2026", Strength::Weak},
      {"\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4", Strength::Weak},
      {"abacus dominoes unfiled", Strength::Weak},
      {"abacus dominoes unfiled clutch", Strength::Fair},
      {"abacus dominoes unfiled clutch reptile", Strength::Good},
      {"abacus dominoes unfiled clutch reptile pantry", Strength::Strong},
      {"abacus abacus abacus abacus abacus abacus", Strength::Fair},
      {"correct horse battery staple", Strength::Fair},
      {"xK9#mQ2$vL7&pR", Strength::Strong}};
  for (const auto& [phrase, grade] : cases)
    EXPECT_EQ(WordOf(StrengthOf(Secret(phrase)).grade), WordOf(grade))
        << phrase << " " << StrengthOf(Secret(phrase)).bits;
  EXPECT_EQ(StrengthOf(Secret(std::string(100'000, 'a') + "xK9#mQ2$vL7&pR")).grade, Strength::Weak);
}

TEST(RandomPhrase, IsMadeOfAsManyWordsOfTheListAsWereAskedForEachAsLikelyAsTheOthers) {
  const auto list = PhraseWords();
  EXPECT_EQ(list.size(), 7776U);
  EXPECT_TRUE(std::ranges::is_sorted(list));
  EXPECT_EQ(std::ranges::adjacent_find(list), list.end());
  EXPECT_NEAR(BitsOfRandomPhrase(6), 77.55, 0.01);
  std::array<int, 4> quarters{};
  constexpr int kDrawn = 8000;
  const Secret phrase = RandomPhrase(kDrawn);
  std::string_view rest = phrase.View();
  for (int i = 0; i < kDrawn; ++i) {
    const std::string_view word = rest.substr(0, rest.find(' '));
    const auto found = std::ranges::lower_bound(list, word);
    ASSERT_TRUE(found != list.end() && *found == word) << word;
    ++quarters.at(static_cast<std::size_t>((found - list.begin()) * 4) / list.size());
    rest.remove_prefix(std::min(word.size() + 1, rest.size()));
  }
  EXPECT_TRUE(rest.empty());
  for (const int count : quarters)
    EXPECT_NEAR(count, kDrawn / 4, 300) << "7.7 standard deviations";
}

}  // namespace tarnel::test
