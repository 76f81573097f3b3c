#include "cli/command_table.h"
#include "cli/exit_codes.h"
#include "cli/shared_files.h"

namespace tarnel {

namespace {

/// Text as the formatter takes it: nothing in it is a command.
std::string Roff(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else if (c == '\'') {
      escaped += "\\(aq";
    } else {
      escaped += c;
    }
  }
  return escaped.starts_with('.') ? "\\&" + escaped : escaped;
}

std::string Paragraphs(const std::string& text, const std::string& more) {
  const bool isOpen = !text.ends_with('.');
  return Roff(text) + (isOpen ? ".\n" : "\n") + (more.empty() ? "" : Roff(more) + "\n");
}

std::string OptionText(const OptionRow& option) {
  std::string head = ".TP\n";
  if (option.letter != 0) head += "\\fB\\-" + std::string(1, option.letter) + "\\fR, ";
  head += "\\fB" + Roff(option.name) + "\\fR";
  if (!option.value.empty()) {
    head += option.standIn.empty() ? " \\fI" + option.value + "\\fR" : "[=\\fI" + option.value + "\\fR]";
  }
  std::string words;
  if (option.value == "NAME" && !option.words.empty()) {
    for (const std::string& word : option.words)
      words += (words.empty() ? "One of " : ", ") + word;
    words += ". ";
  }
  return head + "\n" + Paragraphs(option.brief, words + option.more);
}

std::string VerbText(const VerbRow& verb) {
  std::string text = ".TP\n.B " + verb.name + "\n" + Paragraphs(verb.text, verb.more);
  const auto own = OptionsOf(verb.name);
  if (own.empty()) return text;
  text += ".RS\n";
  for (const OptionRow* option : own)
    text += OptionText(*option);
  return text + ".RE\n";
}

std::string Synopsis() {
  std::string text;
  for (const VerbRow& verb : VerbTable()) {
    text += ".SY tarnel-cli\n.B " + verb.name + "\n";
    if (!verb.operands.empty()) text += ".I \"" + Roff(Usage(verb).substr(verb.name.size() + 1)) + "\"\n";
    text += ".RI [ OPTION ]...\n.YS\n";
  }
  return text;
}

std::string ExitCodes() {
  std::string text;
  for (const ExitCodeRow& row : ExitCodeTable())
    text += std::to_string(static_cast<int>(row.code)) + "\t" + Roff(row.meaning) + "\n";
  return text;
}

void Replace(std::string& page, const std::string& mark, const std::string& text) {
  const std::size_t at = page.find(mark + "\n");
  if (at != std::string::npos) page.replace(at, mark.size() + 1, text);
}

}  // namespace

std::string ManualPage(const std::string& page) {
  std::string verbs;
  for (const VerbRow& verb : VerbTable())
    verbs += VerbText(verb);
  std::string options;
  for (const OptionRow* option : CommonOptions())
    options += OptionText(*option);
  std::string made = page;
  Replace(made, "@SYNOPSIS@", Synopsis());
  Replace(made, "@VERBS@", verbs);
  Replace(made, "@OPTIONS@", options);
  Replace(made, "@EXIT_CODES@", ExitCodes());
  return made;
}

}  // namespace tarnel
