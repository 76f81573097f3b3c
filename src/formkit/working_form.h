#pragma once

#include <QDialog>
#include <functional>

#include "app/session.h"
#include "base/dialogue.h"

class QPushButton;

namespace tarnel {

/// A form that runs an operation.
///
/// The close box and Escape are a click on the form's cancel button while that is enabled, and refused
/// otherwise. The form can't be left while its operation is on the stack: who closes it then closes it when
/// the operation is over. Whatever way the operation ends, the session is settled, and nothing that it throws
/// leaves the form: it is shown.
class WorkingForm : public QDialog {
  Q_OBJECT

 public:
  WorkingForm(Session& session, Dialogue& dialogue, QWidget* parent);

  /// An operation is on the stack.
  bool Running() const { return m_running > 0; }

  void done(int result) override;
  void reject() override;

 protected:
  /// What the close box and Escape stand for now; null refuses them.
  virtual QPushButton* CancelButton() const = 0;

  /// Runs an operation, one inside another too. The cancel request is withdrawn before the outermost.
  void RunWork(const std::function<void()>& work);

  /// Runs it once, after the form was shown for the first time.
  void StartWhenShown(std::function<void()> work);

  /// Asks whether the running operation is to stop, with the form's own title, and notes a Yes. Nothing while
  /// none runs, or while the question is open already.
  void AskToCancel(const Question& question);

  /// For the screen of the operation, and for flows that stop without a question.
  const bool& CancelFlag() const { return m_isCancelled; }
  void RequestCancel() { m_isCancelled = true; }

  Session& GetSession() const { return m_session; }
  Dialogue& GetDialogue() const { return m_dialogue; }

  void showEvent(QShowEvent* event) override;

 private:
  Session& m_session;
  Dialogue& m_dialogue;
  std::function<void()> m_whenShown;
  std::optional<int> m_resultWhenOver;
  int m_running = 0;
  bool m_isAsking = false;
  bool m_isCancelled = false;
};

}  // namespace tarnel
