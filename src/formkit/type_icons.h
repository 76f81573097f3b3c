#pragma once

#include <QByteArray>
#include <QHash>
#include <QIcon>
#include <string>
#include <vector>

namespace tarnel {

/// What a file's name alone tells of its type; no file is looked at. Names are the platform's bytes.

/// For people, such as "PNG image"; empty where the name tells nothing.
std::string TypeTextOf(const std::string& name);

/// The desktop's icon, or one of the program's own.
QIcon IconOfName(const std::string& name);

/// Icons by name, asked of the desktop once for each extension.
class NameIcons {
 public:
  const QIcon& Of(const std::string& name) const;

 private:
  mutable QHash<QByteArray, QIcon> m_icons;
};

/// Such as "text/x-c++src", and behind it what that is a kind of, such as "text/plain".
std::vector<std::string> MimeTypesOf(const std::string& name);

}  // namespace tarnel
