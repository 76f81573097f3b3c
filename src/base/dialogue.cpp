#include "base/dialogue.h"

namespace tarnel {

Answer SafeAnswer(Buttons buttons) {
  switch (buttons) {
    case Buttons::YesNo:
    case Buttons::YesNoOverwriteAll:
      return Answer::No;
    case Buttons::RetryCancel:
      return Answer::Cancel;
    case Buttons::AbortRetryIgnore:
      return Answer::Abort;
    case Buttons::Ok:
      break;
  }
  return Answer::Ok;
}

}  // namespace tarnel
