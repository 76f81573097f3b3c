#include "formkit/strength_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <algorithm>
#include <cmath>

#include "crypto/phrase_strength.h"
#include "crypto/phrase_words.h"
#include "formkit/guarded.h"
#include "formkit/layouts.h"
#include "formkit/password_field.h"
#include "formkit/text.h"

namespace tarnel {

namespace {

constexpr int kBitsOfAFullBar = 80;

QString Capital(std::string_view word) {
  QString text = Translated(std::string(word).c_str());
  text[0] = text[0].toUpper();
  return text;
}

}  // namespace

StrengthBar::StrengthBar(PasswordField& field, Dialogue& dialogue, QWidget* parent)
    : QWidget(parent), m_field(field), m_dialogue(dialogue) {
  m_bar = Named(new QProgressBar, "StrengthBar");
  m_bar->setRange(0, kBitsOfAFullBar);
  m_bar->setTextVisible(false);
  m_bar->setFixedHeight(std::max(4, fontMetrics().height() / 3));
  m_bar->setAccessibleName(tr("Strength of the password"));
  m_word = Named(new QLabel, "StrengthWord");
  m_word->setMinimumWidth(fontMetrics().horizontalAdvance(Capital(WordOf(Strength::Strong))) +
                          fontMetrics().averageCharWidth());
  auto* const propose = Named(new QPushButton(tr("Random &words")), "Cmd_Propose");
  propose->setToolTip(tr("Puts six random words into the field and shows them"));
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_bar, 1);
  layout->addWidget(m_word);
  layout->addWidget(propose);
  m_weighing.setSingleShot(true);
  connect(&m_weighing, &QTimer::timeout, this, &StrengthBar::Weigh);
  // The field has its new characters when its line edit is done with the key.
  connect(&field, &QLineEdit::textChanged, &m_weighing, [this] { m_weighing.start(0); });
  connect(&field, &QLineEdit::textEdited, this, &StrengthBar::HideProposal);
  connect(propose, &QPushButton::clicked, this, [this] { Guarded(m_dialogue, [this] { Propose(); }); });
  Weigh();
}

void StrengthBar::Weigh() {
  const PhraseStrength strength = StrengthOf(m_field.Password());
  m_bar->setValue(std::min(kBitsOfAFullBar, static_cast<int>(std::lround(strength.bits))));
  const QString word = m_field.IsEmpty() ? QString() : Capital(WordOf(strength.grade));
  m_word->setText(word);
  m_field.setAccessibleDescription(word.isEmpty() ? QString() : tr("Strength: %1").arg(word));
}

/// The field grows to what it shows, for nobody can keep what can't be read, and its window with it.
void StrengthBar::Propose() {
  const Secret phrase = RandomPhrase(kUsualPhraseWords);
  m_field.SetPassword(phrase);
  m_field.SetShown(true);
  m_isProposal = true;
  const int characters = static_cast<int>(phrase.View().size()) + 2;
  const int wanted = m_field.fontMetrics().horizontalAdvance(QLatin1Char('x')) * characters;
  const int missing = wanted - m_field.width();
  if (missing > 0) window()->resize(window()->width() + missing, window()->height());
  m_field.setMinimumWidth(std::max(m_field.minimumWidth(), wanted));
  m_field.setFocus();
}

void StrengthBar::HideProposal() {
  if (!m_isProposal) return;
  m_isProposal = false;
  m_field.SetShown(false);
}

}  // namespace tarnel
