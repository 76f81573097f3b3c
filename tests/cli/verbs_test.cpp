#include <gmock/gmock.h>
#include <sys/stat.h>

#include "carrier/companions.h"
#include "cli/leftovers.h"
#include "tests/cli/cli_bench.h"
#include "tests/support/faulty_files.h"

namespace tarnel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Verbs : public testing::Test {
 protected:
  void Hide(const std::string& rest) {
    ASSERT_EQ(bench.Run("hide --new @carrier " + rest), 0) << bench.terminal.err;
  }
  /// Name and folder of each entry that list shows, newest first.
  std::vector<std::string> Listed(const std::string& rest = {}) {
    EXPECT_EQ(bench.Run("--json list @carrier " + rest), 0) << bench.terminal.err;
    std::vector<std::string> paths;
    const nlohmann::json list = bench.Json();
    for (const auto& file : list.at("files"))
      paths.push_back(file.at("folder").get<std::string>() + "/" + file.at("name").get<std::string>());
    return paths;
  }
  CliBench bench;
};

TEST_F(Verbs, AFolderComesBackAsItWas) {
  bench.Put("in/docs/a.txt", "alpha");
  bench.Put("in/docs/sub/b.sh", Pattern(40000), 0750);
  bench.Put("in/docs/empty", "");
  Hide("@in/docs --compress=9 --originals=destroy");
  EXPECT_THAT(bench.terminal.out, IsEmpty());
  EXPECT_THAT(bench.terminal.err, HasSubstr("3 files hidden"));
  EXPECT_FALSE(bench.Has("in/docs/a.txt"));
  ASSERT_EQ(bench.Run("extract @carrier --to @out"), 0) << bench.terminal.err;
  EXPECT_EQ(bench.Get("out/docs/a.txt"), "alpha");
  EXPECT_EQ(bench.Get("out/docs/sub/b.sh"), Pattern(40000));
  EXPECT_EQ(bench.Get("out/docs/empty"), "");
  EXPECT_EQ(bench.posix.Stat(bench.folder / "out/docs/sub/b.sh")->mode, mode_t{0750});
  EXPECT_EQ(bench.Get("carrier").substr(0, 1000), Pattern(1000));
  ASSERT_EQ(bench.Run("extract @carrier --to @out --flat"), 0);
  EXPECT_EQ(bench.Get("out/b.sh"), Pattern(40000));
}

TEST_F(Verbs, ListShowsSizeDateAndPathNewestFirst) {
  bench.Put("in/docs/a.txt", "alpha");
  bench.Put("b.txt", Pattern(1234));
  Hide("@in/docs");
  Hide("@b.txt");
  ASSERT_EQ(bench.Run("list @carrier"), 0);
  EXPECT_THAT(bench.terminal.out,
              testing::MatchesRegex("#2  1234  [^\n]+  b.txt\n#1     5  [^\n]+  docs/a.txt\n"));
  bench.terminal.isTerminal = true;
  ASSERT_EQ(bench.Run("list @carrier"), 0);
  EXPECT_THAT(bench.terminal.out, HasSubstr("2 files, 1.2 KiB, New Hideout, RIJNDAEL-256\n"));
}

TEST_F(Verbs, JsonOfListHasEveryField) {
  bench.Put("run.sh", "alpha", 0700);
  Hide("@run.sh --compress --title Box --algorithm cast5");
  ASSERT_EQ(bench.Run("list @carrier --json"), 0);
  auto list = bench.Json();
  auto& file = list.at("files").at(0);
  EXPECT_GT(file.at("stored"), 32);
  EXPECT_TRUE(file.at("date").is_string());
  EXPECT_THAT(file.at("date_iso"), testing::MatchesRegex("....-..-..T..:..:..[+-]..:.."));
  file.erase("date_iso");
  file.erase("stored");
  file.erase("date");
  EXPECT_EQ(list, nlohmann::json::parse(
                      R"({"schema": 1, "carrier": ")" + bench.folder.Where().native() +
                      R"(/carrier", "title": "Box", "algorithm": "CAST5", "exit_code": 0, "files": [
      {"number": 1, "path": "run.sh", "name": "run.sh", "folder": "", "size": 5, "attributes": 32, "mode": "700", "compressed": true,
       "level": 6, "start": 1001}]})"));
}

