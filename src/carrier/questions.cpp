#include "carrier/questions.h"

#include <algorithm>

#include "base/attempt.h"
#include "carrier/leftovers.h"
#include "carrier/stored_text.h"

namespace tarnel {

namespace {

constexpr const char* kTitle = "Tarnel";

Question Refusal(const char* id, const char* text) {
  return {.id = id, .title = kTitle, .text = text, .icon = Icon::Critical};
}

}  // namespace

Question LoadErrorQuestion(const Error& error) {
  return ErrorQuestion(error, question_id::kLoadError, kTitle, LineBreak::CrLf, Answer::Abort);
}

Question ProbeErrorQuestion(const Error& error) {
  return ErrorQuestion(error, "probe.error", kTitle, LineBreak::CrLf, Answer::Abort);
}

Question ReloadQuestion() {
  return {.id = question_id::kReload,
          .title = kTitle,
          .text = "This carrier file is opened already! Do you want to reload it?",
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = Answer::No};
}

Question VersionMessage(std::string_view version) {
  return {.id = "load.version",
          .title = kTitle,
          .text = "This carrier file was created with version: " + ToDisplay(version) +
                  ". This format is not compatible with current version.",
          .icon = Icon::Information};
}

Question DamageMessage(const ChainFaults& faults) {
  constexpr std::size_t mostShown = 10;
  std::string text = "Something is wrong with this carrier file:";
  std::vector<std::string> sentences = SentencesOf(faults);
  const std::size_t shown = std::min(mostShown, sentences.size());
  for (std::size_t i = 0; i < shown; ++i)
    text += "\r\n- " + sentences[i] + ".";
  if (shown < sentences.size()) text += "\r\n- " + std::to_string(sentences.size() - shown) + " more.";
  return {.id = "load.damage", .title = kTitle, .text = text, .icon = Icon::Critical};
}

Question NoPasswordMessage() {
  return Refusal("open.no-password", "Please enter the password!");
}

Question AccessDeniedQuestion() {
  return {.id = "open.denied",
          .title = kTitle,
          .text =
              "Access Denied! Possible Reasons:\r\n\r\n"
              "- The password you entered is not valid\r\n"
              "- The current hideout doesn't contain any hidden files\r\n"
              "- Carrier file is damaged\r\n"
              "- Uncompatible carrier file format\r\n\r\n"
              "Do you want to create a new hideout?",
          .buttons = Buttons::YesNo,
          .icon = Icon::Critical,
          .preset = Answer::No};
}

Question NewHideoutMessage(NewHideoutFault fault) {
  switch (fault) {
    case NewHideoutFault::NoPassword:
      return Refusal("create.no-password", "Please enter a password!");
    case NewHideoutFault::NoTitle:
      return Refusal("create.no-title", "Please enter a hideout name!");
    case NewHideoutFault::ConfirmationDiffers:
      return Refusal("create.confirmation",
                     "The password confirmation is incorrect! Please check your password.");
    case NewHideoutFault::CarrierMissing:
      break;
  }
  return Refusal("create.no-carrier", "Carrier file is not existing! Please select a new carrier file.");
}

Question LeftoversQuestion(const std::vector<Path>& leftovers) {
  std::string text;
  for (const Path& path : leftovers)
    text += LeftoverAdvice(path) + ".\r\n\r\n";
  return {.id = "carrier.leftovers",
          .title = kTitle,
          .text = text + "To go on may replace it for good. Do you want to go on?",
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = Answer::No};
}

}  // namespace tarnel
