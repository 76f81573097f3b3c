#include "cli/help_pages.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace tarnel {

namespace {

constexpr std::size_t kNarrow = 60;

/// `text` in lines of `width`, each behind `indent` blanks, the first of which stand there already.
std::string Wrapped(const std::string& text, std::size_t indent, std::size_t width) {
  std::istringstream words(text);
  std::string lines;
  std::string word;
  std::size_t column = indent;
  while (words >> word) {
    const bool isFirst = column == indent;
    if (!isFirst && column + 1 + word.size() > width) {
      lines += "\n" + std::string(indent, ' ');
      column = indent;
    } else if (!isFirst) {
      lines += ' ';
      ++column;
    }
    lines += word;
    column += word.size();
  }
  return lines + "\n";
}

using Row = std::pair<std::string, std::string>;

/// Names in a column and what they mean beside it; below it where the lines are short.
std::string Columns(const std::vector<Row>& rows, std::size_t width) {
  std::size_t widest = 0;
  for (const Row& row : rows)
    widest = std::max(widest, row.first.size());
  std::string text;
  for (const auto& [name, meaning] : rows) {
    const bool isNarrow = width < kNarrow;
    const std::size_t indent = isNarrow ? 8 : widest + 4;
    text += "  " + name +
            (isNarrow ? "\n" + std::string(indent, ' ') : std::string(indent - 2 - name.size(), ' '));
    text += Wrapped(meaning, indent, width);
  }
  return text;
}

std::vector<Row> RowsOf(const std::vector<const OptionRow*>& options) {
  std::vector<Row> rows;
  rows.reserve(options.size());
  for (const OptionRow* option : options)
    rows.emplace_back(Spelled(*option), option->brief);
  return rows;
}

std::string Examples(const std::string& lines) {
  std::istringstream stream(lines);
  std::string text;
  for (std::string line; std::getline(stream, line);)
    text += "  tarnel-cli " + line + "\n";
  return "\nExamples:\n" + text;
}

std::string OperandHelp(const VerbRow& verb, std::size_t width) {
  std::vector<Row> rows;
  for (const std::string& operand : verb.operands) {
    if (operand.find("ENTRY") == std::string::npos) continue;
    rows.emplace_back(
        "ENTRY",
        "A path as list shows it, a folder for all below it, a pattern with *, ? or [ ], or #12 for "
        "the entry of that number" +
            std::string(operand.front() == '[' && verb.name != "delete" ? "; all if none is named" : ""));
  }
  return rows.empty() ? "" : "\n" + Columns(rows, width);
}

}  // namespace

std::string ProgramHelp(std::size_t width) {
  std::vector<Row> verbs;
  for (const VerbRow& verb : VerbTable())
    verbs.emplace_back(verb.name, verb.brief);
  verbs.emplace_back("help", "show the options of a verb: tarnel-cli help VERB");
  return "Usage: tarnel-cli VERB [OPTION]...\n\n" +
         Wrapped(
             "Hides files behind the bytes of any carrier file and brings them back. The carrier stays what "
             "it "
             "is: a picture is shown, a program runs.",
             0, width) +
         "\nVerbs:\n" + Columns(verbs, width) + "\nOptions of all verbs:\n" +
         Columns(RowsOf(CommonOptions()), width) + "\n" +
         Wrapped(
             "A password is never an argument. It comes from --password-file, --password-fd, the file that "
             "TARNEL_PASSWORD_FILE names, or a prompt. Exit codes stand in the manual: man tarnel-cli.",
             0, width) +
         Examples(
             "hide holiday.jpg letters/ contract.pdf\nlist holiday.jpg\nextract holiday.jpg --to restored");
}

std::string VerbHelp(const VerbRow& verb, std::size_t width) {
  const std::vector<const OptionRow*> own = OptionsOf(verb.name);
  std::string text = "Usage: tarnel-cli " + Usage(verb) + " [OPTION]...\n\n" + Wrapped(verb.text, 0, width);
  text += OperandHelp(verb, width);
  if (!own.empty()) text += "\nOptions:\n" + Columns(RowsOf(own), width);
  return text + "\nOptions of all verbs:\n" + Columns(RowsOf(CommonOptions()), width) +
         Examples(verb.examples);
}

}  // namespace tarnel
