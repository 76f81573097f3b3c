#include "formkit/type_icons.h"

#include <QMimeDatabase>

#include "base/files.h"
#include "formkit/icons.h"

namespace tarnel {

namespace {

const QMimeDatabase& MimeTypes() {
  static const QMimeDatabase database;
  return database;
}

QMimeType TypeOfName(const std::string& name) {
  const QList<QMimeType> types = MimeTypes().mimeTypesForFileName(QString::fromStdString(name));
  return types.isEmpty() ? QMimeType() : types.constFirst();
}

const char* OwnIconOf(const QMimeType& type) {
  const QString name = type.name();
  if (name.startsWith(QLatin1String("image/"))) return "file-image";
  if (name.startsWith(QLatin1String("audio/"))) return "file-sound";
  if (name.startsWith(QLatin1String("video/"))) return "file-video";
  if (type.inherits(QStringLiteral("application/x-executable"))) return "file-program";
  if (type.inherits(QStringLiteral("text/plain"))) return "file-text";
  return "file";
}

}  // namespace

std::string TypeTextOf(const std::string& name) {
  const QMimeType type = TypeOfName(name);
  return type.isValid() ? type.comment().toStdString() : std::string();
}

QIcon IconOfName(const std::string& name) {
  const QMimeType type = TypeOfName(name);
  const QIcon own = OwnIcon(OwnIconOf(type));
  return QIcon::fromTheme(type.iconName(), QIcon::fromTheme(type.genericIconName(), own));
}

const QIcon& NameIcons::Of(const std::string& name) const {
  const QByteArray extension = QByteArray::fromStdString(Path(name).extension().native()).toLower();
  const auto known = m_icons.constFind(extension);
  return known != m_icons.constEnd() ? *known : *m_icons.insert(extension, IconOfName(name));
}

std::vector<std::string> MimeTypesOf(const std::string& name) {
  const QMimeType type = TypeOfName(name);
  if (!type.isValid()) return {"application/octet-stream"};
  std::vector<std::string> names = {type.name().toStdString()};
  for (const QString& ancestor : type.allAncestors())
    names.push_back(ancestor.toStdString());
  return names;
}

}  // namespace tarnel
