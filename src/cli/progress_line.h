#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "cli/terminal.h"

namespace tarnel {

/// One line on standard error that says how far a run is, how fast, and how long it will still take. Drawn
/// ten times a second at most, and only if standard error is a terminal and nobody asked for quiet.
class ProgressLine {
 public:
  enum class Shown { Always, Never };
  ProgressLine(Terminal& terminal, Shown shown) : m_terminal(terminal), m_shown(shown) {}
  ~ProgressLine() { Clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// What is being done, such as "Hiding letter.txt". Another label begins a new measurement.
  void SetLabel(std::string label);
  /// Draws the label at once, however soon after the last drawing, for work that can't say how far it is.
  void ShowStage();
  /// `done` of `total` bytes. A smaller `done` than before begins a new measurement; how fast and how long
  /// count from its first call on, and are shown where they mean something.
  void Show(std::int64_t done, std::int64_t total);
  /// The same for work of which nobody knows how much there is.
  void ShowText(std::string_view text);
  /// Takes the line away.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;
  bool IsTimeToDraw();
  std::string Text(std::int64_t done, std::int64_t total) const;

  Terminal& m_terminal;
  Shown m_shown;
  std::string m_label;
  bool m_isDrawn = false;
  std::int64_t m_lastDone = -1;
  std::int64_t m_firstDone = 0;  ///< of this measurement
  Clock::time_point m_began;
  Clock::time_point m_drawn;
};

}  // namespace tarnel
