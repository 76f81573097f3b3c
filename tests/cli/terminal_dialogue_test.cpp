#include "cli/terminal_dialogue.h"

#include <gmock/gmock.h>

#include "base/attempt.h"
#include "tests/cli/cli_bench.h"

namespace tarnel::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

Question Plain(Buttons buttons) {
  return {.id = "test.plain", .title = {}, .text = "Go\r\non?", .buttons = buttons, .preset = Answer::No};
}

Question Failing(const std::string& what) {
  return ErrorQuestion(Error(ErrorNumber::DiskFull, what), "test.error", "Tarnel", LineBreak::LfCr,
                       Answer::Retry);
}

class Dialogues : public testing::Test {
 protected:
  TerminalDialogue& Talk() { return talk.emplace(terminal, messages, options); }
  Answer AskTyping(const Question& question, std::deque<std::string> typed) {
    terminal.canAsk = true;
    terminal.lines = std::move(typed);
    return Talk().Ask(question);
  }

  ScriptedTerminal terminal;
  Messages messages{terminal, MessageForm::Text, Volume::Quiet, Colour::Off};
  GlobalOptions options;
  std::optional<TerminalDialogue> talk;
};

TEST_F(Dialogues, WithNobodyToAskTheSafeAnswerIsTakenAndSaid) {
  for (const Buttons buttons : {Buttons::YesNo, Buttons::RetryCancel, Buttons::YesNoOverwriteAll}) {
    terminal.err.clear();
    EXPECT_EQ(Talk().Ask(Plain(buttons)), SafeAnswer(buttons));
    EXPECT_THAT(terminal.err, HasSubstr("Go\non?\nanswered with"));
  }
  EXPECT_EQ(Talk().Ask(Failing("cannot do it")), Answer::Abort);
  options.noInput = true;
  EXPECT_EQ(AskTyping(Plain(Buttons::YesNo), {"y"}), Answer::No);
  terminal.isCancelled = true;
  options.noInput = false;
  EXPECT_EQ(AskTyping(Plain(Buttons::YesNo), {"y"}), Answer::No);
  EXPECT_EQ(AskTyping(Failing("cannot"), {"i"}), Answer::Abort);
  EXPECT_EQ(talk->LastFailure().Code(), ExitCode::Cancelled);
  EXPECT_THAT(terminal.prompts, IsEmpty());
}

TEST_F(Dialogues, OneKeyOrTheWordAnswersAndAnEmptyLineTakesThePreset) {
  const Question overwrite = Plain(Buttons::YesNoOverwriteAll);
  const Question failing = Failing("cannot open \x1b[2J\x07");
  const struct {
    Question question;
    std::deque<std::string> typed;
    Answer answer;
  } cases[] = {{overwrite, {"y"}, Answer::Yes},
               {overwrite, {"N"}, Answer::No},
               {overwrite, {"a"}, Answer::OverwriteAll},
               {overwrite, {""}, Answer::No},
               {overwrite, {"x", "yup", "yes"}, Answer::Yes},
               {overwrite, {}, Answer::No},
               {failing, {"a"}, Answer::Abort},
               {failing, {""}, Answer::Retry},
               {failing, {"i"}, Answer::Ignore},
               {Plain(Buttons::RetryCancel), {"c"}, Answer::Cancel}};
  for (const auto& [question, typed, answer] : cases)
    EXPECT_EQ(AskTyping(question, typed), answer) << testing::PrintToString(typed);
  EXPECT_THAT(terminal.prompts, HasSubstr("[r]etry, [c]ancel"));
  EXPECT_EQ(terminal.prompts.find_first_of("\x1b\x07"), std::string::npos);
}

TEST_F(Dialogues, OnErrorAnswersErrorsAndNothingElse) {
  options.onError = OnError::Ignore;
  EXPECT_EQ(AskTyping(Failing("cannot"), {}), Answer::Ignore);
  EXPECT_THAT(terminal.err, HasSubstr("cannot"));
  EXPECT_EQ(AskTyping(Plain(Buttons::YesNo), {"y"}), Answer::Yes);
  options.onError = OnError::Abort;
  EXPECT_EQ(AskTyping(Failing("cannot"), {"i"}), Answer::Abort);
}

TEST_F(Dialogues, RetryIsTriedThreeTimesForOneErrorAndThenAborts) {
  options.onError = OnError::Retry;
  Talk();
  for (const char* what : {"cannot a", "cannot b"}) {
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(talk->Ask(Failing(what)), Answer::Retry);
  }
  EXPECT_EQ(talk->Ask(Failing("cannot b")), Answer::Abort);
  EXPECT_EQ(talk->LastFailure().Code(), ExitCode::NoSpace);
  terminal.isCancelled = true;
  EXPECT_EQ(talk->Ask(Failing("cannot c")), Answer::Abort) << "nothing is tried again after Ctrl+C";
}

TEST_F(Dialogues, AnErrorThatWasAbortedIsNotAskedAgain) {
  EXPECT_EQ(AskTyping(Failing("cannot read"), {"a", "i"}), Answer::Abort);
  EXPECT_EQ(talk->Ask(Failing("cannot read")), Answer::Abort);
  EXPECT_EQ(talk->Ask(Failing("cannot write")), Answer::Ignore);
}

TEST_F(Dialogues, ProgressIsDrawnOnATerminalOnlyAndClearedAtTheEnd) {
  Talk().Progress().Show(1, 2);
  terminal.isTerminal = true;
  options.quiet = true;
  Talk().Progress().Show(1, 2);
  EXPECT_THAT(terminal.err, IsEmpty());
  options.quiet = false;
  Talk().Progress().SetLabel("Hiding \x1b.txt");
  for (int i = 0; i < 1000; ++i)
    talk->Progress().Show(1, 2);
  EXPECT_THAT(terminal.err, HasSubstr("Hiding \\x1b.txt  50 %"));
  EXPECT_LT(terminal.err.size(), 400U) << "drawn too often";
  talk.reset();
  EXPECT_TRUE(terminal.err.ends_with("\r\x1b[K"));
}

}  // namespace
}  // namespace tarnel::test
