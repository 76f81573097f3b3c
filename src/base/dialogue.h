#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/error.h"

namespace tarnel {

enum class Answer { Ok, Yes, No, Cancel, Retry, Abort, Ignore, OverwriteAll };
enum class Buttons { Ok, YesNo, RetryCancel, AbortRetryIgnore, YesNoOverwriteAll };
enum class Icon { None, Information, Question, Critical };

/// A message box as a value. The texts are final; whoever shows it adds nothing.
struct Question {
  std::string id;  ///< stable name such as "hide.no-space", for tests and scripts
  std::string title;
  std::string text;
  Buttons buttons = Buttons::Ok;
  Icon icon = Icon::None;
  Answer preset = Answer::Ok;
  std::optional<Error> cause = std::nullopt;  ///< set where the question reports an error
  std::vector<std::string> list = {};         ///< what the text is about, such as paths; printable
};

/// The answer that changes and destroys nothing: No, Cancel, Abort, or Ok where there is no choice.
Answer SafeAnswer(Buttons buttons);

/// All that an operation may ask of the person in front of it.
class Dialogue {
 public:
  virtual ~Dialogue() = default;

  /// Shows the question and waits for the answer, which is one of its buttons.
  virtual Answer Ask(const Question& question) = 0;

  /// Lets waiting events run. Beside Ask this is the only place where they do, so state may have changed
  /// after it.
  virtual void Yield() = 0;

  /// True once the person has asked the running operation to stop. Doesn't change but in Yield or Ask.
  virtual bool CancelRequested() const = 0;
};

}  // namespace tarnel
