#include "cli/options.h"

#include <gmock/gmock.h>

#include <regex>
#include <set>
#include <sstream>

#include "cli/exit_codes.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> Words(const std::string& line) {
  std::istringstream stream(line);
  return {std::istream_iterator<std::string>(stream), {}};
}

CommandLine Parsed(const std::vector<std::string>& words) {
  return std::get<CommandLine>(ParseOptions(words));
}
CommandLine Parsed(const std::string& line) {
  return Parsed(Words(line));
}

template <class Verb>
Verb VerbOf(const std::string& line) {
  return std::get<Verb>(Parsed(line).verb);
}

std::string UsageErrorOf(const std::string& line) {
  try {
    ParseOptions(Words(line));
  } catch (const CliFailure& failure) {
    EXPECT_EQ(failure.Code(), ExitCode::Usage);
    return failure.what();
  }
  return "(no error)";
}

std::string HelpOf(const std::string& line) {
  return std::get<HelpText>(ParseOptions(Words(line))).text;
}

TEST(Options, HideTakesWhatItIsGiven) {
  const auto hide = VerbOf<HideOptions>(
      "hide c.png a b/ --title T --algorithm twofish --compress=9 --no-folders --write-protect "
      "--originals=trash");
  EXPECT_EQ(hide.carrier, "c.png");
  EXPECT_THAT(hide.paths, ElementsAre("a", "b/"));
  EXPECT_EQ(hide.title, "T");
  EXPECT_EQ(hide.algorithm, Algorithm::Twofish);
  EXPECT_EQ(hide.compressionLevel, 9);
  EXPECT_TRUE(hide.noFolders && hide.writeProtect);
  EXPECT_EQ(hide.originals, Originals::Trash);
}

TEST(Options, CompressWithoutLevelNeverSwallowsAPath) {
  const auto hide = VerbOf<HideOptions>("hide c --compress 5 a");
  EXPECT_EQ(hide.compressionLevel, 6);
  EXPECT_THAT(hide.paths, ElementsAre("5", "a"));
}

TEST(Options, StandBeforeOrBehindTheVerb) {
  for (const char* line : {"--json --quiet --on-error=ignore --password-fd 5 --to out extract c e",
                           "extract c e --to out --json --quiet --on-error ignore --password-fd=5",
                           "--to=out --json extract --password-fd 5 c --quiet e --on-error=IGNORE"}) {
    const CommandLine command = Parsed(line);
    EXPECT_TRUE(command.global.json && command.global.quiet) << line;
    EXPECT_EQ(command.global.onError, OnError::Ignore) << line;
    EXPECT_EQ(command.global.passwordFd, 5) << line;
    const auto& extract = std::get<ExtractOptions>(command.verb);
    EXPECT_EQ(extract.target, "out") << line;
    EXPECT_EQ(extract.carrier, "c") << line;
    EXPECT_THAT(extract.entries, ElementsAre("e")) << line;
  }
}

TEST(Options, NamesComeThroughByteForByte) {
  const std::vector<std::string> names = {"[a,b]",  "%%",  "",    "a=b",     " ", "-",
                                          "\xff\n", "{x}", "'q'", "--title", "-7"};
  std::vector<std::string> words = {"hide", "--title", "[x,y]", "--", "[c]"};
  words.insert(words.end(), names.begin(), names.end());
  const auto hide = std::get<HideOptions>(Parsed(words).verb);
  EXPECT_EQ(hide.carrier, "[c]");
  EXPECT_EQ(hide.paths, names);
  EXPECT_EQ(hide.title, "[x,y]");
}

TEST(Options, EveryOfferedAlgorithmIsTakenInAnyCase) {
  for (const OfferedAlgorithm& offered : OfferedAlgorithms()) {
    std::string name(offered.name);
    EXPECT_EQ(VerbOf<HideOptions>("hide c a --algorithm " + name).algorithm, offered.algorithm);
    for (char& c : name)
      c = static_cast<char>(std::tolower(c));
    EXPECT_EQ(VerbOf<SearchOptions>("search d --algorithm " + name).algorithm, offered.algorithm);
  }
}

