#pragma once

#include <QString>
#include <string>
#include <string_view>

#include "base/files.h"

namespace tarnel {

/// Stored text for the eye. Never turned back.
QString ShownText(std::string_view stored);

/// A path of the platform for the eye: control characters escaped, what is no UTF-8 marked. Never turned
/// back.
QString ShownPath(const Path& path);

/// What the user typed or chose, as the platform's bytes.
Path PathOf(const QString& typed);

/// A text of a table, in the language of the user.
QString Translated(const char* text);

/// A text of a question: the same, with line breaks as windows draw them.
QString BoxText(const std::string& text);

}  // namespace tarnel
