#include "cli/messages.h"

#include "base/printable.h"
#include "cli/json_output.h"

namespace tarnel {

namespace {

constexpr const char* kRed = "\x1b[31m";
constexpr const char* kYellow = "\x1b[33m";
constexpr const char* kPlain = "\x1b[0m";

bool BeginsPath(const std::string& text, std::size_t at) {
  return at == 0 || std::string_view(" \n\"(").find(text[at - 1]) != std::string_view::npos;
}

/// What an operation puts beside a carrier counts as its name's end.
bool EndsName(const std::string& text, std::size_t at) {
  const std::string_view rest = std::string_view(text).substr(at);
  return rest.empty() || std::string_view(" \n\"):;,/").find(rest.front()) != std::string_view::npos ||
         rest.starts_with(".bak") || rest.starts_with(".tmp") || rest.starts_with(".old");
}

}  // namespace

void Messages::ShowAs(const Path& full, std::string given) {
  if (given.empty() || given.front() == '/') return;
  while (given.size() > 1 && given.ends_with('/'))
    given.pop_back();
  m_names.emplace_back(Printable(full.native()), Printable(given));
}

std::string Messages::Shown(std::string_view text) const {
  std::string shown = PrintableLines(text);
  for (const auto& [full, given] : m_names) {
    for (std::size_t at = shown.find(full); at != std::string::npos; at = shown.find(full, at)) {
      const bool isWhole = BeginsPath(shown, at) && EndsName(shown, at + full.size());
      if (isWhole) shown.replace(at, full.size(), given);
      at += isWhole ? given.size() : full.size();
    }
  }
  return shown;
}

void Messages::Answered(std::string_view question, const char* answer) {
  if (m_form == MessageForm::Text) {
    Say("warning", kYellow, std::string(question) + "\nanswered with " + answer);
    return;
  }
  Json object = JsonObject();
  object["question"]["message"] = Shown(question);
  object["question"]["answer"] = answer;
  m_terminal.WriteError(JsonLine(object));
}

void Messages::Fail(const CliFailure& failure) {
  if (m_form == MessageForm::Text) {
    Say("error", kRed, failure.what());
  } else {
    m_terminal.WriteError(JsonLine(JsonOfFailure(failure, Shown(failure.what()))));
  }
}

void Messages::Warn(std::string_view text) {
  Say("warning", kYellow, text);
}

void Messages::Note(std::string_view text) {
  if (m_volume == Volume::Quiet) return;
  if (m_form == MessageForm::JsonLines) {
    Say("note", "", text);
  } else {
    m_terminal.WriteError(Shown(text) + "\n");
  }
}

void Messages::Say(const char* kind, const char* colour, std::string_view text) {
  const std::string shown = Shown(text);
  if (m_form == MessageForm::JsonLines) {
    m_terminal.WriteError(JsonLine(JsonOfMessage(kind, shown)));
    return;
  }
  const std::string label = std::string(kind) + ":";
  m_terminal.WriteError((m_colour == Colour::On ? colour + label + kPlain : label) + " " + shown + "\n");
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
