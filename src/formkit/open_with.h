#pragma once

#include <QDialog>
#include <optional>

#include "app/desktop_applications.h"

class QListWidget;
class QPushButton;

namespace tarnel {

/// Asks which application is to open a file.
class OpenWith : public QDialog {
  Q_OBJECT

 public:
  OpenWith(const Path& file, std::vector<DesktopApplication> applications, QWidget* parent);

  /// Nothing if the person cancelled.
  std::optional<DesktopApplication> Chosen() const;

 private:
  std::vector<DesktopApplication> m_applications;
  QListWidget* m_list;
  QPushButton* m_ok;
};

}  // namespace tarnel
