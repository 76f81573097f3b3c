#include "formkit/animation.h"

#include <QApplication>
#include <QProcess>
#include <QStyle>
#include <QWidget>

namespace tarnel {

void WhenAnimationIsUnwanted(QWidget& widget, const std::function<void()>& calm) {
  const bool isUnwanted =
      widget.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &widget) <= 0 ||
      QApplication::cursorFlashTime() <= 0;
  if (isUnwanted) return calm();
  // The desktops of the GNOME family keep the wish where the toolkit doesn't look.
  auto* const desktop = new QProcess(&widget);
  QObject::connect(desktop, &QProcess::finished, &widget, [desktop, calm] {
    if (desktop->readAllStandardOutput().trimmed() == "false") calm();
    desktop->deleteLater();
  });
  QObject::connect(desktop, &QProcess::errorOccurred, desktop, &QObject::deleteLater);
  desktop->start(QStringLiteral("gsettings"),
                 {QStringLiteral("get"), QStringLiteral("org.gnome.desktop.interface"),
                  QStringLiteral("enable-animations")});
}

}  // namespace tarnel
