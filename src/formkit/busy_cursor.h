#pragma once

#include <QGuiApplication>

namespace tarnel {

/// The pointer shows that the program works, as long as this lives.
class BusyCursor {
 public:
  BusyCursor() { QGuiApplication::setOverrideCursor(Qt::BusyCursor); }
  BusyCursor(const BusyCursor&) = delete;
  BusyCursor& operator=(const BusyCursor&) = delete;
  ~BusyCursor() { QGuiApplication::restoreOverrideCursor(); }
};

}  // namespace tarnel
