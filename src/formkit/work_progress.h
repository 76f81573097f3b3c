#pragma once

#include <QWidget>
#include <optional>

#include "app/progress_rate.h"

class QLabel;
class QProgressBar;

namespace tarnel {

/// A progress bar for amounts of any size, and under it a line with rate and remaining time that keeps its
/// height. The bar doesn't go back but at Restart.
class WorkProgress : public QWidget {
  Q_OBJECT

 public:
  /// The bar gets `barName` for tests and style sheets, and `caption` for screen readers.
  WorkProgress(const char* barName, const QString& caption, QWidget* parent = nullptr);

  /// Another thing is measured from here on; the line is empty.
  void Restart();

  /// `value` of `maximum` bytes are done.
  void Show(Length value, Length maximum);

  /// The bar alone goes back: another part of the same thing begins.
  void RestartBar();

  /// The bar shows `value` of `maximum`, the line `done` of `total` bytes.
  void ShowPart(Length value, Length maximum, Length done, Length total);

  /// Something that is counted and not measured: the line stays empty.
  void ShowCount(std::size_t number, std::size_t count);

 private:
  void ShowBar(double share);
  void ShowLine(Length value, Length maximum);

  QProgressBar* m_bar;
  QLabel* m_line;
  ProgressRate m_rate;
};

}  // namespace tarnel
