#include "cli/terminal_dialogue.h"

#include <array>
#include <map>
#include <vector>

#include "base/destruction_questions.h"
#include "carrier/questions.h"
#include "retrieval/questions.h"

namespace tarnel {

namespace {

constexpr int kMostRetries = 3;

/// Questions that the command itself answers: nobody looks at a hideout after an abort, and an update was
/// asked for, as the trash was with --originals=trash.
const std::map<std::string, Answer> kSettled = {{question_id::kReload, Answer::No},
                                                {question_id::kUpdate, Answer::Yes},
                                                {question_id::kTrash, Answer::Yes}};

/// Entries that are passed over where nobody can be asked, for the others are wanted all the same.
bool ConcernsOneEntry(const Question& question) {
  return question.id == question_id::kDamagedEntry || question.id == question_id::kEntryName;
}

struct Key {
  char key;
  Answer answer;
  const char* word;
};

constexpr std::array kKeys = {Key{'y', Answer::Yes, "yes"},          Key{'n', Answer::No, "no"},
                              Key{'a', Answer::OverwriteAll, "all"}, Key{'a', Answer::Abort, "abort"},
                              Key{'r', Answer::Retry, "retry"},      Key{'i', Answer::Ignore, "ignore"},
                              Key{'c', Answer::Cancel, "cancel"}};

const Key& KeyOf(Answer answer) {
  for (const Key& key : kKeys) {
    if (key.answer == answer) return key;
  }
  return kKeys[1];
}

std::vector<Answer> AnswersOf(Buttons buttons) {
  switch (buttons) {
    case Buttons::YesNo:
      return {Answer::Yes, Answer::No};
    case Buttons::YesNoOverwriteAll:
      return {Answer::Yes, Answer::No, Answer::OverwriteAll};
    case Buttons::RetryCancel:
      return {Answer::Retry, Answer::Cancel};
    case Buttons::AbortRetryIgnore:
      return {Answer::Abort, Answer::Retry, Answer::Ignore};
    case Buttons::Ok:
      break;
  }
  return {Answer::Ok};
}

/// "[y]es, [n]o: " with the preset in capitals.
std::string Prompt(const Question& question) {
  std::string prompt;
  for (const Answer answer : AnswersOf(question.buttons)) {
    std::string word = KeyOf(answer).word;
    const char key = answer == question.preset ? static_cast<char>(word[0] - 'a' + 'A') : word[0];
    prompt += (prompt.empty() ? "[" : ", [") + std::string(1, key) + "]" + word.substr(1);
  }
  return prompt + ": ";
}

std::optional<Answer> AnswerFromLine(const Question& question, const std::string& line) {
  if (line.empty()) return question.preset;
  for (const Answer answer : AnswersOf(question.buttons)) {
    const Key& key = KeyOf(answer);
    const char lower = line[0] >= 'A' && line[0] <= 'Z' ? static_cast<char>(line[0] - 'A' + 'a') : line[0];
    if (line.size() == 1 && lower == key.key) return answer;
    if (line == key.word) return answer;
  }
  return std::nullopt;
}

std::string TextOf(const Question& question) {
  return question.cause ? question.cause->Description() : question.text;
}

bool IsBrokenWalk(const Question& question) {
  return question.id == question_id::kLoadError && question.cause &&
         question.cause->Number() == ErrorNumber::BadRecordNumber;
}

CliFailure FailureOf(const Question& question) {
  if (!question.cause) return CliFailure(ExitCode::Failed, question.text);
  if (question.id.ends_with(".damaged")) return CliFailure(ExitCode::Damaged, *question.cause);
  return CliFailure(*question.cause);
}

}  // namespace

TerminalDialogue::TerminalDialogue(Terminal& terminal, Messages& messages, const GlobalOptions& options)
    : m_terminal(terminal),
      m_messages(messages),
      m_onError(options.onError),
      m_canAsk(!options.noInput && terminal.CanAsk()),
      m_progress(terminal, options.quiet || options.json || !terminal.ErrorIsTerminal()
                               ? ProgressLine::Shown::Never
                               : ProgressLine::Shown::Always) {}

Answer TerminalDialogue::Ask(const Question& question) {
  m_progress.Clear();
  Yield();
  if (question.buttons == Buttons::Ok) return Tell(question);
  if (question.buttons == Buttons::AbortRetryIgnore) return AnswerError(question);
  if (const auto settled = kSettled.find(question.id); settled != kSettled.end()) return settled->second;
  const Answer answer = CanAsk() ? AskPerson(question) : SafeAnswer(question.buttons);
  if (!CanAsk()) SayAnswer(question, answer);
  return answer;
}

Answer TerminalDialogue::Tell(const Question& message) {
  m_messages.Warn(message.text + (message.cause ? "\n" + message.cause->Description() : ""));
  if (message.cause) m_failure = CliFailure(*message.cause);
  return Answer::Ok;
}

Answer TerminalDialogue::AnswerError(const Question& question) {
  const std::string text = TextOf(question);
  if (IsBrokenWalk(question)) return Answer::Ignore;
  if (m_failure && m_aborted == text) return Answer::Abort;
  const std::optional<Answer> ruled = AnswerByRule(question);
  const Answer answer = ruled ? *ruled : AskPerson(question);
  if (ruled && answer != Answer::Abort) SayAnswer(question, answer);
  const bool isIgnoredWalk = answer == Answer::Ignore && question.id == question_id::kLoadError;
  if (answer == Answer::Abort) m_aborted = text;
  if (answer == Answer::Abort || isIgnoredWalk) m_failure = FailureOf(question);
  return answer;
}

std::optional<Answer> TerminalDialogue::AnswerByRule(const Question& question) {
  if (!m_onError && CanAsk()) return std::nullopt;
  if (!m_onError) return ConcernsOneEntry(question) && !m_isCancelled ? Answer::Ignore : Answer::Abort;
  if (*m_onError == OnError::Ignore) return Answer::Ignore;
  if (*m_onError == OnError::Abort || m_isCancelled) return Answer::Abort;
  const std::string text = TextOf(question);
  m_retries = text == m_retried ? m_retries + 1 : 1;
  m_retried = text;
  return m_retries <= kMostRetries ? Answer::Retry : Answer::Abort;
}

Answer TerminalDialogue::AskPerson(const Question& question) {
  std::string prompt = m_messages.Shown(TextOf(question)) + "\n" + Prompt(question);
  for (;;) {
    const std::optional<std::string> line = m_terminal.ReadLine(prompt);
    Yield();
    if (!line) return SafeAnswer(question.buttons);
    if (const std::optional<Answer> answer = AnswerFromLine(question, *line)) return *answer;
    prompt = Prompt(question);
  }
}

void TerminalDialogue::SayAnswer(const Question& question, Answer answer) {
  m_messages.Answered(TextOf(question), KeyOf(answer).word);
}

CliFailure TerminalDialogue::LastFailure() const {
  const CliFailure failure = m_failure.value_or(CliFailure(ExitCode::Failed, "the run was aborted"));
  return m_isCancelled ? CliFailure(ExitCode::Cancelled, failure.what()) : failure;
}

}  // namespace tarnel
