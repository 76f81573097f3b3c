#include "cli/option_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "base/printable.h"
#include "carrier/open_hideout.h"
#include "search/carrier_types.h"

namespace tarnel {

namespace {

template <class Value>
using Choices = std::vector<std::pair<std::string, Value>>;

const Choices<OnError> kOnError = {
    {"abort", OnError::Abort}, {"retry", OnError::Retry}, {"ignore", OnError::Ignore}};
const Choices<Originals> kOriginals = {
    {"keep", Originals::Keep}, {"trash", Originals::Trash}, {"destroy", Originals::Destroy}};

constexpr std::array kTypeGroups = {std::pair{"all", "All Carrier Types"}, std::pair{"image", "Image Files"},
                                    std::pair{"video", "Video File"}, std::pair{"audio", "Audio File"},
                                    std::pair{"program", "Program File"}};

Choices<Algorithm> AlgorithmChoices() {
  Choices<Algorithm> choices;
  for (const OfferedAlgorithm& offered : OfferedAlgorithms())
    choices.emplace_back(offered.name, offered.algorithm);
  return choices;
}

template <class Value>
std::vector<std::string> WordsOf(const Choices<Value>& choices) {
  std::vector<std::string> words;
  for (const auto& choice : choices)
    words.push_back(choice.first);
  return words;
}

template <class Value>
Value Choose(const Choices<Value>& choices, const char* option, const std::string& text) {
  std::string names;
  for (const auto& [name, value] : choices) {
    if (Folded(name) == Folded(text)) return value;
    names += (names.empty() ? "" : ", ") + name;
  }
  throw UsageError(std::string(option) + ": \"" + Printable(text) + "\" is none of " + names);
}

int ReadWhole(const char* option, const std::string& text, int least, int most, const char* wanted) {
  int number = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (fault == std::errc() && end == text.data() + text.size() && number >= least && number <= most)
    return number;
  throw UsageError(std::string(option) + ": \"" + Printable(text) + "\" is no " + wanted);
}

/// True for a type that lists exactly this extension, such as "*.png".
bool NamesExtension(const CarrierType& type, const std::string& text) {
  const std::string pattern = Folded("*." + text);
  const std::string known = Folded(type.text);
  return known.find(pattern + ",") != std::string::npos || known.find(pattern + ")") != std::string::npos;
}

}  // namespace

CliFailure UsageError(const std::string& message) {
  return CliFailure(ExitCode::Usage, message);
}

std::string Folded(std::string_view text) {
  std::string folded(text);
  for (char& c : folded) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return folded;
}

OnError ReadOnError(const std::string& text) {
  return Choose(kOnError, "--on-error", text);
}

Originals ReadOriginals(const std::string& text) {
  return Choose(kOriginals, "--originals", text);
}

Algorithm ReadAlgorithm(const std::string& text) {
  return Choose(AlgorithmChoices(), "--algorithm", text);
}

int ReadLevel(const std::string& text) {
  return ReadWhole("--compress", text, 1, 9, "level from 1 to 9");
}

int ReadWordCount(const std::string& text) {
  static_assert(kMostPhraseWords == 64);
  return ReadWhole("--words", text, 1, kMostPhraseWords, "number of words from 1 to 64");
}

int ReadDescriptor(const char* option, const std::string& text) {
  return ReadWhole(option, text, 0, 1 << 20, "file descriptor");
}

std::string ReadTitle(const std::string& text) {
  if (text.find_first_not_of(' ') == std::string::npos) throw UsageError("--title: the title is empty");
  if (std::any_of(text.begin(), text.end(), TitleRefuses)) {
    throw UsageError("--title: a title can't hold \"/\", \"\\\", \"<\" or \">\"");
  }
  return text;
}

std::string ReadName(const std::string& text) {
  if (text.empty() || text == "." || text == ".." || text.find('/') != std::string::npos) {
    throw UsageError("--name: \"" + Printable(text) + "\" is no name of a file");
  }
  return text;
}

std::size_t ReadCarrierType(const std::string& text) {
  const auto group =
      std::ranges::find(kTypeGroups, Folded(text), [](const auto& pair) { return Folded(pair.first); });
  const auto types = CarrierTypes();
  for (std::size_t i = 0; i < types.size(); ++i) {
    if (group != kTypeGroups.end() ? types[i].text == group->second : NamesExtension(types[i], text))
      return i;
  }
  throw UsageError("--type: \"" + Printable(text) +
                   "\" is none of all, image, video, audio, program, nor an extension of a carrier type");
}

std::vector<std::string> OnErrorWords() {
  return WordsOf(kOnError);
}

std::vector<std::string> OriginalsWords() {
  return WordsOf(kOriginals);
}

std::vector<std::string> AlgorithmWords() {
  return WordsOf(AlgorithmChoices());
}

/// The groups, and of each type the extensions that stand in its text.
std::vector<std::string> CarrierTypeWords() {
  std::vector<std::string> words;
  for (const auto& group : kTypeGroups)
    words.emplace_back(group.first);
  for (const CarrierType& type : CarrierTypes()) {
    for (std::size_t at = type.text.find("*."); at != std::string_view::npos;) {
      const std::size_t end = type.text.find_first_of(",;) ", at);
      words.emplace_back(type.text.substr(at + 2, end - at - 2));
      at = type.text.find("*.", end);
    }
  }
  return words;
}

}  // namespace tarnel
