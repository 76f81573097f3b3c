#include "cli/questions.h"

#include <utility>

namespace tarnel {

namespace {

Question YesOrNo(const char* id, std::string text) {
  return {.id = id,
          .title = "Tarnel",
          .text = std::move(text),
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = Answer::No};
}

}  // namespace

Question NewHideoutQuestion() {
  return YesOrNo("cli.new", "No hideout opens with this password. Do you want to make a new one?");
}

Question DestroyOriginalsQuestion(std::size_t count) {
  return YesOrNo("cli.destroy",
                 "Once hidden and read back, " +
                     (count == 1 ? "the original" : "all " + std::to_string(count) + " originals") +
                     " will be overwritten and deleted. Do you want that?");
}

Question RecoverQuestion(const std::string& plan) {
  return YesOrNo("cli.recover", plan + " Do you want that?");
}

}  // namespace tarnel
