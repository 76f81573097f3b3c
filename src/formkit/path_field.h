#pragma once

#include <QLineEdit>

#include "base/files.h"

namespace tarnel {

/// A line for a path. One that was put in comes out byte for byte as long as its text stands, also where the
/// text can't show all bytes.
class PathField : public QLineEdit {
  Q_OBJECT

 public:
  using QLineEdit::QLineEdit;

  void SetPath(const Path& path);
  Path EnteredPath() const;

 private:
  Path m_path;
  QString m_textOfPath;
};

}  // namespace tarnel
