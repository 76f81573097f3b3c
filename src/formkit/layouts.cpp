#include "formkit/layouts.h"

#include <QLayout>
#include <QSizePolicy>
#include <algorithm>

namespace tarnel {

void AddRow(QFormLayout& form, const QString& label, QWidget* control) {
  form.addRow(label, control);
  QString name = label;
  control->setAccessibleName(name.remove(QLatin1Char('&')).remove(QLatin1Char(':')));
}

QLabel* Explanation(const QString& text) {
  auto* const label = new QLabel(text);
  label->setWordWrap(true);
  label->setTextFormat(Qt::PlainText);
  return label;
}

QLabel* Hint(const QString& text) {
  QLabel* const label = Explanation(text);
  label->setForegroundRole(QPalette::PlaceholderText);
  return label;
}

QLabel* HintOf(QWidget* control, const QString& text) {
  control->setAccessibleDescription((control->accessibleDescription() + QLatin1Char(' ') + text).trimmed());
  return Hint(text);
}

void FitPages(QTabWidget& tabs) {
  for (int i = 0; i < tabs.count(); ++i) {
    QWidget& page = *tabs.widget(i);
    page.setMinimumHeight(
        std::max(page.layout()->totalHeightForWidth(page.sizeHint().width()), page.sizeHint().height()));
  }
}

void KeepPlaceWhenHidden(QWidget& widget) {
  QSizePolicy policy = widget.sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  widget.setSizePolicy(policy);
}

}  // namespace tarnel
