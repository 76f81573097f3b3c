#pragma once

#include <utility>

#include "formkit/dialogue_in_windows.h"
#include "shellint/places.h"

namespace tarnel::bench {

/// Yields as the program does; nobody answers.
class Nobody : public DialogueInWindows {
 public:
  Answer Ask(const Question& question) override { return SafeAnswer(question.buttons); }
};

/// A machine whose one folder to begin at is the desktop.
class OnePlace : public Places {
 public:
  explicit OnePlace(Path folder) : m_folder(std::move(folder)) {}
  Path Desktop() override { return m_folder; }
  Path Documents() override { return {}; }
  DriveSurvey Drives() override { return {}; }
  int DrivesHandle() const override { return -1; }

 private:
  Path m_folder;
};

}  // namespace tarnel::bench
