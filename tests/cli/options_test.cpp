#include "cli/options.h"

#include <gmock/gmock.h>

#include "cli/exit_codes.h"
#include "tests/cli/cli_bench.h"

namespace tarnel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

template <class Verb>
Verb VerbOf(const std::string& line) {
  return std::get<Verb>(std::get<CommandLine>(ParseOptions(Words(line))).verb);
}

TEST(Options, HideTakesWhatItIsGiven) {
  auto hide = VerbOf<HideOptions>(
      "hide c.png a b/ --title T --algorithm twofish --compress=9 --no-folders --write-protect "
      "--originals=trash");
  EXPECT_EQ(hide.carrier, "c.png");
  EXPECT_THAT(hide.paths, ElementsAre("a", "b/"));
  EXPECT_EQ(hide.title, "T");
  EXPECT_EQ(hide.algorithm, Algorithm::Twofish);
  EXPECT_EQ(hide.compressionLevel, 9);
  EXPECT_TRUE(hide.noFolders && hide.writeProtect);
  EXPECT_EQ(hide.originals, Originals::Trash);
  for (const auto& [line, level] : {std::pair{"hide c --compress 5 a", 5}, {"hide c --compress a", 6}}) {
    hide = VerbOf<HideOptions>(line);
    EXPECT_EQ(hide.compressionLevel, level);
    EXPECT_THAT(hide.paths, ElementsAre("a")) << "the level swallows nothing else";
  }
}

TEST(Options, PassphraseTakesNothingButANumberOfWords) {
  EXPECT_EQ(VerbOf<PassphraseOptions>("passphrase").words, 6);
  EXPECT_EQ(VerbOf<PassphraseOptions>("passphrase -w 64").words, 64);
  for (const char* line :
       {"passphrase x", "passphrase --words 0", "passphrase --words 65", "passphrase --words 6x"})
    EXPECT_THROW(ParseOptions(Words(line)), CliFailure) << line;
}

TEST(Options, StandBeforeOrBehindTheVerb) {
  for (const char* line : {"--json --quiet --on-error=ignore --password-fd 5 --to out extract c e",
                           "extract c e --to out --json --quiet --on-error ignore --password-fd=5",
                           "--to=out --json extract --password-fd 5 c -q e --on-error=IGNORE",
                           "-qoout extract --json c e --on-error ignore --password-fd 5"}) {
    SCOPED_TRACE(line);
    const auto command = std::get<CommandLine>(ParseOptions(Words(line)));
    EXPECT_TRUE(command.global.json && command.global.quiet);
    EXPECT_EQ(command.global.onError, OnError::Ignore);
    EXPECT_EQ(command.global.passwordFd, 5);
    const auto& extract = std::get<ExtractOptions>(command.verb);
    EXPECT_EQ(extract.target, "out");
    EXPECT_EQ(extract.carrier, "c");
    EXPECT_THAT(extract.entries, ElementsAre("e"));
  }
}

TEST(Options, NamesComeThroughByteForByte) {
  const std::vector<std::string> names = {"[a,b]",  "%%",  "",    "a=b",     " ", "-",
                                          "\xff\n", "{x}", "'q'", "--title", "-7"};
  std::vector<std::string> words = {"hide", "--title", "[x,y]", "--", "[c]"};
  words.insert(words.end(), names.begin(), names.end());
  const auto hide = std::get<HideOptions>(std::get<CommandLine>(ParseOptions(words)).verb);
  EXPECT_EQ(hide.carrier, "[c]");
  EXPECT_EQ(hide.paths, names);
  EXPECT_EQ(hide.title, "[x,y]");
}

TEST(Options, AlgorithmsAndTypesAreTakenInAnyCase) {
  for (const OfferedAlgorithm& offered : OfferedAlgorithms()) {
    std::string name(offered.name);
    EXPECT_EQ(VerbOf<HideOptions>("hide c a --algorithm " + name).algorithm, offered.algorithm);
    name[0] = static_cast<char>(std::tolower(name[0]));
    EXPECT_EQ(VerbOf<SearchOptions>("search d --algorithm " + name).algorithm, offered.algorithm);
  }
  const std::pair<const char*, std::size_t> types[] = {{"all", 0}, {"Image", 1}, {"dib", 2},  {"JPEG", 3},
                                                       {"png", 7}, {"video", 9}, {"mpe", 12}, {"exe", 19}};
  for (const auto& [text, index] : types)
    EXPECT_EQ(VerbOf<SearchOptions>(std::string("search d --type ") + text).type, index) << text;
}

TEST(Options, WhatIsWrongIsAUsageErrorThatNamesIt) {
  const std::pair<const char*, const char*> cases[] = {
      {"--json", "a verb is missing"},
      {"hid c a", "did you mean hide?"},
      {"hide", "CARRIER is missing; see tarnel-cli hide --help"},
      {"recover c d", "unexpected argument \"d\""},
      {"list c --password secret", "no option --password; did you mean --password-file?"},
      {"list c --pasword-file x", "did you mean --password-file?"},
      {"list c --flat", "an option of extract, not of list"},
      {"list c --json=1", "takes no value"},
      {"hide c a --new --existing", "exclude each other"},
      {"extract c -o", "--to needs a value: DIR"},
      {"extract c", "--to"},
      {"search d --type mp", "--type"},
      {"hide c a --algorithm ROT13", "none of BLOWFISH, CAST5"},
      {"hide c a --compress=0", "--compress"},
      {"hide c a --compress=10", "--compress"},
      {"hide c a --originals=burn", "none of keep, trash, destroy"},
      {"hide c a --title=a/b", "can't hold"},
      {"hide c a --title=<", "can't hold"},
      {"hide c a --title=", "the title is empty"},
      {"list c --on-error=maybe", "none of abort, retry, ignore"},
      {"list c --password-fd -1", "--password-fd"},
      {"list c --password-file a --password-fd 3", "--password-fd"},
      {"passwd c --new-password-file a --new-password-fd 3", "--new-password"}};
  for (const auto& [line, message] : cases) {
    try {
      ParseOptions(Words(line));
      ADD_FAILURE() << line;
    } catch (const CliFailure& failure) {
      EXPECT_EQ(failure.Code(), ExitCode::Usage) << line;
      EXPECT_THAT(failure.what(), HasSubstr(message)) << line;
    }
  }
  EXPECT_TRUE(AsksForJson(Words("hid --json")));
  EXPECT_FALSE(AsksForJson(Words("hide c -- --json")));
}

}  // namespace
}  // namespace tarnel::test
