#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <functional>

namespace tarnel {

/// Opens something with the program that the desktop has for it. In silence if that fails.
using OutsideOpener = std::function<void(const QUrl&)>;

/// A file of the program's documentation, beside the program or where it was installed to.
QUrl DocumentationUrl(const QString& file);

/// The manual at a section; at its front without one. The README where no manual was built.
QUrl ManualUrl(const QString& section = {});

/// F1 opens the manual at the section of the window in which it is pressed. A window's section is called like
/// the window (its object name), a message box's like its question (its id). To be installed on the
/// application; the main window has a command for the key.
class HelpKey : public QObject {
  Q_OBJECT

 public:
  HelpKey(OutsideOpener open, QObject* parent);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  OutsideOpener m_open;
};

}  // namespace tarnel
