#include "cli/command_table.h"
#include "cli/shared_files.h"

namespace tarnel {

namespace {

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words)
    text += (text.empty() ? "" : " ") + word;
  return text;
}

std::string VerbNames() {
  std::vector<std::string> names;
  for (const VerbRow& verb : VerbTable())
    names.push_back(verb.name);
  names.emplace_back("help");
  return Joined(names);
}

std::string NamesOf(const std::vector<const OptionRow*>& options) {
  std::vector<std::string> names;
  for (const OptionRow* option : options)
    names.push_back(option->name);
  return Joined(names);
}

/// Inside single quotes of a shell.
std::string Quoted(const std::string& text) {
  std::string quoted;
  for (const char c : text)
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return "'" + quoted + "'";
}

std::string BashFiles(Completion completion) {
  return completion == Completion::Folder ? "compgen -d" : "compgen -f";
}

/// A line of the case over the word before: what may follow each option that takes a value.
std::string BashValues() {
  std::string text;
  std::string seen = " ";
  for (const OptionRow& row : OptionTable()) {
    if (row.value.empty() || !row.standIn.empty() || seen.find(" " + row.name + " ") != std::string::npos)
      continue;
    seen += row.name + " ";
    const std::string letter = row.letter != 0 ? " | -" + std::string(1, row.letter) : "";
    text += "        " + row.name + letter + ") ";
    if (row.completion == Completion::Word) {
      text += "_tarnel_cli_words \"" + Joined(row.words) + "\" \"$cur\"; return ;;\n";
    } else if (row.completion == Completion::Nothing) {
      text += "return ;;\n";
    } else {
      text += "mapfile -t COMPREPLY < <(" + BashFiles(row.completion) + " -- \"$cur\"); return ;;\n";
    }
  }
  return text;
}

std::string BashVerbs() {
  std::string text;
  for (const VerbRow& verb : VerbTable()) {
    text += "        " + verb.name + ") options=" + Quoted(NamesOf(OptionsOf(verb.name))) +
            " first=" + Quoted(BashFiles(verb.first)) +
            " rest=" + Quoted(verb.rest == Completion::Nothing ? "" : BashFiles(verb.rest)) + " ;;\n";
  }
  return text;
}

/// ":FILE:_files" and the like.
std::string ZshAction(const std::string& name, Completion completion, const std::vector<std::string>& words) {
  switch (completion) {
    case Completion::File:
      return ":" + name + ":_files";
    case Completion::Folder:
      return ":" + name + ":_files -/";
    case Completion::Word:
      return ":" + name + ":(" + Joined(words) + ")";
    case Completion::Nothing:
      break;
  }
  return ":" + name + ":";
}

std::string ZshOption(const OptionRow& row) {
  std::string brief;
  for (const char c : row.brief)
    brief += c == '[' || c == ']' || c == ':' ? std::string("\\") + c : std::string(1, c);
  const std::string action = row.value.empty() ? "" : ZshAction(row.value, row.completion, row.words);
  const auto line = [&](const std::string& name, const std::string& sign) {
    const bool isRepeated = row.name == "--exclude" || row.name == "--entry";
    return "    " +
           Quoted((isRepeated ? "*" : "") + name + sign + "[" + brief + "]" +
                  (row.standIn.empty() ? "" : ":") + action) +
           "\n";
  };
  const std::string sign = row.value.empty() ? "" : row.standIn.empty() ? "=" : "=-";
  const std::string letter =
      row.letter == 0 ? "" : line(std::string("-") + row.letter, row.value.empty() ? "" : "+");
  return line(row.name, sign) + letter;
}

std::string ZshVerb(const VerbRow& verb) {
  std::string text = "      " + verb.name + ")\n        own=(\n";
  for (const OptionRow* row : OptionsOf(verb.name))
    text += "    " + ZshOption(*row);
  if (!verb.operands.empty()) {
    text += "          " +
            Quoted("1" + ZshAction(verb.operands.front() == "DIR" ? "folder" : "carrier", verb.first, {}));
    text += "\n          " + Quoted("*" + ZshAction("operand", verb.rest, {})) + "\n";
  }
  return text + "        ) ;;\n";
}

