#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <functional>
#include <set>
#include <utility>

#include "base/printable.h"
#include "carrier/open_hideout.h"
#include "cli/argument_scan.h"
#include "cli/exit_codes.h"
#include "cli/help_texts.h"
#include "search/carrier_types.h"

namespace tarnel {

namespace {

template <class Value>
using Choices = std::vector<std::pair<std::string, Value>>;

const Choices<OnError> kOnErrorChoices = {
    {"abort", OnError::Abort}, {"retry", OnError::Retry}, {"ignore", OnError::Ignore}};
const Choices<Originals> kOriginalsChoices = {
    {"keep", Originals::Keep}, {"trash", Originals::Trash}, {"destroy", Originals::Destroy}};

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

Choices<Algorithm> AlgorithmChoices() {
  Choices<Algorithm> choices;
  for (const OfferedAlgorithm& offered : OfferedAlgorithms()) {
    choices.emplace_back(offered.name, offered.algorithm);
  }
  return choices;
}

template <class Value>
std::string Names(const Choices<Value>& choices) {
  std::string names;
  for (const auto& choice : choices)
    names += (names.empty() ? "" : ", ") + choice.first;
  return names;
}

/// The value that `text` names, whatever its case.
template <class Value>
Value Choose(const Choices<Value>& choices, const char* option, const std::string& text) {
  for (const auto& [name, value] : choices) {
    if (Folded(name) == Folded(text)) return value;
  }
  throw UsageError(std::string(option) + ": \"" + Printable(text) + "\" is none of " + Names(choices));
}

void CheckTitle(const std::string& title) {
  if (title.find_first_not_of(' ') == std::string::npos) throw UsageError("--title: the title is empty");
  if (std::any_of(title.begin(), title.end(), TitleRefuses)) {
    throw UsageError("--title: a title can't hold \"/\", \"\\\", \"<\" or \">\"");
  }
}

/// The options `prefix`-file and `prefix`-fd, of which only one may be given.
void AddPasswordSource(CLI::App& app, const std::string& prefix, const std::string& what,
                       std::optional<std::string>& fileTarget, std::optional<int>& descriptorTarget) {
  const auto takeFile = [&fileTarget](const std::string& name) { fileTarget = name; };
  CLI::Option* file = app.add_option_function<std::string>(
      prefix + "-file", takeFile, "Take " + what + " from the first line of a file; \"-\" is standard input");
  const auto takeNumber = [&descriptorTarget](int number) { descriptorTarget = number; };
  app.add_option_function<int>(prefix + "-fd", takeNumber,
                               "Take " + what + " from the first line of an open file descriptor")
      ->type_name("N")
      ->check(CLI::NonNegativeNumber)
      ->excludes(file->type_name("FILE"));
}

/// True for a type that lists exactly this extension, such as "*.png".
bool NamesExtension(const CarrierType& type, const std::string& text) {
  const std::string pattern = Folded("*." + text);
  const std::string known = Folded(type.text);
  return known.find(pattern + ",") != std::string::npos || known.find(pattern + ")") != std::string::npos;
}

/// The item of the list of carrier types that `text` means: "image", "video", "audio", "program", or an
/// extension.
std::size_t ChooseType(const std::string& text) {
  constexpr std::array groups = {std::pair{"ALL", "All Carrier Types"}, std::pair{"IMAGE", "Image Files"},
                                 std::pair{"VIDEO", "Video File"}, std::pair{"AUDIO", "Audio File"},
                                 std::pair{"PROGRAM", "Program File"}};
  const auto group = std::ranges::find(groups, Folded(text), [](const auto& pair) { return pair.first; });
  const auto types = CarrierTypes();
  for (std::size_t i = 0; i < types.size(); ++i) {
    if (group != groups.end() ? types[i].text == group->second : NamesExtension(types[i], text)) return i;
  }
  throw UsageError("--type: \"" + Printable(text) +
                   "\" is none of all, image, video, audio, program, nor an extension of a carrier type");
}

/// Builds the parser, runs it, and hands out what it found. Positional arguments go through it as their
/// index, so that it can't take a file name for anything else.
class Parser {
 public:
  Parser();
  std::variant<CommandLine, HelpText> Parse(const std::vector<std::string>& arguments);

