#pragma once

#include <QDialog>

#include "base/files.h"

namespace tarnel {

/// What is known of one file or folder: name, place, kind, size, times and permissions.
class FileProperties : public QDialog {
  Q_OBJECT

 public:
  /// Throws Error if nothing stands there.
  FileProperties(const Path& path, Files& files, QWidget* parent);
};

}  // namespace tarnel
