#include "base/destruction_questions.h"

#include <string>

#include "base/attempt.h"
#include "base/printable.h"

namespace tarnel {

namespace {

Question CannotDestroy(const Error& error, const char* id) {
  return ErrorQuestion(error, id, "Tarnel", LineBreak::LfCr, Answer::Abort);
}

}  // namespace

Question OverwriteError(const Error& error) {
  return CannotDestroy(error, "destroy.error");
}

Question RemoveError(const Error& error) {
  return CannotDestroy(error, "remove.error");
}

Question TrashError(const Error& error) {
  return CannotDestroy(error, "trash.error");
}

Question ConfirmTrash(const std::vector<Path>& paths) {
  const std::string what = paths.size() == 1 ? "\"" + Printable(paths[0].filename().native()) + "\""
                                             : "these " + std::to_string(paths.size()) + " items";
  return {.id = question_id::kTrash,
          .title = "Tarnel",
          .text = "Are you sure you want to move " + what + " to the trash?",
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = Answer::Yes};
}

}  // namespace tarnel
