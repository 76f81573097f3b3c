#include "cli/options.h"

#include <algorithm>

#include "base/printable.h"
#include "cli/command_table.h"
#include "cli/nearest_word.h"
#include "cli/option_values.h"

namespace tarnel {

namespace {

constexpr const char* kHelpVerb = "help";

bool TakesValue(const OptionRow& row) {
  return !row.value.empty();
}

/// An option as it was typed. Two verbs may have an option of one name, but it takes a value in both or in
/// none.
struct TypedOption {
  std::string name;
  const OptionRow* any = nullptr;  ///< a row of that name; null if there is none
  std::optional<std::string> value;
};

/// Takes the arguments apart, hands out what they say, and says what is wrong with them.
class Parser {
 public:
  explicit Parser(const std::vector<std::string>& arguments) : m_words(arguments) {}
  std::variant<CommandLine, HelpWish> Parse();

 private:
  void TakeApart();
  void TakeLong(const std::string& word);
  void TakeLetters(const std::string& word);
  void TakeNextAsValue(TypedOption& option);
  void TakePlain(const std::string& word);
  void Apply(const TypedOption& option);
  const OptionRow& RowFor(const TypedOption& option) const;
  std::optional<HelpWish> Help();
  const VerbRow& Verb() const;
  void CheckOperands(const VerbRow& verb) const;
  void CheckExclusions() const;