TEST_F(Verbs, NamesOfAnyBytesAreListedSafelyAndComeBack) {
  const std::string name = "a\n\xff\x1b[2Jb";
  bench.Put("in/\xfe/" + name, "odd");
  Hide("@in/\xfe");
  ASSERT_EQ(bench.Run("list @carrier"), 0);
  EXPECT_THAT(bench.terminal.out, HasSubstr("\\xfe/a\\n\\xff\\x1b[2Jb\n"));
  ASSERT_EQ(bench.Run("list @carrier --json"), 0);
  const auto file = bench.Json().at("files").at(0);
  EXPECT_EQ(file.at("name_b64"), "YQr/G1sySmI=");
  EXPECT_EQ(file.at("folder_b64"), "/g==");
  EXPECT_EQ(file.at("name"), "a\n\uFFFD\x1b[2Jb");
  ASSERT_EQ(bench.RunWords({"extract", "@carrier", "\xfe/" + name, "--to", "@out"}), 0) << bench.terminal.err;
  EXPECT_EQ(bench.Get("out/\xfe/" + name), "odd");
}

TEST_F(Verbs, EntriesAreNamedAsPeopleNameThem) {
  for (const char* path : {"in/Pics/a", "in/Pics/sub/b", "in/Pics2/c", "in/Pics/a.b", "in/Pics2/w\\x\xff"})
    bench.Put(path, path);
  Hide("@in/Pics @in/Pics2");
  const std::vector<std::string> odd = {"Pics2", "Pics2/w\\x\xff"};
  const std::vector<std::string> all = {"Pics", "Pics/a", "Pics/a.b", "Pics/sub", "Pics/sub/b"};
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"Pics/", all},
      {"./Pics", all},
      {"/Pics//sub /Pics/a*", all},
      {"Pics/*", all},
      {"*ics --exclude=Pics", {}},
      {"P*/b", {}},
      {"Pics --exclude sub --exclude *.b", {"Pics", "Pics/a"}},
      {"Pics/a", {"Pics", "Pics/a"}},
      {"Pics/sub/ Pics2/[c]", {"Pics", "Pics/sub", "Pics/sub/b", "Pics2", "Pics2/c"}},
      {"Pics2/w\\\\x\\xff", odd},
      {"Pics2/w\\x\xff", odd}};
  for (const auto& [entries, expected] : cases) {
    const TempFolder target;
    const int code = bench.Run("extract @carrier " + entries + " --to " + target.Where().native());
    EXPECT_EQ(code, expected.empty() ? 13 : 0) << entries << bench.terminal.err;
    EXPECT_EQ(target.Names(), expected) << entries;
  }
  for (const std::string missing : {"pics/a", "Pic/", "a", "/", "#0", "#99"}) {
    EXPECT_EQ(bench.Run("extract @carrier Pics/a " + missing + " --to @out"), 13) << missing;
    EXPECT_FALSE(bench.Has("out")) << missing;
  }
  ASSERT_EQ(bench.Run("list -0 @carrier Pics2/w*"), 0);
  EXPECT_EQ(bench.terminal.out, odd.back() + '\0');
  bench.Put("names", bench.terminal.out);
  ASSERT_EQ(bench.Run("delete @carrier --files-from @names"), 0) << bench.terminal.err;
  EXPECT_EQ(bench.Run("list @carrier Pics2/w*"), 13);
}

