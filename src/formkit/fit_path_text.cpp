#include "formkit/fit_path_text.h"

#include <QFontMetrics>

namespace tarnel {

namespace {

constexpr int kTwipsPerPixel = 15;

/// Head, ellipsis and as many parts from the end as fit; without a head if even the shortest is too wide.
QString WithoutMiddle(const QStringList& parts, const QString& separator, const QString& ellipsis,
                      const std::function<bool(const QString&)>& fits) {
  const QString last = separator + parts.last();
  for (const qsizetype headParts : {2, 1}) {
    const QString head = parts.first(headParts).join(separator) + separator;
    if (!fits(head + ellipsis + last)) continue;
    QString tail = last;
    for (qsizetype i = parts.size() - 2; i >= headParts; --i) {
      const QString longer = separator + parts[i] + tail;
      if (!fits(head + ellipsis + longer)) break;
      tail = longer;
    }
    return head + ellipsis + tail;
  }
  return ellipsis + last;
}

}  // namespace

QString FitPathText(QString text, int maxWidth, const QString& ellipsis,
                    const std::function<int(const QString&)>& widthOf) {
  if (maxWidth < 200) return {};
  const auto fits = [&](const QString& tried) { return widthOf(tried) <= maxWidth - 400; };
  if (fits(text)) return text;
  QString separator = QStringLiteral("\\");
  if (!text.contains(separator)) {
    separator = QStringLiteral("/");
    if (!text.contains(separator)) return text;
    if (text.contains(QLatin1Char(':'))) text = text.section(QLatin1Char('?'), 0, 0);
  }
  if (text.endsWith(separator)) text.chop(1);
  const QStringList parts = text.split(separator);
  return parts.size() < 2 ? text : WithoutMiddle(parts, separator, ellipsis, fits);
}

PathLabel::PathLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setTextInteractionFlags(Qt::TextSelectableByMouse);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void PathLabel::SetPath(const QString& path, const QString& behind) {
  m_path = path;
  m_behind = behind;
  setToolTip(path.toHtmlEscaped());
  setAccessibleDescription(path);
  Fit();
}

QSize PathLabel::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * 12, QLabel::minimumSizeHint().height()};
}

void PathLabel::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  Fit();
}

void PathLabel::Fit() {
  const QFontMetrics metrics = fontMetrics();
  const auto widthOf = [&metrics](const QString& text) {
    return metrics.horizontalAdvance(text) * kTwipsPerPixel;
  };
  setText(FitPathText(m_path, width() * kTwipsPerPixel - widthOf(m_behind), QStringLiteral("..."), widthOf) +
          m_behind);
}

}  // namespace tarnel
