#pragma once

#include <QDialog>

#include "base/dialogue.h"
#include "base/files.h"
#include "carrier/catalogue.h"

class QGridLayout;
class QHBoxLayout;
class QPushButton;

namespace tarnel {

/// The question whether an existing file is to be replaced, with both files beside each other. Escape and the
/// frame mean No.
class FrmOverwrite : public QDialog {
  Q_OBJECT

 public:
  /// `question` is questions::Overwrite.
  FrmOverwrite(const Question& question, const FileStat& existing, const MirrorRow& hidden, QWidget* parent);

  /// Shows it and waits for the person.
  Answer Ask();

 private:
  QWidget* MakeMessage(const Question& question);
  QGridLayout* MakeComparison(const FileStat& existing, const MirrorRow& hidden);
  QHBoxLayout* MakeButtons();
  QPushButton* AnswerButton(const QString& caption, const char* name, Answer answer);

  QPushButton* m_no = nullptr;
  Answer m_answer = Answer::No;
};

}  // namespace tarnel
