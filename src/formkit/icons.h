#pragma once

#include <QIcon>

namespace tarnel {

/// A picture of the program's own set by its file name without suffix.
QIcon OwnIcon(const char* name);

}  // namespace tarnel
