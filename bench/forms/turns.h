#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <algorithm>

namespace tarnel::bench {

/// The longest time between two turns of the event loop, seen by a timer of the window.
class Turns {
 public:
  Turns() {
    m_last.start();
    QObject::connect(&m_timer, &QTimer::timeout, [this] {
      m_longest = std::max(m_longest, static_cast<double>(m_last.nsecsElapsed()) / 1e6);
      m_last.restart();
    });
    m_timer.start(1);
  }
  double Longest() const { return m_longest; }

 private:
  QTimer m_timer;
  QElapsedTimer m_last;
  double m_longest = 0;
};

}  // namespace tarnel::bench
