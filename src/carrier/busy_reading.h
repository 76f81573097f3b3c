#pragma once

#include "carrier/reading.h"

namespace tarnel {

/// While it lives, reading counts as running: a cancel sets AbortReadingFlag, and nothing else starts to
/// read. Clears ReadingBusy and TreeClickBlocked on every way out, or at End.
class BusyReading {
 public:
  explicit BusyReading(ReadingGuards& guards) : m_guards(guards) { m_guards.ReadingBusy = true; }
  BusyReading(const BusyReading&) = delete;
  BusyReading& operator=(const BusyReading&) = delete;
  ~BusyReading() { End(); }

  void End() {
    m_guards.ReadingBusy = false;
    m_guards.TreeClickBlocked = false;
  }

 private:
  ReadingGuards& m_guards;
};

}  // namespace tarnel