std::string FishOption(const OptionRow& row, const std::string& condition) {
  std::string text = "complete -c tarnel-cli" + condition + " -l " + row.name.substr(2);
  if (row.letter != 0) text += std::string(" -s ") + row.letter;
  if (!row.value.empty() && row.standIn.empty()) {
    if (row.completion == Completion::File) text += " -r -F";
    if (row.completion == Completion::Folder) text += " -x -a '(__fish_complete_directories)'";
    if (row.completion == Completion::Word) text += " -x -a " + Quoted(Joined(row.words));
    if (row.completion == Completion::Nothing) text += " -x";
  }
  return text + " -d " + Quoted(row.brief) + "\n";
}

}  // namespace

std::string BashCompletion() {
  return R"(# bash completion for tarnel-cli

# Words that begin like the given one, in any case of letters.
_tarnel_cli_words()
{
    local word
    for word in $1; do
        if [[ ${word,,} == "${2,,}"* ]]; then COMPREPLY+=("$word"); fi
    done
}

_tarnel_cli()
{
    local common=)" +
         Quoted(NamesOf(CommonOptions())) + R"(
    local verbs=)" +
         Quoted(VerbNames()) + R"(
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}
    local verb='' options='' first='' rest='' word operands=0
    COMPREPLY=()
    # "=" is a word of its own here.
    if [[ $cur == = ]]; then
        cur=
    elif [[ $prev == = ]]; then
        prev=${COMP_WORDS[COMP_CWORD-2]}
    fi
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ -n $verb && $word != -* ]]; then
            operands=$((operands + 1))
        elif [[ " $verbs " == *" $word "* ]]; then
            verb=$word
        fi
    done
    compopt -o filenames 2>/dev/null
    case $prev in
)" + BashValues() +
         R"(    esac
    case $verb in
)" + BashVerbs() +
         R"(    esac
    if [[ $cur == -* ]]; then
        _tarnel_cli_words "$options $common" "$cur"
    elif [[ -z $verb || $verb == help ]]; then
        _tarnel_cli_words "$verbs" "$cur"
    elif [[ $operands -gt 0 ]]; then
        if [[ -n $rest ]]; then mapfile -t COMPREPLY < <($rest -- "$cur"); fi
    else
        mapfile -t COMPREPLY < <($first -- "$cur")
    fi
}

complete -F _tarnel_cli tarnel-cli
)";
}

std::string ZshCompletion() {
  std::string verbs;
  std::string cases;
  std::string common;
  for (const VerbRow& verb : VerbTable()) {
    verbs += "  " + Quoted(verb.name + ":" + verb.brief) + "\n";
    cases += ZshVerb(verb);
  }
  for (const OptionRow* row : CommonOptions())
    common += ZshOption(*row);
  return "#compdef tarnel-cli\n\nlocal -a verbs common own\nlocal state line\nverbs=(\n" + verbs +
         "  'help:show the options of a verb'\n)\ncommon=(\n" + common +
         ")\n\n_arguments -C $common '1:verb:->verb' '*::argument:->argument'\ncase $state in\n"
         "  verb) _describe verb verbs ;;\n  argument)\n    case $line[1] in\n" +
         cases +
         "      help) own=('1:verb:->verb') ;;\n    esac\n    _arguments $common $own\n"
         "    if [[ $state == verb ]]; then _describe verb verbs; fi\n    ;;\nesac\n";
}

std::string FishCompletion() {
  std::string text = "# fish completion for tarnel-cli\n\nset -l none 'not __fish_seen_subcommand_from " +
                     VerbNames() +
                     "'\ncomplete -c tarnel-cli -n $none -f\n"
                     "complete -c tarnel-cli -n $none -a help -d 'show the options of a verb'\n";
  for (const VerbRow& verb : VerbTable())
    text += "complete -c tarnel-cli -n $none -a " + verb.name + " -d " + Quoted(verb.brief) + "\n";
  for (const OptionRow* row : CommonOptions())
    text += FishOption(*row, "");
  for (const VerbRow& verb : VerbTable()) {
    text += "\nset -l " + verb.name + " '__fish_seen_subcommand_from " + verb.name + "'\n";
    for (const OptionRow* row : OptionsOf(verb.name))
      text += FishOption(*row, " -n $" + verb.name);
  }
  return text;
}

}  // namespace tarnel