TEST_F(Verbs, AnExistingFileIsKeptUnlessThePersonSaysOtherwise) {
  bench.Put("a.txt", "hidden");
  Hide("@a.txt");
  bench.Put("out/a.txt", "there");
  EXPECT_EQ(bench.Run("extract @carrier --to @out"), 4);
  bench.terminal.canAsk = true;
  bench.terminal.lines = {"n"};
  EXPECT_EQ(bench.Run("extract @carrier --to @out"), 4);
  EXPECT_EQ(bench.Get("out/a.txt"), "there");
  bench.terminal.lines = {"y"};
  EXPECT_EQ(bench.Run("extract @carrier --to @out"), 0);
  EXPECT_EQ(bench.Get("out/a.txt"), "hidden");
}

TEST_F(Verbs, OfSeveralVersionsTheNewestIsTakenAndOthersCanBe) {
  for (const char* content : {"old", "newer", "newest"}) {
    bench.Put("a.txt", content);
    Hide("@a.txt");
  }
  EXPECT_EQ(bench.Run("extract @carrier --to @out"), 0) << bench.terminal.err;
  EXPECT_EQ(bench.Get("out/a.txt"), "newest");
  EXPECT_THAT(bench.terminal.err, HasSubstr("2 older versions were left out"));
  EXPECT_EQ(bench.Run("extract @carrier --to @all --all-versions"), 0);
  EXPECT_EQ(bench.Get("all/a.txt") + bench.Get("all/a (2).txt") + bench.Get("all/a (3).txt"),
            "newestnewerold");
  EXPECT_EQ(bench.Run("extract @carrier #1 --to @first"), 0);
  EXPECT_EQ(bench.Get("first/a.txt"), "old");
  EXPECT_EQ(bench.Run("extract @carrier #2 --to -"), 0);
  EXPECT_EQ(bench.terminal.out, "newer");
  EXPECT_EQ(bench.Run("extract @carrier #3 --to -"), 0);
  EXPECT_EQ(bench.Run("delete @carrier a.txt --dry-run"), 0);
  EXPECT_EQ(bench.Run("delete @carrier a.txt"), 0);
  EXPECT_THAT(bench.terminal.err, HasSubstr("3 entries deleted")) << bench.terminal.err;
  EXPECT_THAT(bench.terminal.err, HasSubstr("a.txt (3 versions)"));
}

TEST_F(Verbs, ADamagedEntryIsNamedAndTheOthersComeOut) {
  bench.Put("good", "good");
  bench.Put("bad", Pattern(100));
  Hide("@good");
  const std::size_t start = bench.Get("carrier").size();
  Hide("@bad");
  std::string bytes = bench.Get("carrier");
  bytes.at(start + 20) = static_cast<char>(bytes.at(start + 20) ^ 0x20);
  bench.Put("carrier", bytes);
  EXPECT_EQ(bench.Run("verify @carrier"), 7);
  EXPECT_THAT(bench.terminal.out,
              testing::MatchesRegex("intact   good\ndamaged  bad: [^\n]+\n2 files, 1 damaged\n"));
  EXPECT_EQ(bench.Run("verify @carrier --json"), 7);
  EXPECT_EQ(bench.Json().at("carriers").at(0).at("files").at(1).at("verdict"), "damaged");
  EXPECT_EQ(bench.Run("verify --quiet @carrier @other @missing"), 7);
  EXPECT_THAT(bench.terminal.out,
              testing::MatchesRegex("damaged  [^\n]+bad: [^\n]+\n2 files, 1 damaged; 2 [^\n]+\n"));
  EXPECT_EQ(bench.Run("extract @carrier bad --to -"), 7);
  EXPECT_THAT(bench.terminal.out, IsEmpty());
  EXPECT_EQ(bench.Run("extract @carrier --to @out"), 7);
  EXPECT_EQ(bench.Get("out/good"), "good");
  EXPECT_FALSE(bench.Has("out/bad"));
  EXPECT_EQ(bench.Run("extract @carrier --to @out2 --on-error=abort"), 7);
  bench.Put("out3/good/in the way", "");
  EXPECT_EQ(bench.Run("extract @carrier --to @out3 --on-error=ignore"), 7) << bench.terminal.err;
  EXPECT_THAT(bench.terminal.err, HasSubstr("good"));
  EXPECT_EQ(bench.Run("passwd @carrier --new-password-file @other --on-error=ignore"), 7);
}

