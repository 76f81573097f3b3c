#pragma once

#include <QFrame>
#include <QStatusBar>
#include <QTimer>

class QLabel;

namespace tarnel {

/// A field of the status bar with an optional picture in front of its text.
class StatusPanel : public QFrame {
  Q_OBJECT

 public:
  StatusPanel(const char* name, const QString& accessibleName, QWidget* parent);

  void SetText(const QString& text);
  QString Text() const;
  /// Null for no picture.
  void SetPicture(const char* icon);
  bool HasPicture() const;

 signals:
  void DoubleClicked();

 protected:
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  QString m_accessibleName;
  QLabel* m_picture;
  QLabel* m_text;
};

/// The status bar with its panels in order.
class StatusPanels : public QStatusBar {
  Q_OBJECT

 public:
  explicit StatusPanels(QWidget* parent = nullptr);

  StatusPanel* info;
  StatusPanel* files;
  StatusPanel* algorithm;
  StatusPanel* carrierFile;  ///< shows nothing; the place is kept
  StatusPanel* lock;
  StatusPanel* time;

  void ShowInfo(bool isOn);
  void ShowLock(bool isLocked);

 private:
  void ShowTime();

  QTimer m_clock;
};

}  // namespace tarnel
