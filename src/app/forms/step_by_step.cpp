#include "app/forms/step_by_step.h"

#include <QAccessible>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "app/forms/guide_parts.h"
#include "formkit/animation.h"
#include "formkit/layouts.h"
#include "formkit/text.h"

namespace tarnel {

namespace {

QLabel* MakeTitle() {
  auto* const title = Named(new QLabel, "Titel");
  QFont font = title->font();
  font.setPointSizeF(font.pointSizeF() * 1.5);
  font.setBold(true);
  title->setFont(font);
  title->setMargin(title->fontMetrics().height() / 2);
  title->setAutoFillBackground(true);
  QPalette palette = title->palette();
  palette.setColor(QPalette::Window, kGuideGround);
  palette.setColor(QPalette::WindowText, Qt::white);
  title->setPalette(palette);
  return title;
}

QPushButton* MakeArrow(const QString& spoken) {
  auto* const arrow = new QPushButton;
  arrow->setAccessibleName(spoken);
  KeepPlaceWhenHidden(*arrow);
  return arrow;
}

/// Red on what is light, and a red that can be read on what is dark.
QColor Lit(const QPalette& palette) {
  return palette.color(QPalette::Button).lightness() < 128 ? QColor(255, 120, 120) : QColor(Qt::red);
}

}  // namespace

StepbyStep::StepbyStep(Session& session, QWidget* parent) : QDialog(parent), m_session(session) {
  setObjectName(QStringLiteral("StepbyStep"));
  setWindowTitle(tr(" Quick Start - Tarnel 7.0 Help"));
  setAttribute(Qt::WA_DeleteOnClose);
  m_title = MakeTitle();
  m_pages = new QStackedWidget;
  for (const GuidePage& page : StepbyStepGuide::Pages())
    m_pages->addWidget(MakeGuidePage(page));
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(m_title);
  layout->addWidget(m_pages, 1);
  layout->addWidget(MakeFoot());
  findChild<QPushButton*>(QStringLiteral("Cmd_Ok"))->setDefault(true);  // now that it belongs to the window
  resize(QSize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 30).expandedTo(sizeHint()));
  connect(new QShortcut(Qt::Key_Right, this), &QShortcut::activated, this, [this] {
    if (m_guide.Forward().kind == GuideControl::Kind::Arrow) Turn(&m_guide.Forward());
  });
  connect(new QShortcut(Qt::Key_Left, this), &QShortcut::activated, this, [this] { Turn(m_guide.Back()); });
  m_arrBlink.setInterval(StepbyStepGuide::kArrBlink);
  connect(&m_arrBlink, &QTimer::timeout, this, [this] {
    m_guide.Tick();
    if (!m_guide.IsBlinking()) m_arrBlink.stop();
    ShowBlink();
  });
  ShowPage();
  m_forward->setFocus();
}

QWidget* StepbyStep::MakeFoot() {
  m_back = MakeArrow(tr("Previous page"));
  m_forward = MakeArrow(tr("Next page"));
  m_link = new GuideLink;
  m_number = Named(new QLabel, "Number");
  m_notAgain = Named(new QCheckBox(tr("Don't show this window again.")), "Check1");
  auto* const ok = Named(new QPushButton(tr("OK")), "Cmd_Ok");
  connect(m_back, &QPushButton::clicked, this, [this] { Turn(m_guide.Back()); });
  for (const QPushButton* const way : {m_forward, m_link})
    connect(way, &QPushButton::clicked, this, [this] { Turn(&m_guide.Forward()); });
  connect(ok, &QPushButton::clicked, this, &StepbyStep::PressOk);

  auto* const foot = new QWidget;
  auto* const arrows = new QHBoxLayout;
  arrows->addWidget(m_back);
  arrows->addStretch();
  arrows->addWidget(m_number);
  arrows->addStretch();
  arrows->addWidget(m_forward);
  arrows->addWidget(m_link);
  auto* const end = new QHBoxLayout;
  end->addWidget(m_notAgain);
  end->addStretch();
  end->addWidget(ok);
  auto* const layout = new QVBoxLayout(foot);
  layout->setContentsMargins({});
  layout->addLayout(arrows);
  layout->addLayout(end);
  return foot;
}

void StepbyStep::ShowAgain() {
  m_notAgain->setChecked(false);
  show();
  raise();
  activateWindow();
}

void StepbyStep::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  WhenAnimationIsUnwanted(*this, [this] {
    m_mayBlink = false;
    StartBlinking();
  });
  StartBlinking();
}

void StepbyStep::Turn(const GuideControl* control) {
  if (control == nullptr) return;
  const bool hadFocus = m_back->hasFocus() || m_forward->hasFocus() || m_link->hasFocus();
  m_guide.Follow(*control);
  ShowPage();
  KeepFocus(hadFocus);
  StartBlinking();
}

void StepbyStep::ShowPage() {
  m_title->setText(Translated(m_guide.Title()));
  m_pages->setCurrentIndex(static_cast<int>(m_guide.Page()));
  m_number->setText(
      tr("Page %1 of %2").arg(m_guide.Number()).arg(static_cast<int>(StepbyStepGuide::kPagesOfAGuide)));
  const GuideControl& forward = m_guide.Forward();
  const bool isLink = forward.kind == GuideControl::Kind::Link;
  ShowControl(*m_back, m_guide.Back());
  ShowControl(*m_forward, isLink ? nullptr : &forward);
  ShowControl(*m_link, isLink ? &forward : nullptr);
  // What a screen reader says of the page, wherever the focus is.
  for (QWidget* const way : {m_back, m_forward, m_link})
    way->setAccessibleDescription(m_pages->currentWidget()->accessibleName());
}

void StepbyStep::ShowControl(QPushButton& button, const GuideControl* control) {
  button.setVisible(control != nullptr);
  if (control == nullptr) return;
  button.setObjectName(QLatin1String(control->name));
  button.setText(Translated(control->caption));
}

/// A button that goes with its page leaves the focus to the one that stands for it now.
void StepbyStep::KeepFocus(bool hadFocus) {
  if (!hadFocus || m_back->hasFocus() || m_forward->hasFocus() || m_link->hasFocus()) return;
  (m_forward->isHidden() ? m_link : m_forward)->setFocus();
}

void StepbyStep::StartBlinking() {
  m_mayBlink ? m_arrBlink.start() : m_arrBlink.stop();
  ShowBlink();
}

void StepbyStep::ShowBlink() {
  const bool isLit = m_mayBlink && m_guide.IsForwardLit();
  QPalette palette = m_back->palette();
  if (isLit) palette.setColor(QPalette::ButtonText, Lit(palette));
  m_forward->setPalette(palette);
  static_cast<GuideLink*>(m_link)->SetLit(isLit);
}

void StepbyStep::PressOk() {
  if (m_notAgain->isChecked()) m_session.Remember(section::kGuide, "Show", "No");
  close();
}

}  // namespace tarnel