TEST_F(Verbs, AHideoutWhoseChainIsBrokenIsReadAndSaysSo) {
  Hide("@other");
  Hide("@key");
  bench.Put("carrier", bench.Get("carrier").substr(1010));  // into the older entry
  EXPECT_EQ(bench.Run("list @carrier"), 7);
  EXPECT_THAT(bench.terminal.out, HasSubstr("key"));
  EXPECT_EQ(bench.Run("extract @carrier --to @out"), 7);
  EXPECT_EQ(bench.Get("out/key"), "secret\n");
}

TEST_F(Verbs, PasswordsOfNewHideoutsAreCheckedAndConfirmedWhereTyped) {
  bench.Put("key", "a<b\n", 0600);
  EXPECT_EQ(bench.Run("hide --new @carrier @other"), 2);
  bench.variables.clear();
  bench.terminal.canAsk = true;
  bench.terminal.secrets = {"secret", "sceret"};
  EXPECT_EQ(bench.Run("hide --new @carrier @other"), 2);
  EXPECT_EQ(bench.Get("carrier"), Pattern(1000));
  bench.terminal.secrets = {"secret", "secret", "secret"};
  Hide("@other");
  Hide("@other");
  EXPECT_THAT(bench.terminal.secrets, IsEmpty()) << "joining needs no second prompt";
  bench.terminal.secrets = {"secret", "new", "nwe"};
  EXPECT_EQ(bench.Run("passwd @carrier"), 2);
  bench.terminal.secrets = {"secret"};
  EXPECT_EQ(bench.Run("list @carrier"), 0);
}

TEST_F(Verbs, JoiningSaysThatTitleAndAlgorithmAreNotUsedEvenWhereQuiet) {
  Hide("--quiet @other --title One --algorithm DES");
  EXPECT_THAT(bench.terminal.err, IsEmpty());
  Hide("--quiet @other --title Two --algorithm TWOFISH");
  EXPECT_THAT(bench.terminal.err, HasSubstr("--title isn't used"));
  EXPECT_THAT(bench.terminal.err, HasSubstr("--algorithm isn't used"));
  EXPECT_EQ(bench.Run("list @carrier --json"), 0);
  EXPECT_EQ(bench.Json().at("title"), "One");
  EXPECT_EQ(bench.Json().at("algorithm"), "DES");
}

TEST_F(Verbs, EachFailureHasItsCode) {
  Hide("@other");
  bench.Put("short", "too short for a hideout");
  const std::pair<std::string, int> cases[] = {{"list @missing", 10},
                                               {"hide @missing @other", 10},
                                               {"recover @missing", 10},
                                               {"list @", 1},
                                               {"list @short", 12},
                                               {"list @carrier --password-file @other", 12},
                                               {"hide @carrier @missing", 1},
                                               {"hide @carrier @carrier", 1},
                                               {"hide @carrier /dev/null", 1},
                                               {"delete @carrier nothing", 13},
                                               {"update @carrier nothing @other", 13},
                                               {"update @carrier other @missing", 1},
                                               {"search @missing", 1},
                                               {"frobnicate @carrier", 2}};
  for (const auto& [line, code] : cases) {
    EXPECT_EQ(bench.Run(line), code) << line;
    EXPECT_THAT(bench.terminal.err, HasSubstr("error: ")) << line;
    EXPECT_EQ(bench.Run("--json " + line), code) << line;
    EXPECT_THAT(bench.terminal.err, HasSubstr("\"code\":" + std::to_string(code))) << line;
    EXPECT_EQ(bench.Json().at("error").at("code"), code) << line;
  }
  bench.terminal.isCancelled = true;
  for (const char* line : {"verify @carrier @missing", "recover @carrier"})
    EXPECT_EQ(bench.Run(line), 130) << line;
}

