#include "formkit/working_form.h"

#include <QPushButton>
#include <QTimer>
#include <utility>

#include "app/session_screen.h"
#include "formkit/guarded.h"

namespace tarnel {

WorkingForm::WorkingForm(Session& session, Dialogue& dialogue, QWidget* parent)
    : QDialog(parent), m_session(session), m_dialogue(dialogue) {}

void WorkingForm::reject() {
  if (QPushButton* const button = CancelButton()) button->click();
}

void WorkingForm::done(int result) {
  if (Running()) {
    m_resultWhenOver = result;
    return;
  }
  QDialog::done(result);
}

void WorkingForm::RunWork(const std::function<void()>& work) {
  if (!Running()) m_isCancelled = false;
  ++m_running;
  Guarded(m_dialogue, [&] {
    const SettledAtEnd settled(m_session);
    work();
  });
  --m_running;
  if (!Running() && m_resultWhenOver) done(*std::exchange(m_resultWhenOver, std::nullopt));
}

void WorkingForm::StartWhenShown(std::function<void()> work) {
  m_whenShown = std::move(work);
}

void WorkingForm::AskToCancel(const Question& question) {
  if (!Running() || m_isAsking) return;
  m_isAsking = true;
  if (m_dialogue.Ask(question) == Answer::Yes) m_isCancelled = true;
  m_isAsking = false;
}

void WorkingForm::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (!m_whenShown) return;
  QTimer::singleShot(0, this, [this, work = std::exchange(m_whenShown, nullptr)] { RunWork(work); });
}

}  // namespace tarnel
