#include "app/questions.h"

#include <string>

#include "base/attempt.h"
#include "base/printable.h"

namespace tarnel {

namespace {

constexpr const char* kTitle = "Tarnel";

Question Message(const char* id, const char* text, Icon icon) {
  return {.id = id, .title = kTitle, .text = text, .icon = icon};
}

}  // namespace

Question AlreadyRunningMessage() {
  return Message("main.already-running", "Tarnel is already running! Please close Tarnel and try again.",
                 Icon::Information);
}

Question OverwriteCopyQuestion() {
  return {.id = "main.save-as",
          .title = kTitle,
          .text = "File exists already. Overwrite?",
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = Answer::Yes};
}

Question FaultMessage(const Error& error) {
  return {.id = "main.fault",
          .title = kTitle,
          .text = "Error: " + std::to_string(static_cast<int>(error.Number())) + "\r\n" + error.Description(),
          .icon = Icon::Critical,
          .cause = error};
}

Question LockMessage(LockInput input) {
  if (input == LockInput::Empty) return Message("lock.empty", "Please enter a password!", Icon::Critical);
  return Message("lock.wrong", "Invalid password! Please, try again.", Icon::Critical);
}

Question ProtectionPasswordMessage() {
  return Message("config.no-password",
                 "Please enter a password for protection or disable the password protection!",
                 Icon::Critical);
}

Question CarrierErrorQuestion(const Error& error) {
  return ErrorQuestion(error, "carrier.error", kTitle, LineBreak::CrLf, Answer::Retry);
}

Question CarrierChangedQuestion(const Path& carrier) {
  return {.id = "carrier.changed",
          .title = kTitle,
          .text = Printable(carrier.filename().native()) +
                  " has changed since it was opened: another program has worked on it. It has to be read "
                  "again first.\r\n\r\nDo you want to read it again?",
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = Answer::Yes};
}

Question CarrierEmptiedMessage(const Path& carrier) {
  return {
      .id = "carrier.emptied",
      .title = kTitle,
      .text = Printable(carrier.filename().native()) +
              " holds nothing that the password of its hideout opens any more. The program that changed it "
              "has removed the hidden files or put another file in its place; a copy of the carrier file "
              "from before may still hold them.",
      .buttons = Buttons::Ok,
      .icon = Icon::Critical};
}

Error NewCarrierFault() {
  return {ErrorNumber::ObjectNotSet, "cannot create a new carrier file: no form is set for it"};
}

}  // namespace tarnel