TEST_F(Verbs, AFolderThatIsHiddenInPartSaysSoAndStays) {
  bench.Put("in/docs/sub/a", "alpha");
  bench.Put("in/docs/sub/b.tmp", "beta");
  std::filesystem::create_directory(bench.folder / "in/docs/empty");
  std::filesystem::create_symlink("../sub/a", bench.folder / "in/docs/sub/link");
  ASSERT_EQ(::mkfifo((bench.folder / "in/docs/pipe").c_str(), 0600), 0);
  EXPECT_EQ(bench.Run("hide --new @carrier @in/docs --originals=destroy --exclude *.tmp"), 3);
  for (const char* named : {"docs/pipe", "docs/sub/link", "docs/empty"})
    EXPECT_THAT(bench.terminal.err, HasSubstr(named));
  EXPECT_THAT(Listed(), ElementsAre("docs/sub/a"));
  EXPECT_FALSE(bench.Has("in/docs/sub/a"));
  EXPECT_EQ(bench.Get("in/docs/sub/b.tmp"), "beta");
}

TEST_F(Verbs, AWrongPasswordMakesNoSecondHideoutUnasked) {
  Hide("@other");
  const std::string before = bench.Get("carrier");
  for (const char* line :
       {"hide @carrier @key --password-file @other", "hide @carrier @key --existing --password-file @other"})
    EXPECT_EQ(bench.Run(line), 12) << line;
  bench.terminal.canAsk = true;
  bench.terminal.lines = {"n"};
  EXPECT_EQ(bench.Run("hide @carrier @key --password-file @other"), 12);
  EXPECT_EQ(bench.Get("carrier"), before);
}

TEST_F(Verbs, ABusyCarrierIsLeftAlone) {
  Hide("@other");
  const auto held = OpenLocked(bench.folder / "carrier", bench.posix);
  for (const char* line :
       {"hide --new @carrier @other", "delete @carrier other", "update @carrier other @other",
        "recover @carrier", "passwd @carrier --new-password-file @other"}) {
    EXPECT_EQ(bench.Run(line), 8) << line;
  }
  EXPECT_EQ(bench.Run("list @carrier"), 0);
  EXPECT_EQ(bench.Run("verify @carrier --password-file @other"), 8) << "it may be in the middle of a hide";
  std::string bytes = bench.Get("carrier");
  bytes.at(1010) = static_cast<char>(bytes.at(1010) ^ 1);
  bench.Put("carrier", bytes);
  EXPECT_EQ(bench.Run("verify @carrier"), 8) << "it may be in the middle of a hide";
}

TEST_F(Verbs, ALeftoverBesideTheCarrierIsNeverReplacedUnasked) {
  Hide("@other");
  bench.Put("carrier.bak", "precious");
  EXPECT_EQ(bench.Run("hide --new @carrier @other"), 1);
  EXPECT_THAT(bench.terminal.err, HasSubstr("recover"));
  EXPECT_EQ(bench.Get("carrier.bak"), "precious");
  EXPECT_EQ(bench.Run("verify @carrier"), 0);
  EXPECT_THAT(bench.terminal.err, HasSubstr("carrier.bak"));
  bench.terminal.canAsk = true;
  bench.terminal.lines = {"y"};
  EXPECT_EQ(bench.Run("hide --new @carrier @other"), 0);
  EXPECT_FALSE(bench.Has("carrier.bak"));
  bench.terminal.canAsk = false;
  bench.Put("carrier.tmp", "precious");
  EXPECT_EQ(bench.Run("hide --new @carrier @other"), 0) << "a hide never touches it";
  EXPECT_EQ(bench.Run("delete @carrier other"), 1);
  EXPECT_EQ(bench.Get("carrier.tmp"), "precious");
}

