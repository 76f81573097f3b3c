#pragma once

#include <cstddef>
#include <string_view>

#include "base/secret.h"
#include "cli/terminal.h"

namespace tarnel {

/// Gathers lines for standard output, which hundreds of thousands come to, and writes them in pieces, the
/// last at its end.
class LineWriter {
 public:
  explicit LineWriter(Terminal& terminal) : m_terminal(terminal) {}
  ~LineWriter() { m_terminal.Write(m_lines); }
  LineWriter(const LineWriter&) = delete;
  LineWriter& operator=(const LineWriter&) = delete;

  void Write(std::string_view line) {
    m_lines += line;
    if (m_lines.size() < kPiece) return;
    m_terminal.Write(m_lines);
    m_lines.clear();
  }

 private:
  static constexpr std::size_t kPiece = std::size_t{64} * 1024;

  Terminal& m_terminal;
  WipedText m_lines;
};

}  // namespace tarnel
