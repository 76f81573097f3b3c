#include "cli/progress_line.h"

#include <algorithm>

#include "base/formats.h"
#include "base/printable.h"

namespace tarnel {

namespace {

constexpr std::chrono::milliseconds kPause{100};
constexpr double kShortestMeasurement = 0.5;
constexpr double kLongestForecast = 24.0 * 3600;
constexpr const char* kClearLine = "\r\x1b[K";

/// As many bytes of a printable line as surely fit, cut between characters.
std::string CutToWidth(std::string text, std::size_t width) {
  if (text.size() <= width) return text;
  while (width > 0 && (static_cast<unsigned char>(text[width]) & 0xC0) == 0x80)
    --width;
  text.resize(width);
  return text;
}

}  // namespace

void ProgressLine::SetLabel(std::string label) {
  if (label == m_label) return;
  m_label = std::move(label);
  m_lastDone = -1;
}

void ProgressLine::ShowStage() {
  m_isDrawn = false;
  ShowText(m_label + " ...");
}

void ProgressLine::Show(std::int64_t done, std::int64_t total) {
  if (done < m_lastDone || m_lastDone < 0) {
    m_began = Clock::now();
    m_firstDone = done;
  }
  m_lastDone = done;
  if (IsTimeToDraw()) m_terminal.WriteError(kClearLine + Text(done, total));
}

void ProgressLine::ShowText(std::string_view text) {
  if (IsTimeToDraw()) m_terminal.WriteError(kClearLine + CutToWidth(Printable(text), m_terminal.Width() - 1));
}

bool ProgressLine::IsTimeToDraw() {
  const Clock::time_point now = Clock::now();
  if (m_shown == Shown::Never || (m_isDrawn && now - m_drawn < kPause)) return false;
  m_drawn = now;
  m_isDrawn = true;
  return true;
}

void ProgressLine::Clear() {
  if (m_isDrawn) m_terminal.WriteError(kClearLine);
  m_isDrawn = false;
}

std::string ProgressLine::Text(std::int64_t done, std::int64_t total) const {
  const double seconds = std::chrono::duration<double>(m_drawn - m_began).count();
  const std::int64_t percent = total > 0 ? std::min<std::int64_t>(done * 100 / total, 100) : 100;
  std::string numbers = std::to_string(percent) + " %";
  const std::int64_t measured = done - m_firstDone;
  if (seconds >= kShortestMeasurement && measured > 0) {
    const double left = seconds * static_cast<double>(total - done) / static_cast<double>(measured);
    numbers += "  " + Rate(measured, seconds);
    if (left >= 0 && left < kLongestForecast) numbers += "  " + Duration(left) + " left";
  }
  const std::size_t width = m_terminal.Width() - 1;
  if (numbers.size() + 2 >= width) return CutToWidth(numbers, width);
  return CutToWidth(Printable(m_label), width - numbers.size() - 2) + "  " + numbers;
}

}  // namespace tarnel
