#include "formkit/text.h"

#include <QCoreApplication>

#include "base/printable.h"
#include "carrier/stored_text.h"

namespace tarnel {

QString ShownText(std::string_view stored) {
  return QString::fromStdString(Printable(ToDisplay(stored)));
}

QString ShownPath(const Path& path) {
  return QString::fromStdString(Printable(path.native()));
}

Path PathOf(const QString& typed) {
  return Path(typed.toStdString());
}

QString Translated(const char* text) {
  return QCoreApplication::translate("tarnel", text);
}

QString BoxText(const std::string& text) {
  QString shown = Translated(text.c_str());
  shown.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  shown.replace(QLatin1String("\n\r"), QLatin1String("\n"));
  return shown;
}

}  // namespace tarnel
