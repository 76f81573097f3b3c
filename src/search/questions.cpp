#include "search/questions.h"

#include "base/printable.h"

namespace tarnel {

Question SearchWithoutPassword() {
  return {.id = "search.no-password",
          .title = "Tarnel",
          .text = "Please enter a password!",
          .buttons = Buttons::Ok,
          .icon = Icon::Critical,
          .preset = Answer::Ok};
}

Question NotSearchedMessage(const std::vector<NotSearched>& places) {
  Question question{.id = "search.not-searched",
                    .title = "Tarnel",
                    .text = "These folders and files could not be read, so they were not searched:",
                    .icon = Icon::Information};
  for (const NotSearched& place : places)
    question.list.push_back(Printable(place.reason));
  return question;
}

}  // namespace tarnel
