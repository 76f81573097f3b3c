#include "formkit/dialogue_in_windows.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <vector>

#include "formkit/layouts.h"
#include "formkit/text.h"

namespace tarnel {

namespace {

constexpr const char* kAnswerProperty = "answer";

struct AnswerButton {
  Answer answer;
  QMessageBox::StandardButton button;
};

std::vector<AnswerButton> ButtonsOf(Buttons buttons) {
  switch (buttons) {
    case Buttons::Ok:
      return {{Answer::Ok, QMessageBox::Ok}};
    case Buttons::YesNo:
      return {{Answer::Yes, QMessageBox::Yes}, {Answer::No, QMessageBox::No}};
    case Buttons::RetryCancel:
      return {{Answer::Retry, QMessageBox::Retry}, {Answer::Cancel, QMessageBox::Cancel}};
    case Buttons::AbortRetryIgnore:
      return {{Answer::Abort, QMessageBox::Abort},
              {Answer::Retry, QMessageBox::Retry},
              {Answer::Ignore, QMessageBox::Ignore}};
    case Buttons::YesNoOverwriteAll:
      return {{Answer::Yes, QMessageBox::Yes},
              {Answer::No, QMessageBox::No},
              {Answer::OverwriteAll, QMessageBox::YesToAll}};
  }
  return {};
}

QMessageBox::Icon IconOf(Icon icon) {
  switch (icon) {
    case Icon::None:
      return QMessageBox::NoIcon;
    case Icon::Information:
      return QMessageBox::Information;
    case Icon::Question:
      return QMessageBox::Question;
    case Icon::Critical:
      return QMessageBox::Critical;
  }
  return QMessageBox::NoIcon;
}

}  // namespace

void FillBox(QMessageBox& box, const Question& question) {
  box.setObjectName(QString::fromStdString(question.id));
  box.setWindowTitle(BoxText(question.title));
  box.setTextFormat(Qt::PlainText);
  box.setText(BoxText(question.text));
  box.setIcon(IconOf(question.icon));
  for (const AnswerButton& each : ButtonsOf(question.buttons)) {
    QPushButton* const button = box.addButton(each.button);
    button->setProperty(kAnswerProperty, static_cast<int>(each.answer));
    if (each.answer == Answer::OverwriteAll) button->setText(Translated("Overwrite All"));
    if (each.answer == question.preset) box.setDefaultButton(button);
    if (each.answer == SafeAnswer(question.buttons)) box.setEscapeButton(button);
  }
}

/// A list that scrolls, and can be copied.
void ShowListIn(QMessageBox& box, const Question& question) {
  QString text;
  for (const std::string& line : question.list)
    text += QString::fromStdString(line) + QLatin1Char('\n');
  auto* const list = Named(new QPlainTextEdit(text.trimmed(), &box), "List");
  list->setReadOnly(true);
  list->setTabChangesFocus(true);
  list->setAccessibleName(BoxText(question.text));
  list->setMinimumSize(list->fontMetrics().averageCharWidth() * 60, list->fontMetrics().lineSpacing() * 8);
  auto* const grid = qobject_cast<QGridLayout*>(box.layout());
  grid->addWidget(list, grid->rowCount(), 0, 1, grid->columnCount());
  // The buttons stand below the list.
  if (auto* const buttons = box.findChild<QDialogButtonBox*>()) {
    grid->removeWidget(buttons);
    grid->addWidget(buttons, grid->rowCount(), 0, 1, grid->columnCount());
  }
}

Answer AnswerOf(const QMessageBox& box, const Question& question) {
  if (box.clickedButton() == nullptr) return SafeAnswer(question.buttons);
  return static_cast<Answer>(box.clickedButton()->property(kAnswerProperty).toInt());
}

Answer DialogueInWindows::Ask(const Question& question) {
  QWidget* const active = QApplication::activeWindow();
  QMessageBox box(active != nullptr ? active : QApplication::activeModalWidget());
  FillBox(box, question);
  if (!question.list.empty()) ShowListIn(box, question);
  box.exec();
  m_sinceEvents.restart();
  return AnswerOf(box, question);
}

void DialogueInWindows::Yield() {
  if (m_sinceEvents.isValid() && m_sinceEvents.elapsed() < 10) return;
  QCoreApplication::processEvents();
  m_sinceEvents.restart();
}

}  // namespace tarnel
