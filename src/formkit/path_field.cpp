#include "formkit/path_field.h"

#include "formkit/text.h"

namespace tarnel {

void PathField::SetPath(const Path& path) {
  m_path = path;
  setText(QString::fromStdString(path.native()));
  m_textOfPath = text();
}

Path PathField::EnteredPath() const {
  return text() == m_textOfPath ? m_path : PathOf(text());
}

}  // namespace tarnel
