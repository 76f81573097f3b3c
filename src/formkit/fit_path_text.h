#pragma once

#include <QLabel>
#include <QString>
#include <functional>

namespace tarnel {

/// `text` as it fits into `maxWidth`: parts of a path are left out in its middle, the first and the last part
/// stay as long as they can. `widthOf` measures; all widths are twips, 15 to a pixel, and 400 of `maxWidth`
/// stay free. Empty below 200. Text without "\" and "/" stays as it is, however long.
QString FitPathText(QString text, int maxWidth, const QString& ellipsis,
                    const std::function<int(const QString&)>& widthOf);

/// A label that fits its path anew whenever its width changes; a text behind it, such as " (12 KB)", stays
/// whole. The whole path is its tool tip.
class PathLabel : public QLabel {
  Q_OBJECT

 public:
  explicit PathLabel(QWidget* parent = nullptr);
  void SetPath(const QString& path, const QString& behind = {});
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void Fit();

  QString m_path;
  QString m_behind;
};

}  // namespace tarnel
