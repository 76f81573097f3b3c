#include "search/questions.h"

namespace tarnel {

Question SearchWithoutPassword() {
  return {.id = "search.no-password",
          .title = "Tarnel",
          .text = "Please enter a password!",
          .buttons = Buttons::Ok,
          .icon = Icon::Critical,
          .preset = Answer::Ok};
}

}  // namespace tarnel