TEST(Options, SearchTypesAreGroupsOrExactExtensions) {
  const std::vector<std::pair<std::string, std::size_t>> cases = {
      {"all", 0}, {"Image", 1}, {"dib", 2}, {"JPEG", 3}, {"png", 7}, {"video", 9}, {"mpe", 12}, {"exe", 19}};
  for (const auto& [text, index] : cases)
    EXPECT_EQ(VerbOf<SearchOptions>("search d --type " + text).type, index);
}

TEST(Options, WhatIsWrongIsAUsageErrorThatNamesIt) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "a verb is missing"},
      {"--json", "a verb is missing"},
      {"hid c a", "unknown verb \"hid\""},
      {"hide", "CARRIER"},
      {"hide c", "PATH"},
      {"list", "CARRIER"},
      {"list c d", "unexpected argument \"d\""},
      {"list c --frob", "unexpected argument \"--frob\""},
      {"list c --title x", "unexpected argument"},
      {"extract c", "--to"},
      {"delete c", "ENTRY"},
      {"update c e", "FILE"},
      {"search", "DIR"},
      {"search d --type mp", "--type"},
      {"hide c a --algorithm ROT13", "none of BLOWFISH, CAST5"},
      {"hide c a --algorithm IDEA", "none of"},
      {"hide c a --algorithm", "--algorithm"},
      {"hide c a --compress=0", "--compress"},
      {"hide c a --compress=10", "--compress"},
      {"hide c a --compress=x", "--compress"},
      {"hide c a --originals=burn", "none of keep, trash, destroy"},
      {"hide c a --title=a/b", "can't hold"},
      {"hide c a --title=a\\b", "can't hold"},
      {"hide c a --title=<", "can't hold"},
      {"hide c a --title=", "the title is empty"},
      {"list c --on-error=maybe", "none of abort, retry, ignore"},
      {"list c --password-fd x", "--password-fd"},
      {"list c --password-fd -1", "--password-fd"},
      {"list c --password-file a --password-fd 3", "--password-fd"},
      {"list c --password secret", "unexpected argument"},
      {"passwd c --new-password-file a --new-password-fd 3", "--new-password"}};
  for (const auto& [line, message] : cases)
    EXPECT_THAT(UsageErrorOf(line), HasSubstr(message)) << line;
}

TEST(Options, JsonIsSeenInALineThatCannotBeUnderstood) {
  EXPECT_TRUE(AsksForJson(Words("hid --json")));
  EXPECT_FALSE(AsksForJson(Words("hide c -- --json")));
}

TEST(Options, HelpAndVersionNeedNothingElse) {
  EXPECT_THAT(HelpOf("--version"), testing::MatchesRegex("tarnel-cli [0-9.]+\n"));
  EXPECT_THAT(HelpOf("--help"), HasSubstr("Examples:"));
  EXPECT_THAT(HelpOf("hide --help"), HasSubstr("--write-protect"));
}

std::set<std::string> OptionsIn(const std::string& text) {
  const std::regex option("--[a-z][a-z-]+");
  std::set<std::string> found;
  for (std::sregex_iterator at(text.begin(), text.end(), option), end; at != end; ++at)
    found.insert(at->str());
  return found;
}

TEST(Options, ManualAndCompletionsKnowEveryOptionVerbAndAlgorithm) {
  std::set<std::string> wanted = OptionsIn(HelpOf("--help"));
  for (const char* verb :
       {"hide", "list", "extract", "verify", "delete", "update", "passwd", "search", "recover"}) {
    wanted.merge(OptionsIn(HelpOf(std::string(verb) + " --help")));
    wanted.insert(verb);
  }
  for (const OfferedAlgorithm& offered : OfferedAlgorithms())
    wanted.insert(std::string(offered.name));
  for (const char* file : {"man/tarnel-cli.1", "completions/tarnel-cli.bash", "completions/_tarnel-cli",
                           "completions/tarnel-cli.fish"}) {
    std::string text = ReadAll(Path(TARNEL_SHARE) / file);
    text = std::regex_replace(text, std::regex(R"(\\-)"), "-");
    text = std::regex_replace(text, std::regex("-l "), "--");
    text += std::regex_replace(text, std::regex("TRIPLEDES"), "TripleDES");
    for (const std::string& word : wanted)
      EXPECT_THAT(text, HasSubstr(word)) << file;
  }
}

}  // namespace
}  // namespace tarnel::test
