#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/files.h"
#include "cli/exit_codes.h"
#include "cli/terminal.h"

namespace tarnel {

enum class MessageForm { Text, JsonLines };
enum class Volume { Normal, Quiet };
enum class Colour { Off, On };

/// What goes to standard error beside progress. As JsonLines every message is one object on a line.
class Messages {
 public:
  Messages(Terminal& terminal, MessageForm form, Volume volume, Colour colour)
      : m_terminal(terminal), m_form(form), m_volume(volume), m_colour(colour) {}

  /// From now on the path, what is below it and what lies beside it under its name with a suffix is shown as
  /// the person has named it. Nothing is done for a name that is absolute itself.
  void ShowAs(const Path& full, std::string given);
  /// `text` with such paths replaced, its line ends as "\n", and each line printable.
  std::string Shown(std::string_view text) const;

  /// A question that was answered without asking anybody.
  void Answered(std::string_view question, const char* answer);
  /// Never hidden.
  void Fail(const CliFailure& failure);
  void Warn(std::string_view text);
  /// Word of success and the like; hidden when quiet.
  void Note(std::string_view text);

 private:
  void Say(const char* kind, const char* colour, std::string_view text);

  Terminal& m_terminal;
  MessageForm m_form;
  Volume m_volume;
  Colour m_colour;
  std::vector<std::pair<std::string, std::string>> m_names;  ///< printable: full path, as it is shown
};

/// `text` with its line ends, of whatever kind, as "\n", and each line printable.
std::string PrintableLines(std::string_view text);

}  // namespace tarnel
