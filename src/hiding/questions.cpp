#include "hiding/questions.h"

#include <string>

#include "base/attempt.h"
#include "base/printable.h"

namespace tarnel {

namespace {

constexpr const char* title = "Tarnel";

}  // namespace

Question HideErrorQuestion(const Error& error) {
  return ErrorQuestion(error, "hide.error", title, LineBreak::LfCr, Answer::Retry);
}

Question NoSpaceQuestion(const Path& drive, Length required) {
  return {.id = "hide.no-space",
          .title = title,
          .text = "Not enough free space on the drive: (" + Printable(drive.native()) +
                  ") to hide the data. Required: " + std::to_string(required) + " bytes of free space!",
          .buttons = Buttons::RetryCancel,
          .icon = Icon::Critical,
          .preset = Answer::Retry};
}

Question TooLargeQuestion(const Path& carrier) {
  return {.id = "hide.too-large",
          .title = title,
          .text = "Nothing was hidden: " + Printable(carrier.filename().native()) +
                  " would reach 2 GiB, and a carrier file must stay below that. Please hide fewer or smaller "
                  "files, compress them, or choose another carrier file.",
          .buttons = Buttons::Ok,
          .icon = Icon::Information};
}

Question TrashFailedQuestion() {
  return {.id = "hide.trash-failed",
          .title = title,
          .text = "Deletion failed. Please move the original files to recycle bin.",
          .buttons = Buttons::Ok,
          .icon = Icon::Critical};
}

Question CancelHideQuestion() {
  return {.id = "hide.cancel",
          .title = "Tarnel [Hiding...]",
          .text = "Do you really want to cancel this procedure?",
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = Answer::No};
}

Question DeleteOriginalsQuestion() {
  return {.id = "hide.delete-originals",
          .title = title,
          .text = "Do you really want to delete original files, with no chance for undelete?",
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = Answer::No};
}

Question NoFilesQuestion() {
  return {.id = "hide.no-files",
          .title = title,
          .text = "There are no files to hide!",
          .buttons = Buttons::Ok,
          .icon = Icon::Information};
}

Question NothingSpecifiedQuestion() {
  return {.id = "hide.nothing-specified",
          .title = title,
          .text = "Please specify files or folders you want to hide!",
          .buttons = Buttons::Ok,
          .icon = Icon::Information};
}

Question BadNameQuestion() {
  return {.id = "hide.bad-name",
          .title = title,
          .text = "Invalid file name. File names may not contain the\r\nfollowing characters: " +
                  std::string(kRefusedInNames),
          .buttons = Buttons::Ok,
          .icon = Icon::Critical};
}

}  // namespace tarnel
