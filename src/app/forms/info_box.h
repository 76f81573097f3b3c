#pragma once

#include <QDialog>
#include <functional>

class QUrl;

namespace tarnel {

/// Opens something with the program that the desktop has for it. In silence if that fails.
using OutsideOpener = std::function<void(const QUrl&)>;

/// The about box.
class Info : public QDialog {
  Q_OBJECT

 public:
  Info(const OutsideOpener& open, QWidget* parent);
};

/// A file of the program's documentation, beside the program or where it was installed to.
QUrl DocumentationUrl(const QString& file);

}  // namespace tarnel
