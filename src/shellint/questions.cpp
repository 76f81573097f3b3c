#include "shellint/questions.h"

#include <string>

#include "base/printable.h"

namespace tarnel {

namespace {

Question Message(const char* id, std::string text) {
  return {
      .id = id, .title = "Tarnel", .text = std::move(text), .buttons = Buttons::Ok, .icon = Icon::Critical};
}

}  // namespace

Question NotReadyQuestion(const Path& path) {
  return Message("tree.not-ready", "Folder or drive not ready: " + Printable(path.native()));
}

Question BadDirectoryNameQuestion() {
  return Message("tree.bad-name",
                 "Invalid directory name. Directory names may not contain the\r\nfollowing characters: " +
                     std::string(kRefusedInDirectoryNames));
}

Question TreeErrorQuestion(const Error& error) {
  Question question = Message("tree.error", "Error: " + std::to_string(static_cast<int>(error.Number())) +
                                                "\r\n" + error.Description());
  question.cause = error;
  return question;
}

Question ConfirmDeleteQuestion(const Path& path) {
  return {.id = "tree.confirm-delete",
          .title = "Tarnel",
          .text = "Do you really want to delete the folder " + Printable(path.native()) +
                  " with all it holds? It does not go to the trash.",
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = Answer::No};
}

}  // namespace tarnel
