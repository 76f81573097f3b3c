#include "formkit/icons.h"

/// A library's pictures are there only once they are asked for, and not from inside a namespace.
static int LoadPictures() {
  Q_INIT_RESOURCE(icons);
  return 1;
}

namespace tarnel {

QIcon OwnIcon(const char* name) {
  [[maybe_unused]] static const int loaded = LoadPictures();
  const QString picture = QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name));
  QIcon icon(picture);
  icon.addFile(picture, {}, QIcon::Selected);  // else the style tints it until it fades into the selection
  return icon;
}

}  // namespace tarnel
