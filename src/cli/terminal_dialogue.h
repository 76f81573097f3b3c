#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "base/dialogue.h"
#include "cli/messages.h"
#include "cli/options.h"
#include "cli/progress_line.h"
#include "cli/terminal.h"

namespace tarnel {

/// The person at a terminal, or nobody. Questions go to the terminal; without one, or with --no-input, the
/// safe answer is taken and said. --on-error answers what offers Abort, Retry and Ignore. An error that was
/// answered with Abort once gets the same answer when it comes again. A walk that breaks off at an entry that
/// can't be has ended, so that what was read can be used; what is wrong there is told by whoever reads.
class TerminalDialogue {
 public:
  TerminalDialogue(Terminal& terminal, Messages& messages, const GlobalOptions& options);

  Answer Ask(const Question& question);
  void Yield() { m_isCancelled = m_terminal.CancelRequested(); }
  bool CancelRequested() const { return m_isCancelled; }

  /// False where no terminal is, where nobody wants to be asked, and behind a cancel.
  bool CanAsk() const { return m_canAsk && !m_isCancelled; }
  /// Whether there was an error as LastFailure gives it.
  bool HasFailed() const { return m_failure.has_value(); }
  /// The error behind the last answer Abort, the last ignored error of a walk or the last message of an
  /// error, as the failure of the whole run. Cancelled if the person asked for that.
  CliFailure LastFailure() const;
  ProgressLine& Progress() { return m_progress; }

 private:
  Answer Tell(const Question& message);
  Answer AnswerError(const Question& question);
  std::optional<Answer> AnswerByRule(const Question& question);
  Answer AskPerson(const Question& question);
  void SayAnswer(const Question& question, Answer answer);

  Terminal& m_terminal;
  Messages& m_messages;
  std::optional<OnError> m_onError;
  bool m_canAsk;
  bool m_isCancelled = false;
  ProgressLine m_progress;
  std::string m_retried;  ///< text of the error that was retried last
  int m_retries = 0;
  std::string m_aborted;  ///< text of the error that was answered with Abort last
  std::optional<CliFailure> m_failure;
};

/// Any screen port, with its dialogue part led to a TerminalDialogue.
template <class Screen>
class OnTerminal : public Screen {
 public:
  explicit OnTerminal(TerminalDialogue& talk) : m_talk(talk) {}

  Answer Ask(const Question& question) override { return m_talk.Ask(question); }
  void Yield() override { m_talk.Yield(); }
  bool CancelRequested() const override { return m_talk.CancelRequested(); }

 protected:
  TerminalDialogue& Talk() const { return m_talk; }

 private:
  TerminalDialogue& m_talk;
};

}  // namespace tarnel
