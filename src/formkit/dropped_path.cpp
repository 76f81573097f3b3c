#include "formkit/dropped_path.h"

#include <QMimeData>
#include <QSysInfo>

namespace tarnel {

namespace {

bool IsThisMachine(const QString& host) {
  return host.isEmpty() || host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 ||
         host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

}  // namespace

Path FirstDroppedPath(const QMimeData& data) {
  for (const QByteArray& line : data.data(QStringLiteral("text/uri-list")).split('\n')) {
    const QByteArray uri = line.trimmed();
    if (uri.isEmpty() || uri.startsWith('#')) continue;
    if (!uri.startsWith("file://")) return {};
    const qsizetype path = uri.indexOf('/', 7);
    if (path < 0 || !IsThisMachine(QString::fromUtf8(uri.mid(7, path - 7)))) return {};
    return Path(QByteArray::fromPercentEncoding(uri.mid(path)).toStdString());
  }
  return {};
}

}  // namespace tarnel
