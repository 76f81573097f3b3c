#pragma once

#include <QFormLayout>
#include <QLabel>
#include <QTabWidget>
#include <QWidget>

namespace tarnel {

/// Gives a control its name, by which tests and style sheets find it.
template <class Widget>
Widget* Named(Widget* widget, const char* name) {
  widget->setObjectName(QLatin1String(name));
  return widget;
}

/// A row whose label names the control for screen readers and takes its access key.
void AddRow(QFormLayout& form, const QString& label, QWidget* control);

/// How strong a remark is beside the text around it, in any palette.
inline constexpr double kRemarkOpacity = 0.65;

/// A paragraph that wraps.
QLabel* Explanation(const QString& text);

/// A remark beside a control, less strong than a paragraph.
QLabel* Hint(const QString& text);

/// The same; screen readers say it with the control, behind the remarks that this has already.
QLabel* HintOf(QWidget* control, const QString& text);

/// Makes the pages high enough for texts that wrap, which the tabs don't ask for. To be called once the fonts
/// are known.
void FitPages(QTabWidget& tabs);

/// The window doesn't jump when the widget appears.
void KeepPlaceWhenHidden(QWidget& widget);

}  // namespace tarnel