 private:
  using Finish = std::function<VerbOptions()>;
  struct Verb {
    CLI::App* app;
    Finish finish;
  };

  void AddGlobals();
  void AddHide();
  void AddList();
  void AddExtract();
  void AddVerify();
  void AddDelete();
  void AddUpdate();
  void AddPasswd();
  void AddSearch();
  void AddRecover();
  void AddSalvage();
  CLI::App& AddVerb(const char* name, const char* description, const char* examples, Finish finish,
                    const char* subject = "CARRIER", const char* subjectHelp = "The carrier file");
  void AddMany(CLI::App& app, const char* name, const char* help);
  template <class Value>
  void AddChoice(CLI::App& app, const char* name, Choices<Value> choices, std::function<void(Value)> take,
                 const std::string& help);

  std::set<std::string> ValuedOptions() const;
  const Verb& FindVerb(const std::string& name) const;
  void RunParser(const ArgumentScan& scan);
  std::string Given(const std::string& index) const { return m_given.at(std::stoul(index)); }
  std::string Carrier() const { return Given(m_carrier); }
  std::vector<std::string> Many() const;

  CLI::App m_app{help::kProgram, "tarnel-cli"};
  std::vector<Verb> m_verbs;
  std::vector<std::string> m_given;  ///< the positional arguments
  std::string m_carrier;             ///< indices, as the parser hands them out
  std::vector<std::string> m_many;
  GlobalOptions m_global;
  std::string m_entry;
  std::string m_file;
  HideOptions m_hide;
  ExtractOptions m_extract;
  PasswdOptions m_passwd;
  SearchOptions m_search;
  RecoverOptions m_recover;
  SalvageOptions m_salvage;
};

Parser::Parser() {
  m_app.footer(help::kProgramFooter);
  m_app.fallthrough();
  m_app.set_version_flag("--version", "tarnel-cli " TARNEL_VERSION);
  AddGlobals();
  AddHide();
  AddList();
  AddExtract();
  AddVerify();
  AddDelete();
  AddUpdate();
  AddPasswd();
  AddSearch();
  AddRecover();
  AddSalvage();
}

void Parser::AddGlobals() {
  m_app.add_flag("--json", m_global.json, "Print one JSON object; errors too are objects");
  m_app.add_flag("--no-input", m_global.noInput, "Ask nothing; take the safe answer and say so");
  m_app.add_flag("--quiet", m_global.quiet, "No progress, no word of success; errors are still shown");
  AddChoice<OnError>(
      m_app, "--on-error", kOnErrorChoices, [this](OnError value) { m_global.onError = value; },
      "What to do at an error instead of asking: abort, retry (three times) or ignore");
  AddPasswordSource(m_app, "--password", "the password", m_global.passwordFile, m_global.passwordFd);
}

CLI::App& Parser::AddVerb(const char* name, const char* description, const char* examples, Finish finish,
                          const char* subject, const char* subjectHelp) {
  CLI::App* app = m_app.add_subcommand(name, description);
  app->footer(examples);
  app->add_option(subject, m_carrier, subjectHelp)->required()->type_name("");
  m_verbs.push_back({app, std::move(finish)});
  return *app;
}

void Parser::AddMany(CLI::App& app, const char* name, const char* help) {
  app.add_option(name, m_many, help)->type_name("")->expected(-1);
}

template <class Value>
void Parser::AddChoice(CLI::App& app, const char* name, Choices<Value> choices,
                       std::function<void(Value)> take, const std::string& help) {
  const auto choose = [choices = std::move(choices), name, take = std::move(take)](const std::string& text) {
    take(Choose(choices, name, text));
  };
  app.add_option_function<std::string>(name, choose, help)->type_name("NAME");
}

void Parser::AddHide() {
  CLI::App& app = AddVerb("hide", help::kHide, help::kHideExamples, [this] {
    m_hide.carrier = Carrier();
    m_hide.paths = Many();
    return m_hide;
  });
  AddMany(app, "PATH", "Files and folders to hide");
  app.get_option("PATH")->required();
  const auto takeTitle = [this](const std::string& title) {
    CheckTitle(title);
    m_hide.title = title;
  };
  app.add_option_function<std::string>("--title", takeTitle, "Title of a new hideout; preset \"New Hideout\"")
      ->type_name("TEXT");
  AddChoice<Algorithm>(
      app, "--algorithm", AlgorithmChoices(), [this](Algorithm value) { m_hide.algorithm = value; },
      "Algorithm of a new hideout, preset RIJNDAEL-256: " + Names(AlgorithmChoices()));
  app.add_option_function<int>(
         "--compress", [this](int level) { m_hide.compressionLevel = level; },
         "Compress first: --compress for level 6, or --compress=1 to --compress=9")
      ->type_name("LEVEL")
      ->check(CLI::Range(1, 9));
  app.add_flag("--no-folders", m_hide.noFolders, "Don't keep the names of folders");
  app.add_flag("--new", m_hide.makeNew, "Make a new hideout, also in a carrier that is damaged");
  app.add_flag("--write-protect", m_hide.writeProtect, "Make the carrier read-only afterwards");
  AddChoice<Originals>(
      app, "--originals", kOriginalsChoices, [this](Originals value) { m_hide.originals = value; },
      "What becomes of the originals once they can be read back: keep, trash or destroy");
}

void Parser::AddList() {
  AddVerb("list", help::kList, help::kListExamples, [this] { return ListOptions{Carrier()}; });
}

void Parser::AddExtract() {
  CLI::App& app = AddVerb("extract", help::kExtract, help::kExtractExamples, [this] {
    m_extract.carrier = Carrier();
    m_extract.entries = Many();
    return m_extract;
  });
  AddMany(app, "ENTRY", "folder/name, or folder/ for all below it; all entries if none is named");
  app.add_option("--to", m_extract.target, "The folder to put them in; made if it is missing")
      ->required()
      ->type_name("DIR");
  app.add_flag("--overwrite", m_extract.overwrite, "Replace existing files without asking");
  app.add_flag("--flat", m_extract.flat, "Put all files into DIR itself, without folders");
}

void Parser::AddVerify() {
  AddVerb("verify", help::kVerify, help::kVerifyExamples, [this] { return VerifyOptions{Carrier()}; });
}

void Parser::AddDelete() {
  CLI::App& app = AddVerb("delete", help::kDelete, help::kDeleteExamples, [this] {
    return DeleteOptions{Carrier(), Many()};
  });
  AddMany(app, "ENTRY", "folder/name, or folder/ for all below it");
  app.get_option("ENTRY")->required();
}

void Parser::AddUpdate() {
  CLI::App& app = AddVerb("update", help::kUpdate, help::kUpdateExamples, [this] {
    return UpdateOptions{Carrier(), Given(m_entry), Given(m_file)};
  });
  app.add_option("ENTRY", m_entry, "The hidden file, as list shows it")->required()->type_name("");
  app.add_option("FILE", m_file, "The file with the new contents")->required()->type_name("");
}

void Parser::AddPasswd() {
  CLI::App& app = AddVerb("passwd", help::kPasswd, help::kPasswdExamples, [this] {
    m_passwd.carrier = Carrier();
    return m_passwd;
  });
  AddPasswordSource(app, "--new-password", "the new password", m_passwd.newPassword.file,
                    m_passwd.newPassword.descriptor);
}

void Parser::AddSearch() {
  CLI::App& app = AddVerb(
      "search", help::kSearch, help::kSearchExamples,
      [this] {
        m_search.folder = Carrier();
        return m_search;
      },
      "DIR", "The folder to look through");
  app.add_option_function<std::string>(
         "--type", [this](const std::string& text) { m_search.type = ChooseType(text); },
         "Only carriers of this type: all, image, video, audio, program, or an extension such as png")
      ->type_name("TEXT");
  AddChoice<Algorithm>(
      app, "--algorithm", AlgorithmChoices(), [this](Algorithm value) { m_search.algorithm = value; },
      "Try this algorithm only");
  app.add_flag("--recursive", m_search.recursive, "Look into subfolders too");
  app.add_flag("--newest-only", m_search.newestOnly,
               "Try the newest entry of each file only, which is faster");
}

void Parser::AddRecover() {
  CLI::App& app = AddVerb("recover", help::kRecover, help::kRecoverExamples, [this] {
    m_recover.carrier = Carrier();
    return m_recover;
  });
  app.add_flag("--yes", m_recover.yes, "Do it without asking");
}

void Parser::AddSalvage() {
  CLI::App& app = AddVerb("salvage", help::kSalvage, help::kSalvageExamples, [this] {
    m_salvage.carrier = Carrier();
    return m_salvage;
  });
  app.add_option("--to", m_salvage.target, "The folder to put them in; made if it is missing")
      ->required()
      ->type_name("DIR");
}

std::vector<std::string> Parser::Many() const {
  std::vector<std::string> all;
  all.reserve(m_many.size());
  for (const std::string& index : m_many)
    all.push_back(Given(index));
  return all;
}

std::set<std::string> Parser::ValuedOptions() const {
  std::set<std::string> names;
  const auto collect = [&names](const CLI::App& app) {
    for (const CLI::Option* option : app.get_options()) {
      if (option->get_items_expected_min() == 0) continue;
      for (const std::string& name : option->get_lnames())
        names.insert("--" + name);
    }
  };
  collect(m_app);
  for (const Verb& verb : m_verbs)
    collect(*verb.app);
  return names;
}

const Parser::Verb& Parser::FindVerb(const std::string& name) const {
  std::string names;
  for (const Verb& verb : m_verbs) {
    if (verb.app->get_name() == name) return verb;
    names += (names.empty() ? "" : ", ") + verb.app->get_name();
  }
  if (name.empty()) throw UsageError("a verb is missing, one of " + names + "; see tarnel-cli --help");
  throw UsageError("unknown verb \"" + Printable(name) + "\"; it is one of " + names);
}

void Parser::RunParser(const ArgumentScan& scan) {
  std::vector<std::string> words;
  if (!scan.verb.empty()) words.push_back(scan.verb);
  words.insert(words.end(), scan.options.begin(), scan.options.end());
  for (std::size_t i = 0; i < scan.positionals.size(); ++i)
    words.push_back(std::to_string(i));
  std::reverse(words.begin(), words.end());
  m_given = scan.positionals;
  m_app.parse(words);
}

std::variant<CommandLine, HelpText> Parser::Parse(const std::vector<std::string>& arguments) {
  const ArgumentScan scan = ScanArguments(arguments, ValuedOptions());
  if (!scan.verb.empty()) FindVerb(scan.verb);
  try {
    RunParser(scan);
  } catch (const CLI::CallForHelp&) {
    return HelpText{m_app.help()};
  } catch (const CLI::CallForVersion& version) {
    return HelpText{std::string(version.what()) + "\n"};
  } catch (const CLI::ExtrasError&) {
    const std::string first = m_app.remaining(true).front();
    throw UsageError("unexpected argument \"" + Printable(first.front() == '-' ? first : Given(first)) +
                     "\"");
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  const Verb& verb = FindVerb(scan.verb);
  return CommandLine{m_global, verb.finish()};
}

}  // namespace

std::variant<CommandLine, HelpText> ParseOptions(const std::vector<std::string>& arguments) {
  return Parser().Parse(arguments);
}

bool AsksForJson(const std::vector<std::string>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  return std::find(arguments.begin(), end, "--json") != end;
}

}  // namespace tarnel
