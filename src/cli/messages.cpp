#include "cli/messages.h"

#include "base/printable.h"
#include "cli/json_output.h"

namespace tarnel {

namespace {

constexpr const char* kRed = "\x1b[31m";
constexpr const char* kYellow = "\x1b[33m";
constexpr const char* kPlain = "\x1b[0m";

}  // namespace

void Messages::Fail(const CliFailure& failure) {
  if (m_form == MessageForm::Text) {
    Say("error", kRed, failure.what());
  } else {
    m_terminal.WriteError(JsonLine(JsonOfFailure(failure)));
  }
}

void Messages::Warn(std::string_view text) {
  Say("warning", kYellow, text);
}

void Messages::Note(std::string_view text) {
  if (m_volume == Volume::Quiet) return;
  if (m_form == MessageForm::JsonLines) {
    m_terminal.WriteError(JsonLine(JsonOfMessage("note", text)));
  } else {
    m_terminal.WriteError(PrintableLines(text) + "\n");
  }
}

void Messages::Say(const char* kind, const char* colour, std::string_view text) {
  if (m_form == MessageForm::JsonLines) {
    m_terminal.WriteError(JsonLine(JsonOfMessage(kind, text)));
    return;
  }
  const std::string label = std::string(kind) + ":";
  m_terminal.WriteError((m_colour == Colour::On ? colour + label + kPlain : label) + " " +
                        PrintableLines(text) + "\n");
}

std::string PrintableLines(std::string_view text) {
  std::string lines;
  std::string line;
  for (const char c : text) {
    if (c == '\r') continue;
    if (c != '\n') {
      line += c;
      continue;
    }
    lines += Printable(line) + "\n";
    line.clear();
  }
  return lines + Printable(line);
}

}  // namespace tarnel