TEST_F(Verbs, RewritingSaysWhatItDidAndRefusesWhatItCannotDo) {
  bench.Put("in/docs/a", "old");
  Hide("@in/docs @other");
  EXPECT_EQ(bench.Run("update @carrier docs/ @other"), 2);
  EXPECT_EQ(bench.Run("update @carrier docs/a @other"), 0) << bench.terminal.err;
  EXPECT_EQ(bench.Run("delete @carrier other --json"), 0) << bench.terminal.err;
  EXPECT_EQ(bench.Json().at("deleted"), 1);
  EXPECT_EQ(bench.Run("passwd @carrier"), 2) << "no new password";
  bench.Put("bad", "a>b\n", 0600);
  EXPECT_EQ(bench.Run("passwd @carrier --new-password-file @bad"), 2);
  EXPECT_EQ(bench.Run("passwd @carrier --new-password-file @other"), 0) << bench.terminal.err;
  EXPECT_EQ(bench.Run("list @carrier"), 12);
  EXPECT_THAT(Listed("--password-file @other"), ElementsAre("docs/a"));
}

TEST_F(Verbs, SearchFindsTheCarriersThatOpen) {
  bench.Put("pics/in/one.png", Pattern(500));
  bench.Put("pics/two.png", Pattern(500));
  bench.Put("pics/none.png", Pattern(500));
  bench.Put("pics/short.png", "short");
  ASSERT_EQ(bench.Run("hide --new @pics/in/one.png @other --title One --algorithm des"), 0);
  ASSERT_EQ(bench.Run("hide --new @pics/two.png @other --title Two"), 0);
  ASSERT_EQ(bench.Run("search @pics"), 0) << bench.terminal.err;
  EXPECT_EQ(bench.terminal.out, (bench.folder / "pics/two.png").native() + "  Two  RIJNDAEL-256\n");
  ASSERT_EQ(bench.Run("search @pics --recursive --json --algorithm DES --type png"), 0) << bench.terminal.err;
  EXPECT_EQ(bench.Json().at("carriers").at(0).at("carrier"), (bench.folder / "pics/in/one.png").native());
  EXPECT_EQ(bench.Json().at("carriers").at(0).at("title"), "One");
  EXPECT_EQ(bench.Json().at("carriers").at(0).at("algorithm"), "DES");
  EXPECT_EQ(bench.Run("search @pics --password-file @other"), 0) << "nothing found is an answer";
  EXPECT_EQ(bench.terminal.out, "");
  ASSERT_EQ(bench.Run("hide --new @pics/two.png @key --password-file @other"), 0);
  for (const char* depth : {"", " --newest-only"}) {
    EXPECT_EQ(bench.Run(std::string("search @pics") + depth), 0);
    EXPECT_EQ(bench.terminal.out.empty(), *depth != '\0') << "another hideout is the newest";
  }
}

TEST_F(Verbs, AFileThatCannotBeReadIsNoWrongPassword) {
  bench.Put("pics/bad.png", Pattern(500));
  ASSERT_EQ(bench.Run("hide --new @pics/bad.png @other"), 0);
  FaultyFiles faulty(bench.posix);
  faulty.Fail({.times = Times::FromThenOn, .counts = [this](const Operation& operation) {
                 return operation.name == "File.ReadAt" && operation.path == bench.folder / "pics/bad.png";
               }});
  bench.files = &faulty;
  for (const std::string line : {"list @pics/bad.png", "--on-error ignore list @pics/bad.png",
                                 "verify @pics/bad.png", "hide --new @pics/bad.png @other"}) {
    EXPECT_EQ(bench.Run(line), 9) << line;
    EXPECT_THAT(bench.terminal.err, HasSubstr("bad.png"));
  }
  EXPECT_EQ(bench.Run("search @pics"), 3);
  EXPECT_THAT(bench.terminal.err, HasSubstr("bad.png"));
}

