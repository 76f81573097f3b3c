#pragma once

#include <QPushButton>
#include <QWidget>

#include "app/step_by_step.h"

namespace tarnel {

/// A picture of one of our windows, in the colours of the palette: light or dark. As large as its place
/// allows, but no larger than the window itself was.
class GuidePicture : public QWidget {
  Q_OBJECT

 public:
  /// `name` is that of the file, without suffix.
  explicit GuidePicture(const char* name, QWidget* parent = nullptr);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void Load();

  QString m_name;
  QPixmap m_whole;
  QPixmap m_fitted;  ///< for the device pixels of the last painting
};

/// The link to the other guide: white, or yellow when lit, on a ground of its own that either can be read on.
class GuideLink : public QPushButton {
  Q_OBJECT

 public:
  using QPushButton::QPushButton;
  QSize sizeHint() const override;
  void SetLit(bool isLit);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  bool m_isLit = false;
};

/// The ground of the guide's title and links.
inline constexpr QColor kGuideGround = QColor(29, 62, 108);

/// A page with its lines and its picture. Its accessible name is all that its lines say.
QWidget* MakeGuidePage(const GuidePage& page);

}  // namespace tarnel
