#include "base/attempt.h"

namespace tarnel {

Question ErrorQuestion(const Error& error, const char* id, const char* title, LineBreak lineBreak,
                       Answer preset) {
  return {.id = id,
          .title = title,
          .text = "Error: " + std::to_string(static_cast<int>(error.Number())) +
                  (lineBreak == LineBreak::CrLf ? "\r\n" : "\n\r") + error.Description(),
          .buttons = Buttons::AbortRetryIgnore,
          .icon = Icon::Critical,
          .preset = preset,
          .cause = error};
}

}  // namespace tarnel
