#include "app/forms/guide_parts.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QVBoxLayout>

#include "formkit/icons.h"
#include "formkit/layouts.h"
#include "formkit/text.h"

/// A library's pictures are there only once they are asked for, and not from inside a namespace.
static int LoadGuide() {
  Q_INIT_RESOURCE(guide);
  return 1;
}

namespace tarnel {

namespace {

/// The pictures were taken at 200 %.
constexpr double kPictureScale = 2;

/// "Open carrier file..." is the "Open" button.
QString ButtonName(const Command& command) {
  return QLatin1Char('"') + Translated(command.key) + QLatin1Char('"');
}

/// A text with the picture of a button in its gap.
QWidget* LineWithButton(const QString& text, const Command& command) {
  const qsizetype gap = text.indexOf(QLatin1String("  "));
  const QString before = text.left(gap), after = text.mid(gap).trimmed();
  auto* const line = new QWidget;
  auto* const row = new QHBoxLayout(line);
  row->setContentsMargins({});
  auto* const button = new QLabel;
  const int side = button->fontMetrics().height() * 3 / 2;
  button->setPixmap(OwnIcon(command.icon).pixmap(QSize(side, side), button->devicePixelRatioF()));
  button->setToolTip(Translated(command.toolTip));
  button->setAccessibleName(ButtonName(command));
  QLabel* const rest = Explanation(after);
  row->addWidget(new QLabel(before));
  row->addWidget(button);
  row->addWidget(rest, 1);
  return line;
}

QWidget* Line(const GuideLine& line) {
  const QString text = Translated(line.text);
  return line.button ? LineWithButton(text, CommandOf(*line.button)) : Explanation(text.trimmed());
}

QString Spoken(const GuideLine& line) {
  QString text = Translated(line.text).simplified();
  if (!line.button) return text;
  return text.replace(QLatin1String("toolbar button"),
                      ButtonName(CommandOf(*line.button)) + QLatin1String(" toolbar button"));
}

}  // namespace

GuidePicture::GuidePicture(const char* name, QWidget* parent) : QWidget(parent), m_name(QLatin1String(name)) {
  [[maybe_unused]] static const int loaded = LoadGuide();
  Load();
  setMinimumSize(fontMetrics().averageCharWidth() * 20, fontMetrics().height() * 6);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize GuidePicture::sizeHint() const {
  return {fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 20};
}

void GuidePicture::Load() {
  const bool isDark = palette().color(QPalette::Window).lightness() < 128;
  m_whole = QPixmap(QStringLiteral(":/guide/") + m_name +
                    (isDark ? QStringLiteral("-dark.png") : QStringLiteral(".png")));
  m_fitted = QPixmap();
}

void GuidePicture::paintEvent(QPaintEvent*) {
  const double device = devicePixelRatioF();
  const QSize most = (QSizeF(m_whole.size()) * (device / kPictureScale)).toSize();
  const QSize room = (QSizeF(size()) * device).toSize();
  const QSize fitting = m_whole.size().scaled(room.boundedTo(most), Qt::KeepAspectRatio);
  if (m_fitted.size() != fitting) {
    m_fitted = m_whole.scaled(fitting, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    m_fitted.setDevicePixelRatio(device);
  }
  const QSizeF drawn = m_fitted.deviceIndependentSize();
  const QPointF corner((width() - drawn.width()) / 2, (height() - drawn.height()) / 2);
  QPainter(this).drawPixmap(corner.toPoint(), m_fitted);
}

void GuidePicture::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) {
    Load();
    update();
  }
  QWidget::changeEvent(event);
}

QSize GuideLink::sizeHint() const {
  return QPushButton::sizeHint() + QSize(fontMetrics().height(), 0);
}

void GuideLink::SetLit(bool isLit) {
  m_isLit = isLit;
  update();
}

void GuideLink::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(isDown() ? kGuideGround.darker(130) : kGuideGround);
  painter.drawRoundedRect(QRectF(rect()), 4, 4);
  painter.setPen(m_isLit ? QColor(Qt::yellow) : QColor(Qt::white));
  painter.drawText(rect(), Qt::AlignCenter, text());
  if (!hasFocus()) return;
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::white, 1, Qt::DotLine));
  painter.drawRoundedRect(QRectF(rect()).adjusted(2.5, 2.5, -2.5, -2.5), 3, 3);
}

QWidget* MakeGuidePage(const GuidePage& page) {
  auto* const frame = Named(new QWidget, page.frame);
  auto* const layout = new QVBoxLayout(frame);
  QString spoken;
  const auto add = [&](const GuideLine& line) {
    layout->addWidget(Line(line));
    spoken += Spoken(line) + QLatin1Char(' ');
  };
  for (const GuideLine& line : page.above)
    add(line);
  layout->addWidget(new GuidePicture(page.picture), 1);
  for (const GuideLine& line : page.below)
    add(line);
  frame->setAccessibleName(spoken.trimmed());
  return frame;
}

}  // namespace tarnel
