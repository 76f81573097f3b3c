#include "formkit/dropped_path.h"

#include <QMimeData>

namespace tarnel {

Path FirstDroppedPath(const QMimeData& data) {
  for (const QByteArray& line : data.data(QStringLiteral("text/uri-list")).split('\n')) {
    const QByteArray uri = line.trimmed();
    if (uri.isEmpty() || uri.startsWith('#')) continue;
    if (!uri.startsWith("file://")) return {};
    const qsizetype path = uri.indexOf('/', 7);
    if (path < 0) return {};
    return Path(QByteArray::fromPercentEncoding(uri.mid(path)).toStdString());
  }
  return {};
}

}  // namespace tarnel
