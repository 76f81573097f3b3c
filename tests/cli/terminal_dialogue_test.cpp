#include "cli/terminal_dialogue.h"

#include <gmock/gmock.h>

#include "base/attempt.h"
#include "tests/cli/cli_bench.h"

namespace tarnel::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

Question Plain(Buttons buttons, Answer preset = Answer::No) {
  return {.id = "test.plain", .title = {}, .text = "Go\r\non?", .buttons = buttons, .preset = preset};
}

Question Failing(const std::string& what, ErrorNumber number = ErrorNumber::DiskFull,
                 const char* id = "test.error") {
  return ErrorQuestion(Error(number, what), id, "Tarnel", LineBreak::LfCr, Answer::Retry);
}

class Dialogues : public testing::Test {
 protected:
  TerminalDialogue& Talk() {
    m_talk.emplace(terminal, messages, options);
    return *m_talk;
  }
  Answer AskTyping(const Question& question, std::deque<std::string> typed) {
    terminal.canAsk = true;
    terminal.lines = std::move(typed);
    return Talk().Ask(question);
  }

  ScriptedTerminal terminal;
  Messages messages{terminal, MessageForm::Text, Volume::Quiet, Colour::Off};
  GlobalOptions options;
  std::optional<TerminalDialogue> m_talk;
};

TEST_F(Dialogues, WithNobodyThereTheSafeAnswerIsTakenAndSaid) {
  for (const Buttons buttons : {Buttons::YesNo, Buttons::RetryCancel, Buttons::YesNoOverwriteAll}) {
    terminal.err.clear();
    EXPECT_EQ(Talk().Ask(Plain(buttons)), SafeAnswer(buttons));
    EXPECT_THAT(terminal.err, HasSubstr("Go\non?\nanswered with"));
  }
  EXPECT_EQ(Talk().Ask(Failing("cannot do it")), Answer::Abort);
}

TEST_F(Dialogues, NoInputAsksNobodyEvenAtATerminal) {
  options.noInput = true;
  EXPECT_EQ(AskTyping(Plain(Buttons::YesNo), {"y"}), Answer::No);
  EXPECT_THAT(terminal.prompts, IsEmpty());
}

TEST_F(Dialogues, OneKeyOrTheWordAnswersAndAnEmptyLineTakesThePreset) {
  const Question overwrite = Plain(Buttons::YesNoOverwriteAll);
  EXPECT_EQ(AskTyping(overwrite, {"y"}), Answer::Yes);
  EXPECT_EQ(AskTyping(overwrite, {"N"}), Answer::No);
  EXPECT_EQ(AskTyping(overwrite, {"a"}), Answer::OverwriteAll);
  EXPECT_EQ(AskTyping(overwrite, {""}), Answer::No);
  EXPECT_EQ(AskTyping(overwrite, {"x", "yup", "yes"}), Answer::Yes);
  EXPECT_EQ(AskTyping(overwrite, {}), Answer::No) << "the input ended";
  EXPECT_EQ(AskTyping(Failing("cannot"), {"a"}), Answer::Abort);
  EXPECT_EQ(AskTyping(Failing("cannot"), {""}), Answer::Retry);
  EXPECT_EQ(AskTyping(Failing("cannot"), {"i"}), Answer::Ignore);
  EXPECT_EQ(AskTyping(Plain(Buttons::RetryCancel), {"c"}), Answer::Cancel);
  EXPECT_THAT(terminal.prompts, HasSubstr("[r]etry, [c]ancel"));
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
  TerminalDialogue& talk = Talk();
  for (const char* what : {"cannot a", "cannot b"}) {
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(talk.Ask(Failing(what)), Answer::Retry);
  }
  EXPECT_EQ(talk.Ask(Failing("cannot b")), Answer::Abort);
  EXPECT_EQ(talk.LastFailure().Code(), ExitCode::NoSpace);
}

TEST_F(Dialogues, AnErrorThatWasAbortedIsNotAskedAgain) {
  terminal.canAsk = true;
  terminal.lines = {"a", "i"};
  TerminalDialogue& talk = Talk();
  for (int i = 0; i < 20; ++i)
    EXPECT_EQ(talk.Ask(Failing("cannot read")), Answer::Abort);
  EXPECT_EQ(talk.Ask(Failing("cannot write")), Answer::Ignore);
}

TEST_F(Dialogues, ADamagedEntryDoesNotStopTheOthersUnlessToldSo) {
  const Question damaged = Failing("x is damaged", ErrorNumber::DeviceIo, "extract.damaged");
  EXPECT_EQ(Talk().Ask(damaged), Answer::Ignore);
  options.onError = OnError::Abort;
  EXPECT_EQ(Talk().Ask(damaged), Answer::Abort);
  EXPECT_EQ(m_talk->LastFailure().Code(), ExitCode::Damaged);
}

TEST_F(Dialogues, ACancelMeansTheSafeAnswerWithoutAsking) {
  terminal.isCancelled = true;
  EXPECT_EQ(AskTyping(Plain(Buttons::YesNo), {"y"}), Answer::No);
  EXPECT_EQ(AskTyping(Failing("cannot"), {"i"}), Answer::Abort);
  EXPECT_EQ(m_talk->LastFailure().Code(), ExitCode::Cancelled);
  EXPECT_THAT(terminal.prompts, IsEmpty());
}

TEST_F(Dialogues, NothingInAQuestionDrivesTheTerminal) {
  AskTyping(Failing("cannot open \x1b[2J\x07"), {"a"});
  EXPECT_EQ(terminal.prompts.find_first_of("\x1b\x07"), std::string::npos);
}

TEST_F(Dialogues, ProgressIsDrawnOnATerminalOnlyAndClearedAtTheEnd) {
  Talk().Progress().Show(1, 2);
  EXPECT_THAT(terminal.err, IsEmpty());
  terminal.isTerminal = true;
  options.quiet = true;
  Talk().Progress().Show(1, 2);
  EXPECT_THAT(terminal.err, IsEmpty());
  options.quiet = false;
  Talk().Progress().SetLabel("Hiding \x1b.txt");
  m_talk->Progress().Show(1, 2);
  EXPECT_THAT(terminal.err, HasSubstr("Hiding \\x1b.txt  50 %"));
  for (int i = 0; i < 1000; ++i)
    m_talk->Progress().Show(1, 2);
  EXPECT_LT(terminal.err.size(), 400U) << "drawn too often";
  m_talk.reset();
  EXPECT_TRUE(terminal.err.ends_with("\r\x1b[K"));
}

}  // namespace
}  // namespace tarnel::test
