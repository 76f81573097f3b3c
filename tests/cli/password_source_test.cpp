#include "cli/password_source.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/cli/cli_bench.h"

namespace tarnel::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class PasswordSource : public testing::Test {
 protected:
  /// The password; where there is none, the exit code.
  std::string Obtained() {
    const Variables variables = [this](const char*) { return variable; };
    try {
      return std::string(ObtainPassword(options, variables, terminal, messages).secret.View());
    } catch (const CliFailure& failure) {
      said = failure.what();
      return std::to_string(static_cast<int>(failure.Code()));
    }
  }
  std::string FromFile(std::string_view bytes, mode_t mode = 0600) {
    options.passwordFile = folder.Put("key", bytes, mode).native();
    return Obtained();
  }

  TempFolder folder;
  ScriptedTerminal terminal;
  Messages messages{terminal, MessageForm::Text, Volume::Quiet, Colour::Off};
  GlobalOptions options;
  std::optional<std::string> variable;
  std::string said;
};

TEST_F(PasswordSource, IsTheFirstLineWithoutItsEndAndNeverEmpty) {
  const std::pair<std::string, std::string> cases[] = {{"abc", "abc"},
                                                       {"abc\n", "abc"},
                                                       {"abc\r\n", "abc"},
                                                       {"abc\r", "abc\r"},
                                                       {"a\nb", "a"},
                                                       {" a b \n", " a b "},
                                                       {"\xff\x01\n", "\xff\x01"},
                                                       {std::string("a\0b\n", 4), std::string("a\0b", 3)},
                                                       {"a\r\r\n", "a\r"},
                                                       {"", "2"},
                                                       {"\r\n", "2"},
                                                       {"\nsecond", "2"}};
  for (const auto& [bytes, password] : cases)
    EXPECT_EQ(FromFile(bytes), password);
  EXPECT_THAT(terminal.err, IsEmpty());
}

TEST_F(PasswordSource, WarnsOfAFileThatOthersMayRead) {
  for (const mode_t mode : {0640U, 0604U}) {
    terminal.err.clear();
    EXPECT_EQ(FromFile("abc\n", mode), "abc");
    EXPECT_THAT(terminal.err, HasSubstr("others may read"));
  }
}

TEST_F(PasswordSource, PrefersTheOptionThenTheVariableThenThePrompt) {
  terminal.canAsk = true;
  terminal.secrets = {"typed"};
  EXPECT_EQ(Obtained(), "typed");
  EXPECT_EQ(Obtained(), "130") << "the input ended";
  variable = folder.Put("variable", "from variable", 0600).native();
  EXPECT_EQ(Obtained(), "from variable");
  EXPECT_EQ(FromFile("from option"), "from option");
}

TEST_F(PasswordSource, LeavesWhatFollowsTheLineInTheDescriptor) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ASSERT_EQ(::write(ends[1], "abc\nrest", 8), 8);
  ::close(ends[1]);
  options.passwordFd = ends[0];
  EXPECT_EQ(Obtained(), "abc");
  char rest[8] = {};
  EXPECT_EQ(::read(ends[0], rest, sizeof rest), 4);
  ::close(ends[0]);
  EXPECT_EQ(Obtained(), "2") << "a closed descriptor";
}

TEST_F(PasswordSource, IsNotFoundWhereThereIsNoWayOrAFileIsMissingOrEndless) {
  EXPECT_EQ(Obtained(), "2");
  for (const char* way : {"--password-file", "--password-fd", "TARNEL_PASSWORD_FILE", "terminal"})
    EXPECT_THAT(said, HasSubstr(way));
  terminal.canAsk = true;
  terminal.secrets = {"typed"};
  options.noInput = true;
  EXPECT_EQ(Obtained(), "2");
  options.passwordFile = (folder / "missing").native();
  EXPECT_EQ(Obtained(), "2");
  options.passwordFile = "/dev/zero";
  EXPECT_EQ(Obtained(), "2");
}

}  // namespace
}  // namespace tarnel::test
