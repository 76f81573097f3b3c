#include <gmock/gmock.h>

#include <functional>
#include <regex>
#include <set>

#include "carrier/companions.h"
#include "tests/cli/cli_bench.h"
#include "tests/support/faulty_files.h"

namespace tarnel::test {
namespace {

std::string Page() {
  const std::string page = ReadAll(Path(TARNEL_SHARED) / "tarnel-cli.1");
  return std::regex_replace(page, std::regex(R"(\\-)"), "-");
}

/// What the first group of the pattern has found, everywhere.
std::set<std::string> AllOf(const std::string& text, const char* pattern) {
  std::set<std::string> found;
  const std::regex regex(pattern);
  for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at)
    found.insert((*at)[1].str());
  return found;
}

struct Try {
  const char* line;
  int code;
};

/// In this order, on one carrier.
constexpr Try kTries[] = {
    {"hide @carrier @in", 12},
    {"hide @carrier @in --existing", 12},
    {"hide @carrier @in -n --exclude *.b --no-folders", 0},
    {"hide --new @carrier @in --title T --algorithm DES --compress 9 --keep-times --follow", 0},
    {"hide @carrier @key --no-folders --write-protect --originals=keep --no-input --on-error=abort", 0},
    {"hide @carrier --files-from @paths --json -q", 0},
    {"hide @carrier - @key", 2},
    {"hide @carrier @key --name n", 2},
    {"hide @carrier @missing", 1},
    {"list @carrier --password-file @key", 0},
    {"list @carrier -0 --null in", 0},
    {"list @carrier #99", 13},
    {"list @missing", 10},
    {"list @carrier --password-fd 99", 2},
    {"list @carrier --frob", 2},
    {"extract @carrier -o @flat --flat --all-versions", 0},
    {"extract @carrier --to @out --quiet", 0},
    {"extract @carrier --to @out", 4},
    {"extract @carrier --to @out --overwrite --dry-run", 0},
    {"verify @carrier --entry in/a", 0},
    {"update @carrier in/a @key", 0},
    {"delete @carrier in/a", 0},
    {"passwd @carrier --new-password-fd 99", 2},
    {"passwd @carrier --new-password-file @key", 0},
    {"search @ -r --recursive --newest-only --type png --algorithm DES", 0},
    {"recover @carrier -y --yes", 0},
    {"salvage @carrier --to @saved", 0},
    {"passphrase --words 7", 0},
    {"passphrase -w 0", 2},
    {"hide --new @carrier @in @folder", 3},
    {"verify @carrier", 0},
    {"help verify", 0},
    {"list -h", 0},
    {"--help", 0},
    {"-V", 0},
    {"--version", 0}};

class Manual : public testing::Test {
 protected:
  Manual() {
    bench.Put("in/a", "alpha");
    bench.Put("in/x.b", "beta");
    bench.Put("paths", (bench.folder / "in").native() + "\n");
    std::filesystem::create_directory(bench.folder / "folder");
    std::filesystem::create_symlink("nowhere", bench.folder / "folder/link");
  }
  void Run(const std::string& line, int code) {
    EXPECT_EQ(bench.Run(line), code) << line << "\n" << bench.terminal.err;
    m_codes.insert(std::to_string(code));
    for (const std::string& word : Words(line))
      m_words.insert(word.substr(0, word.find('=')));
  }
  /// With the files that fail as `arm` says.
  void RunFailing(const std::string& line, int code, const std::function<void(FaultyFiles&)>& arm) {
    FaultyFiles faulty(bench.posix);
    arm(faulty);
    bench.files = &faulty;
    Run(line, code);
    bench.files = &bench.posix;
  }
  void RunWhatTheMachineForbids();

  CliBench bench;
  std::set<std::string> m_words;
  std::set<std::string> m_codes;
};

void Manual::RunWhatTheMachineForbids() {
  const auto failing = [this](ErrorNumber number) {
    return [this, number](FaultyFiles& faulty) {
      faulty.Fail(
          {.number = number, .times = Times::FromThenOn, .counts = [this](const Operation& operation) {
             return operation.name == "File.ReadAt" && operation.path == bench.folder / "carrier";
           }});
    };
  };
  RunFailing("list @carrier", 9, failing(ErrorNumber::DeviceIo));
  RunFailing("hide --new @carrier @in", 5, [](FaultyFiles& faulty) { faulty.LimitSpace(1); });
  RunFailing("list @carrier", 6, [](FaultyFiles& faulty) {
    faulty.Fail({.number = ErrorNumber::PermissionDenied,
                 .counts = [](const Operation& operation) { return operation.name == "Files.OpenToRead"; }});
  });
  {
    const auto held = OpenLocked(bench.folder / "carrier", bench.posix, LockAccess::Read);
    Run("delete @carrier in", 8);
  }
  bench.terminal.isReaderGone = true;
  Run("list @carrier", 141);
  bench.terminal.isReaderGone = false;
  bench.terminal.isCancelled = true;
  Run("extract @carrier --to @out3", 130);
  bench.terminal.isCancelled = false;
  std::string bytes = bench.Get("carrier");
  bytes.at(1010) = static_cast<char>(bytes.at(1010) ^ 1);
  bench.Put("carrier", bytes);
  Run("verify @carrier", 7);
}

TEST_F(Manual, EveryVerbOptionAndExitCodeOfThePageWorks) {
  for (const Try& each : kTries)
    Run(each.line, each.code);
  RunWhatTheMachineForbids();
  const std::string page = Page();
  const std::string synopsis = page.substr(0, page.find(".SH DESCRIPTION"));
  std::set<std::string> named = AllOf(synopsis, "\n[.]B ([a-z]+)\n");
  EXPECT_EQ(named.size(), 11U);
  named.merge(AllOf(page, R"(\\fB(--?[a-zA-Z0-9-]+)\\fR)"));
  EXPECT_GT(named.size(), 40U);
  for (const std::string& name : named)
    EXPECT_TRUE(m_words.contains(name)) << name << " was not tried";
  EXPECT_EQ(AllOf(page, "\n([0-9]+)\t"), m_codes);
}

TEST(Completions, OfBashOfferWhatFits) {
  const std::pair<const char*, const char*> cases[] = {{"ver", "verify "},
                                                       {"extract c --t", "--to "},
                                                       {"extract c --on-error a", "abort "},
                                                       {"hide c --algorithm tr", "TripleDES "},
                                                       {"list c --recurs", ""},
                                                       {"help sal", "salvage "}};
  for (const auto& [line, expected] : cases) {
    const std::string script =
        std::string("source '") + TARNEL_SHARED + "/tarnel-cli.bash'; COMP_WORDS=(tarnel-cli " + line +
        "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _tarnel_cli; printf '%s ' ${COMPREPLY[@]}";
    const TempFolder folder;
    folder.Put("script", script);
    const Path out = folder / "out";
    ASSERT_EQ(std::system(("bash " + (folder / "script").native() + " >" + out.native()).c_str()), 0) << line;
    const std::string got = ReadAll(out);
    EXPECT_EQ(got == " " ? "" : got, expected) << line;
  }
}

}  // namespace
}  // namespace tarnel::test
