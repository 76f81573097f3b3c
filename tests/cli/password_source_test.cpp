#include "cli/password_source.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/cli/cli_bench.h"

namespace tarnel::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class PasswordSource : public testing::Test {
 protected:
  GivenPassword Obtain() {
    const Variables variables = [this](const char*) { return m_variable; };
    return ObtainPassword(options, variables, terminal, messages);
  }
  std::string Text() { return std::string(Obtain().secret.View()); }
  ExitCode Failure() {
    try {
      Obtain();
    } catch (const CliFailure& failure) {
      return failure.Code();
    }
    return ExitCode::Done;
  }

  TempFolder folder;
  ScriptedTerminal terminal;
  Messages messages{terminal, MessageForm::Text, Volume::Quiet, Colour::Off};
  GlobalOptions options;
  std::optional<std::string> m_variable;
};

TEST_F(PasswordSource, TakesTheFirstLineWithoutItsEnd) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"abc", "abc"},
      {"abc\n", "abc"},
      {"abc\r\n", "abc"},
      {"abc\r", "abc\r"},
      {"a\nb", "a"},
      {" a b \n", " a b "},
      {"\xff\x01\n", "\xff\x01"},
      {std::string("a\0b\n", 4), std::string("a\0b", 3)},
      {"a\r\r\n", "a\r"}};
  for (const auto& [bytes, password] : cases) {
    options.passwordFile = folder.Put("key", bytes, 0600).native();
    EXPECT_EQ(Text(), password);
  }
  EXPECT_THAT(terminal.err, IsEmpty());
}

TEST_F(PasswordSource, RefusesAnEmptyOne) {
  for (const char* bytes : {"", "\n", "\r\n", "\nsecond"}) {
    options.passwordFile = folder.Put("key", bytes, 0600).native();
    EXPECT_EQ(Failure(), ExitCode::Usage);
  }
}

TEST_F(PasswordSource, WarnsOfAFileThatOthersMayRead) {
  for (const mode_t mode : {0640U, 0604U, 0660U}) {
    terminal.err.clear();
    options.passwordFile = folder.Put("key", "abc\n", mode).native();
    EXPECT_EQ(Text(), "abc");
    EXPECT_THAT(terminal.err, HasSubstr("others may read"));
  }
}

TEST_F(PasswordSource, PrefersTheOptionThenTheVariableThenThePrompt) {
  terminal.canAsk = true;
  terminal.secrets = {"typed"};
  EXPECT_EQ(Text(), "typed");
  m_variable = folder.Put("variable", "from variable", 0600).native();
  EXPECT_EQ(Text(), "from variable");
  options.passwordFile = folder.Put("option", "from option", 0600).native();
  EXPECT_EQ(Text(), "from option");
}

TEST_F(PasswordSource, LeavesWhatFollowsTheLineInTheDescriptor) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ASSERT_EQ(::write(ends[1], "abc\nrest", 8), 8);
  ::close(ends[1]);
  options.passwordFd = ends[0];
  EXPECT_EQ(Text(), "abc");
  char rest[8] = {};
  EXPECT_EQ(::read(ends[0], rest, sizeof rest), 4);
  ::close(ends[0]);
  EXPECT_EQ(Failure(), ExitCode::Failed) << "a closed descriptor";
}

TEST_F(PasswordSource, WithoutAnyWayIsAUsageErrorThatNamesTheWays) {
  EXPECT_EQ(Failure(), ExitCode::Usage);
  terminal.canAsk = true;
  options.noInput = true;
  terminal.secrets = {"typed"};
  EXPECT_EQ(Failure(), ExitCode::Usage);
  try {
    Obtain();
  } catch (const CliFailure& failure) {
    for (const char* way : {"--password-file", "--password-fd", "TARNEL_PASSWORD_FILE", "terminal"}) {
      EXPECT_THAT(failure.what(), HasSubstr(way));
    }
  }
}

TEST_F(PasswordSource, FailsForAFileThatIsMissingOrEndless) {
  options.passwordFile = (folder / "missing").native();
  EXPECT_EQ(Failure(), ExitCode::Failed);
  options.passwordFile = "/dev/zero";
  EXPECT_EQ(Failure(), ExitCode::Usage);
}

TEST_F(PasswordSource, EndOfInputAtThePromptIsACancel) {
  terminal.canAsk = true;
  EXPECT_EQ(Failure(), ExitCode::Cancelled);
}

}  // namespace
}  // namespace tarnel::test
