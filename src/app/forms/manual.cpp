#include "app/forms/manual.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMainWindow>
#include <QWidget>
#include <utility>

namespace tarnel {

namespace {

/// The window that a widget belongs to; for one without a name, such as the list of a combo box, its owner.
const QWidget* NamedWindowOf(const QWidget* widget) {
  while (widget != nullptr && (!widget->isWindow() || widget->objectName().isEmpty()))
    widget = widget->parentWidget();
  return widget;
}

}  // namespace

QUrl DocumentationUrl(const QString& file) {
  const QString program = QCoreApplication::applicationDirPath();
  const QString documents = program + QStringLiteral("/../share/doc/");
  QString found = program + QLatin1Char('/') + file;
  for (const char* const package : {"tarnel-cli/", "tarnel/"}) {
    if (QFileInfo::exists(found)) break;
    found = documents + QLatin1String(package) + file;
  }
  return QUrl::fromLocalFile(QFileInfo(found).absoluteFilePath());
}

QUrl ManualUrl(const QString& section) {
  QUrl url = DocumentationUrl(QStringLiteral("doc/manual/index.html"));
  if (!QFileInfo::exists(url.toLocalFile())) return DocumentationUrl(QStringLiteral("README.md"));
  url.setFragment(section);
  return url;
}

HelpKey::HelpKey(OutsideOpener open, QObject* parent) : QObject(parent), m_open(std::move(open)) {}

bool HelpKey::eventFilter(QObject* watched, QEvent* event) {
  const auto* const widget = qobject_cast<const QWidget*>(watched);
  if (event->type() != QEvent::KeyPress || widget == nullptr) return false;
  if (!static_cast<QKeyEvent*>(event)->matches(QKeySequence::HelpContents)) return false;
  const QWidget* const window = NamedWindowOf(widget);
  if (window == nullptr || qobject_cast<const QMainWindow*>(window) != nullptr) return false;
  m_open(ManualUrl(window->objectName()));
  return true;
}

}  // namespace tarnel