TEST_F(Verbs, RecoverPutsTheBestCopyInPlaceOnlyWhenAllowed) {
  Hide("@other");
  const std::string good = bench.Get("carrier");
  bench.Put("carrier.bak", good);
  bench.Put("carrier", good + "torn");
  EXPECT_EQ(bench.Run("list @carrier"), 12);
  EXPECT_THAT(bench.terminal.err, HasSubstr("carrier.bak"));
  EXPECT_EQ(bench.Run("recover @carrier"), 1);
  EXPECT_EQ(bench.Get("carrier"), good + "torn");
  EXPECT_EQ(bench.Run("recover @carrier --password-file @other"), 12);
  bench.terminal.canAsk = true;
  bench.terminal.lines = {"y"};
  EXPECT_EQ(bench.Run("recover @carrier"), 0) << bench.terminal.err;
  EXPECT_THAT(bench.terminal.out, HasSubstr("1 entry"));
  EXPECT_EQ(bench.Get("carrier"), good);
  EXPECT_EQ(bench.Get("carrier.old"), good + "torn");
  EXPECT_EQ(bench.Run("recover @carrier"), 0) << "nothing left to do";
  for (const bool asks : {false, true}) {
    bench.Put("carrier", good + "torn");
    bench.terminal.lines = {"y"};
    EXPECT_EQ(bench.Run(asks ? "recover @carrier -q" : "recover @carrier -q -y"), 0);
    EXPECT_EQ(bench.terminal.out.empty(), !asks) << "what has to be answered is shown";
  }
}

/// A hide that fails leaves the carrier byte for byte; if not even that is possible, a whole backup.
TEST_F(Verbs, NoFailingOperationOfAHideLosesTheCarrier) {
  bench.Put("a.txt", Pattern(40000));
  Hide("@other");
  const std::string before = bench.Get("carrier");
  const auto hide = [&](FaultyFiles& faulty, const std::string& option) {
    bench.Put("carrier", before);
    std::filesystem::remove(bench.folder / "carrier.bak");
    bench.files = &faulty;
    const int code = bench.Run("hide --new @carrier @a.txt " + option);
    bench.files = &bench.posix;
    return code;
  };
  for (const std::string option : {"--on-error=abort", "--on-error=ignore", "--on-error=retry"}) {
    FaultyFiles quiet(bench.posix);
    ASSERT_EQ(hide(quiet, option), 0);
    for (const Times times : {Times::Once, Times::FromThenOn}) {
      const bool isBackupEnough = times == Times::FromThenOn || option != "--on-error=abort";
      for (std::size_t k = 1; k <= quiet.Count(); ++k) {
        FaultyFiles faulty(bench.posix);
        faulty.Fail({.at = k, .times = times, .writes = Writes::FirstHalf});
        const int code = hide(faulty, option);
        const bool isUndone = code != 0 && bench.Get("carrier") == before;
        const bool hasBackup = code != 0 && bench.Has("carrier.bak") && bench.Get("carrier.bak") == before;
        EXPECT_TRUE(isUndone || (isBackupEnough && hasBackup) || bench.Run("verify @carrier") == 0)
            << option << ", operation " << k << ": " << bench.terminal.err;
      }
    }
  }
}

TEST_F(Verbs, ABackupThatIsNotTheWholeCarrierIsNotPutBack) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{999}}) {
    bench.Put("carrier.bak", Pattern(size));
    EXPECT_THROW(PutBackCarrier(bench.folder / "carrier", bench.folder / "carrier.bak", 1000, bench.posix),
                 CliFailure);
    EXPECT_EQ(bench.Get("carrier"), Pattern(1000));
  }
}

