#pragma once

#include <QTimer>
#include <QWidget>

#include "base/dialogue.h"

class QLabel;
class QProgressBar;

namespace tarnel {

class PasswordField;

/// Stands below the field for a new password and says how hard that is to guess: a thin bar and one word,
/// which screen readers are told as the field's description. Refuses nothing. Its button puts random words
/// into the field and shows them until another key is typed there.
class StrengthBar : public QWidget {
  Q_OBJECT

 public:
  /// Both must live as long.
  StrengthBar(PasswordField& field, Dialogue& dialogue, QWidget* parent = nullptr);

 private:
  void Weigh();
  void Propose();
  void HideProposal();

  PasswordField& m_field;
  Dialogue& m_dialogue;
  QProgressBar* m_bar;
  QLabel* m_word;
  QTimer m_weighing;
  bool m_isProposal = false;
};

}  // namespace tarnel
