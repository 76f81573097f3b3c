#pragma once

#include <functional>
#include <optional>
#include <utility>

#include "base/dialogue.h"
#include "base/error.h"

namespace tarnel {

/// Thrown through an operation by what ends it early, and caught by its Run().
enum class StopReason { Cancelled, Aborted, NoSpace, TooLarge };
struct Stop {
  StopReason reason;
};

/// How one operation words its errors.
struct ErrorHandler {
  /// Makes the question from the error; its buttons are Abort, Retry and Ignore.
  std::function<Question(const Error&)> question;
};

enum class Outcome { Done, Ignored };

/// Runs `statement`. On an Error the person is asked: Retry runs the statement again from its start, Ignore
/// returns Outcome::Ignored, Abort throws Stop(Aborted). A statement must be restartable: it positions
/// itself, and assigns its results last. Whatever else it throws passes through.
template <class Statement>
Outcome Attempt(Dialogue& dialogue, const ErrorHandler& handler, Statement&& statement) {
  for (;;) {
    std::optional<Error> failure;
    try {
      statement();
    } catch (const Error& error) {
      failure = error;
    }
    if (!failure) return Outcome::Done;
    const Answer answer = dialogue.Ask(handler.question(*failure));
    if (answer == Answer::Ignore) return Outcome::Ignored;
    if (answer != Answer::Retry) throw Stop{StopReason::Aborted};
  }
}

enum class LineBreak { CrLf, LfCr };

/// The box of an operation's handler: "Error: ", the number, a line break and the description, critical icon,
/// Abort, Retry and Ignore. Line break order, title and preset button are the operation's own.
Question ErrorQuestion(const Error& error, const char* id, const char* title, LineBreak lineBreak,
                       Answer preset);

}  // namespace tarnel