TEST_F(Verbs, WhatIsLeftToBeDoneByHandIsSaid) {
  const Path carrier = bench.folder / "carrier";
  for (const char* refused : {"Files.Rename", "Files.SyncFolder"}) {
    FaultyFiles faulty(bench.posix);
    faulty.Fail(
        {.times = Times::FromThenOn, .counts = [&, hasBegun = false](const Operation& operation) mutable {
           const bool isWrite = operation.name == "File.WriteAt" && operation.path == carrier;
           return (hasBegun = hasBegun || isWrite) && (isWrite || operation.name == refused);
         }});
    bench.files = &faulty;
    EXPECT_EQ(bench.Run("hide --new @carrier @other --no-input"), 1);
    EXPECT_THAT(bench.terminal.err, HasSubstr("by hand")) << refused;
    std::filesystem::remove(bench.folder / "carrier.bak");
  }
  FaultyFiles faulty(bench.posix);
  faulty.Fail({.times = Times::FromThenOn, .counts = Calls("Files.Remove")});
  bench.files = &faulty;
  EXPECT_EQ(bench.Run("hide --new @carrier @other --on-error=ignore"), 3) << "the backup stays";
}

TEST_F(Verbs, AskingForTheTrashIsTheConsentAndDestructionIsAskedAbout) {
  bench.Put("a.txt", "content");
  bench.terminal.canAsk = true;
  bench.terminal.lines = {"n"};
  EXPECT_EQ(bench.Run("hide --new @carrier @a.txt --originals=destroy"), 1);
  EXPECT_EQ(bench.Get("carrier"), Pattern(1000));
  bench.terminal.canAsk = false;
  ::setenv("XDG_DATA_HOME", (bench.folder / "data").c_str(), 1);
  bench.Put("in/kept.tmp", "");
  bench.Put("in/b.txt", "");
  EXPECT_EQ(bench.Run("hide --new @carrier @a.txt @in --originals=trash --exclude *.tmp"), 0)
      << bench.terminal.err;
  EXPECT_TRUE(bench.Has("in/kept.tmp") && !bench.Has("in/b.txt"));
  ::unsetenv("XDG_DATA_HOME");
  EXPECT_EQ(bench.Get("data/Trash/files/a.txt"), "content");
}

/// Once originals may be gone the old carrier is no way back, whatever is answered.
TEST_F(Verbs, AnAbortBehindTheLastEntryUndoesNothingAndReports) {
  bench.Put("a.txt", "first");
  bench.Put("b.txt", "second");
  FaultyFiles faulty(bench.posix);
  faulty.Fail({.times = Times::FromThenOn, .counts = [&](const Operation& operation) {
                 return operation.name == "Files.Remove" && operation.path != bench.folder / "b.txt";
               }});
  bench.files = &faulty;
  bench.terminal.canAsk = true;
  bench.terminal.lines = {"y", "i", "a"};  // go on; the backup stays; a.txt can't be deleted
  EXPECT_EQ(bench.Run("hide --new @carrier @a.txt @b.txt --originals=destroy --json"), 3)
      << bench.terminal.err;
  bench.files = &bench.posix;
  EXPECT_EQ(bench.Json().at("hidden"), 2);
  EXPECT_EQ(bench.Json().at("originals_left").size(), 1U);
  EXPECT_FALSE(bench.Has("b.txt"));
  EXPECT_THAT(bench.terminal.err, HasSubstr("carrier.bak"));
  EXPECT_THAT(Listed(), ElementsAre("/a.txt", "/b.txt"));
}

TEST_F(Verbs, ADiskThatFillsUpAnywhereLeavesTheCarrierAsItWas) {
  bench.Put("a.txt", Pattern(40000));
  for (std::int64_t space = 0; space < 42000; space += 3500) {
    FaultyFiles faulty(bench.posix);
    faulty.LimitSpace(space);
    bench.files = &faulty;
    EXPECT_EQ(bench.Run("hide --new @carrier @a.txt --no-input"), 5) << space;
    EXPECT_EQ(bench.Get("carrier"), Pattern(1000)) << space;
    EXPECT_FALSE(bench.Has("carrier.bak")) << space;
  }
}

}  // namespace
}  // namespace tarnel::test
