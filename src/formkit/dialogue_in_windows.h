#pragma once

#include <QElapsedTimer>

#include "base/dialogue.h"

class QMessageBox;

namespace tarnel {

/// Shows questions as message boxes over the window that is active. Escape and the close box give the answer
/// that changes nothing.
class DialogueInWindows : public Dialogue {
 public:
  Answer Ask(const Question& question) override;

  /// Lets events run, but not more often than every 10 ms: operations yield for each of thousands of entries.
  void Yield() override;

  /// A bare dialogue has nothing to cancel with.
  bool CancelRequested() const override { return false; }

 private:
  QElapsedTimer m_sinceEvents;
};

/// Puts texts, icon, buttons and preset of `question` into `box`.
void FillBox(QMessageBox& box, const Question& question);

/// Puts the question's list below its text.
void ShowListIn(QMessageBox& box, const Question& question);

/// The answer of the button that closed the box.
Answer AnswerOf(const QMessageBox& box, const Question& question);

}  // namespace tarnel
