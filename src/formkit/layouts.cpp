#include "formkit/layouts.h"

#include <QLayout>
#include <QPainter>
#include <QSizePolicy>
#include <algorithm>

namespace tarnel {

namespace {

/// The colour for placeholders is black on black in palettes that don't set it.
class RemarkLabel : public QLabel {
 public:
  using QLabel::QLabel;

 protected:
  void initPainter(QPainter* painter) const override {
    QLabel::initPainter(painter);
    painter->setOpacity(kRemarkOpacity);
  }
};

void SetParagraph(QLabel& label) {
  label.setWordWrap(true);
  label.setTextFormat(Qt::PlainText);
}

}  // namespace

void AddRow(QFormLayout& form, const QString& label, QWidget* control) {
  form.addRow(label, control);
  QString name = label;
  control->setAccessibleName(name.remove(QLatin1Char('&')).remove(QLatin1Char(':')));
}

QLabel* Explanation(const QString& text) {
  auto* const label = new QLabel(text);
  SetParagraph(*label);
  return label;
}

QLabel* Hint(const QString& text) {
  auto* const label = new RemarkLabel(text);
  SetParagraph(*label);
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