  const std::vector<std::string>& m_words;
  std::size_t m_next = 0;
  std::string m_verb;
  std::vector<TypedOption> m_options;
  ParsedOptions m_parsed;
};

template <class Matches>
const OptionRow* FindOption(Matches matches) {
  const auto found = std::ranges::find_if(OptionTable(), matches);
  return found == OptionTable().end() ? nullptr : &*found;
}

std::string Hint(const std::string& verb) {
  return "; see tarnel-cli " + (FindVerb(verb) ? verb + " " : std::string()) + "--help";
}

std::string Suggestion(const std::string& typed, const std::vector<std::string>& words) {
  const std::string nearest = NearestWord(typed, words);
  return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

std::vector<std::string> VerbNames() {
  std::vector<std::string> names;
  for (const VerbRow& verb : VerbTable())
    names.push_back(verb.name);
  names.emplace_back(kHelpVerb);
  return names;
}

void Parser::TakeApart() {
  bool optionsEnded = false;
  while (m_next < m_words.size()) {
    const std::string& word = m_words[m_next++];
    if (optionsEnded || word.size() < 2 || word.front() != '-') {
      TakePlain(word);
    } else if (word == "--") {
      optionsEnded = true;
    } else if (word[1] == '-') {
      TakeLong(word);
    } else {
      TakeLetters(word);
    }
  }
}

void Parser::TakePlain(const std::string& word) {
  if (m_verb.empty() && m_parsed.operands.empty()) {
    m_verb = word;
  } else {
    m_parsed.operands.push_back(word);
  }
}

void Parser::TakeLong(const std::string& word) {
  const std::size_t equals = word.find('=');
  TypedOption option{.name = word.substr(0, equals), .any = nullptr, .value = std::nullopt};
  option.any = FindOption([&](const OptionRow& row) { return row.name == option.name; });
  if (equals != std::string::npos) {
    option.value = word.substr(equals + 1);
  } else if (option.any && TakesValue(*option.any)) {
    TakeNextAsValue(option);
  }
  m_options.push_back(std::move(option));
}

/// "-q", "-qr", "-oDIR", "-o DIR"
void Parser::TakeLetters(const std::string& word) {
  for (std::size_t i = 1; i < word.size(); ++i) {
    TypedOption option{.name = {'-', word[i]}, .any = nullptr, .value = std::nullopt};
    option.any = FindOption([&](const OptionRow& row) { return row.letter == word[i]; });
    const bool isValued = option.any && TakesValue(*option.any);
    if (isValued && i + 1 < word.size()) option.value = word.substr(i + 1);
    if (isValued && i + 1 == word.size()) TakeNextAsValue(option);
    const bool isLast = isValued || !option.any;
    m_options.push_back(std::move(option));
    if (isLast) return;
  }
}

void Parser::TakeNextAsValue(TypedOption& option) {
  const OptionRow& row = *option.any;
  const bool isThere = m_next < m_words.size();
  const bool isOptional = !row.standIn.empty();
  if (isThere && (!isOptional || std::ranges::find(row.words, m_words[m_next]) != row.words.end())) {
    option.value = m_words[m_next++];
  } else if (isOptional) {
    option.value = row.standIn;
  }
}

const OptionRow& Parser::RowFor(const TypedOption& option) const {
  const auto serves = [&](const OptionRow& row) {
    return (row.name == option.name || (row.letter != 0 && option.name == std::string("-") + row.letter)) &&
           row.Serves(m_verb);
  };
  if (const OptionRow* row = FindOption(serves)) return *row;
  const std::string name = Printable(option.name);
  if (option.any) {
    throw UsageError(name + " is an option of " + option.any->verbs.front() + ", not of " + m_verb +
                     Hint(m_verb));
  }
  std::vector<std::string> known;
  for (const OptionRow& row : OptionTable())
    if (row.Serves(m_verb)) known.push_back(row.name);
  throw UsageError("there is no option " + name + Suggestion(option.name, known) + Hint(m_verb));
}

void Parser::Apply(const TypedOption& option) {
  const OptionRow& row = RowFor(option);
  if (!TakesValue(row) && option.value) throw UsageError(row.name + " takes no value");
  if (TakesValue(row) && !option.value) throw UsageError(row.name + " needs a value: " + row.value);
  row.take(m_parsed, option.value.value_or(""));
}

const VerbRow& Parser::Verb() const {
  if (const VerbRow* verb = FindVerb(m_verb)) return *verb;
  if (m_verb.empty()) throw UsageError("a verb is missing; see tarnel-cli --help");
  const std::string suggestion = Suggestion(m_verb, VerbNames());
  throw UsageError("there is no verb " + Printable(m_verb) + suggestion + Hint(""));
}

/// "help", "help VERB", "-h", "VERB -h", "-V": whatever else is wrong.
std::optional<HelpWish> Parser::Help() {
  const auto has = [this](const char* name, const char* letter) {
    return std::ranges::any_of(
        m_options, [&](const TypedOption& option) { return option.name == name || option.name == letter; });
  };
  if (has("--version", "-V")) return HelpWish{HelpWish::About::Version};
  const bool isHelpVerb = m_verb == kHelpVerb;
  if (!isHelpVerb && !has("--help", "-h")) return std::nullopt;
  if (isHelpVerb) m_verb = m_parsed.operands.empty() ? "" : m_parsed.operands.front();
  if (m_verb.empty()) return HelpWish{HelpWish::About::Program};
  return HelpWish{HelpWish::About::Verb, Verb().name};
}

void Parser::CheckOperands(const VerbRow& verb) const {
  const std::vector<std::string>& given = m_parsed.operands;
  for (std::size_t i = given.size(); i < verb.operands.size(); ++i) {
    const std::string& missing = verb.operands[i];
    if (missing.front() != '[')
      throw UsageError(missing.substr(0, missing.find('.')) + " is missing" + Hint(verb.name));
  }
  const bool isOpen = !verb.operands.empty() && verb.operands.back().find("...") != std::string::npos;
  if (isOpen || given.size() <= verb.operands.size()) return;
  throw UsageError("unexpected argument \"" + Printable(given[verb.operands.size()]) + "\"" +
                   Hint(verb.name));
}

void Parser::CheckExclusions() const {
  const NewPasswordOptions& fresh = m_parsed.passwd.newPassword;
  const auto refuse = [](bool isBoth, const char* names) {
    if (isBoth) throw UsageError(std::string(names) + " exclude each other");
  };
  refuse(m_parsed.global.passwordFile && m_parsed.global.passwordFd, "--password-file and --password-fd");
  refuse(fresh.file && fresh.descriptor, "--new-password-file and --new-password-fd");
  refuse(m_parsed.hide.makeNew && m_parsed.hide.existing, "--new and --existing");
  const auto isInput = [](const std::optional<std::string>& name) { return name == "-"; };
  const bool hasDash = std::ranges::find(m_parsed.operands, "-") != m_parsed.operands.end();
  const int content = (isInput(m_parsed.choice.filesFrom) ? 1 : 0) + (m_verb == "hide" && hasDash ? 1 : 0);
  const int takers = content + (isInput(m_parsed.global.passwordFile) || isInput(fresh.file) ? 1 : 0);
  if (takers > 1) throw UsageError("standard input can't be two things at once");
}

std::variant<CommandLine, HelpWish> Parser::Parse() {
  TakeApart();
  if (const std::optional<HelpWish> wish = Help()) return *wish;
  const VerbRow& verb = Verb();
  for (const TypedOption& option : m_options)
    Apply(option);
  CheckOperands(verb);
  CheckExclusions();
  VerbOptions options = verb.finish(m_parsed);
  return CommandLine{m_parsed.global, std::move(options)};
}

}  // namespace

std::variant<CommandLine, HelpWish> ParseOptions(const std::vector<std::string>& arguments) {
  return Parser(arguments).Parse();
}

bool AsksForJson(const std::vector<std::string>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  return std::find(arguments.begin(), end, "--json") != end;
}

}  // namespace tarnel
