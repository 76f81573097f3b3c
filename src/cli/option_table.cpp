#include <algorithm>

#include "cli/command_table.h"
#include "cli/option_values.h"
#include "crypto/compression.h"

namespace tarnel {

namespace {

using Rows = std::vector<OptionRow>;

Rows NewHideoutOptions() {
  return {
      {.name = "--title",
       .value = "TEXT",
       .verbs = {"hide"},
       .brief = "Title of a new hideout, else \"New Hideout\"",
       .more = "It can't hold /, \\, < or >.",
       .take = [](ParsedOptions& p, const std::string& text) { p.hide.title = ReadTitle(text); }},
      {.name = "--algorithm",
       .value = "NAME",
       .verbs = {"hide"},
       .brief = "Algorithm of a new hideout, else RIJNDAEL-256",
       .more = "In any case of letters.",
       .completion = Completion::Word,
       .words = AlgorithmWords(),
       .take = [](ParsedOptions& p, const std::string& text) { p.hide.algorithm = ReadAlgorithm(text); }},
      {.name = "--new",
       .verbs = {"hide"},
       .brief = "Make a new hideout if the password opens none, also in a damaged carrier",
       .more =
           "Where nobody can be asked, --new or --existing is needed if none opens, so that a wrong password "
           "makes no second hideout.",
       .take = [](ParsedOptions& p, const std::string&) { p.hide.makeNew = true; }},
      {.name = "--existing",
       .verbs = {"hide"},
       .brief = "Make no new hideout; exit with 12 if the password opens none",
       .take = [](ParsedOptions& p, const std::string&) { p.hide.existing = true; }}};
}

Rows HidingOptions() {
  static_assert(kPresetCompressionLevel == 6);  // which is named below
  return {
      {.name = "--compress",
       .value = "LEVEL",
       .verbs = {"hide"},
       .brief = "Compress first, at level 6 or the one given, 1 to 9",
       .more = "A file that is named like a level is written ./9.",
       .completion = Completion::Word,
       .words = {"1", "2", "3", "4", "5", "6", "7", "8", "9"},
       .take = [](ParsedOptions& p, const std::string& text) { p.hide.compressionLevel = ReadLevel(text); },
       .standIn = "6"},
      {.name = "--no-folders",
       .verbs = {"hide"},
       .brief = "Don't keep the names of folders",
       .take = [](ParsedOptions& p, const std::string&) { p.hide.noFolders = true; }},
      {.name = "--keep-times",
       .verbs = {"hide"},
       .brief = "Keep times of last change, which extract then restores",
       .take = [](ParsedOptions& p, const std::string&) { p.hide.keepTimes = true; }},
      {.name = "--follow",
       .verbs = {"hide"},
       .brief = "Hide what links in a folder lead to; without it they are passed over",
       .more = "A link that is named itself always stands for its file.",
       .take = [](ParsedOptions& p, const std::string&) { p.hide.follow = true; }},
      {.name = "--name",
       .value = "NAME",
       .verbs = {"hide"},
       .brief = "The name of what comes through standard input",
       .take = [](ParsedOptions& p, const std::string& text) { p.hide.name = ReadName(text); }},
      {.name = "--write-protect",
       .verbs = {"hide"},
       .brief = "Make the carrier read-only afterwards",
       .take = [](ParsedOptions& p, const std::string&) { p.hide.writeProtect = true; }},
      {.name = "--originals",
       .value = "WHAT",
       .verbs = {"hide"},
       .brief = "What becomes of the originals once they read back: keep, trash or destroy",
       .more = "They stay (preset), go to the desktop's trash, or are overwritten and deleted; at a terminal "
               "that is "
               "asked about once. None goes before its hidden copy was read back and found identical. A "
               "folder in "
               "which anything was passed over or excluded stays, without the files that were hidden. "
               "Overwriting "
               "reaches neither spare blocks of flash storage nor older copies on file systems that never "
               "write in "
               "place.",
       .completion = Completion::Word,
       .words = OriginalsWords(),
       .take = [](ParsedOptions& p, const std::string& text) { p.hide.originals = ReadOriginals(text); }}};
}

Rows ChoosingOptions() {
  return {
      {.name = "--exclude",
       .value = "GLOB",
       .verbs = {"hide", "extract", "delete"},
       .brief = "Leave out what matches; may be given several times",
       .more =
           "A GLOB without / is compared with each name on a path, one with / with the path from its front. "
           "What lies below a folder that matches is left out too.",
       .take = [](ParsedOptions& p, const std::string& text) { p.choice.exclude.push_back(text); }},
      {.name = "--files-from",
       .value = "FILE",
       .verbs = {"hide", "extract", "delete"},
       .brief = "Take more paths or entries from a file; \"-\" is standard input",
       .more = "One on each line; where the file holds a zero byte, one before each of these.",
       .completion = Completion::File,
       .take = [](ParsedOptions& p, const std::string& text) { p.choice.filesFrom = text; }},
      {.name = "--dry-run",
       .letter = 'n',
       .verbs = {"hide", "extract", "delete"},
       .brief = "Say what would be taken, and change nothing",
       .take = [](ParsedOptions& p, const std::string&) { p.choice.dryRun = true; }},
      {.name = "--to",
       .letter = 'o',
       .value = "DIR",
       .verbs = {"extract", "salvage"},
       .brief = "The folder to put them in, made if it is missing",
       .more = "For extract, - is standard output.",
       .completion = Completion::Folder,
       .take = [](ParsedOptions& p, const std::string& text) { p.extract.target = p.salvage.target = text; }},
      {.name = "--overwrite",
       .verbs = {"extract"},
       .brief = "Replace existing files without asking",
       .take = [](ParsedOptions& p, const std::string&) { p.extract.overwrite = true; }},
      {.name = "--flat",
       .verbs = {"extract"},
       .brief = "Put all files into DIR itself, without folders",
       .more = "Files of one name get numbers.",
       .take = [](ParsedOptions& p, const std::string&) { p.extract.flat = true; }},
      {.name = "--all-versions",
       .verbs = {"extract"},
       .brief = "Take older versions too, under names with a number",
       .more = "The newest keeps the name; the one before is called \"name (2).txt\".",
       .take = [](ParsedOptions& p, const std::string&) { p.extract.allVersions = true; }}};
}

Rows ReadingOptions() {
  return {{.name = "--null",
           .letter = '0',
           .verbs = {"list"},
           .brief = "Print paths only, byte for byte, each ended by a zero byte",
           .take = [](ParsedOptions& p, const std::string&) { p.list.onlyNames = true; }},
          {.name = "--entry",
           .value = "ENTRY",
           .verbs = {"verify"},
           .brief = "Tell of these entries only; may be given several times",
           .take = [](ParsedOptions& p, const std::string& text) { p.verify.entries.push_back(text); }},
          {.name = "--new-password-file",
           .value = "FILE",
           .verbs = {"passwd"},
           .brief = "Take the new password from the first line of a file; \"-\" is standard input",
           .completion = Completion::File,
           .take = [](ParsedOptions& p, const std::string& text) { p.passwd.newPassword.file = text; }},
          {.name = "--new-password-fd",
           .value = "N",
           .verbs = {"passwd"},
           .brief = "Take it from an open file descriptor",
           .take =
               [](ParsedOptions& p, const std::string& text) {
                 p.passwd.newPassword.descriptor = ReadDescriptor("--new-password-fd", text);
               }},
          {.name = "--yes",
           .letter = 'y',
           .verbs = {"recover"},
           .brief = "Do it without asking",
           .take = [](ParsedOptions& p, const std::string&) { p.recover.yes = true; }}};
}

Rows SearchingOptions() {
  return {
      {.name = "--type",
       .value = "TEXT",
       .verbs = {"search"},
       .brief = "Only carriers of one kind: all, image, video, audio, program, or an extension such as png",
       .completion = Completion::Word,
       .words = CarrierTypeWords(),
       .take = [](ParsedOptions& p, const std::string& text) { p.search.type = ReadCarrierType(text); }},
      {.name = "--algorithm",
       .value = "NAME",
       .verbs = {"search"},
       .brief = "Try one algorithm only",
       .completion = Completion::Word,
       .words = AlgorithmWords(),
       .take = [](ParsedOptions& p, const std::string& text) { p.search.algorithm = ReadAlgorithm(text); }},
      {.name = "--recursive",
       .letter = 'r',
       .verbs = {"search"},
       .brief = "Look into subfolders too",
       .take = [](ParsedOptions& p, const std::string&) { p.search.recursive = true; }},
      {.name = "--newest-only",
       .verbs = {"search"},
       .brief = "Try the newest entry of each file only, which is faster",
       .take = [](ParsedOptions& p, const std::string&) { p.search.newestOnly = true; }}};
}

Rows PhraseOptions() {
  return {
      {.name = "--words",
       .letter = 'w',
       .value = "N",
       .verbs = {"passphrase"},
       .brief = "So many words, else " + std::to_string(kUsualPhraseWords),
       .more = "Each is worth 12.9 bits.",
       .take = [](ParsedOptions& p, const std::string& text) { p.passphrase.words = ReadWordCount(text); }}};
}

Rows CommonRows() {
  return {
      {.name = "--password-file",
       .value = "FILE",
       .brief = "Take the password from the first line of a file; \"-\" is standard input",
       .completion = Completion::File,
       .take = [](ParsedOptions& p, const std::string& text) { p.global.passwordFile = text; }},
      {.name = "--password-fd",
       .value = "N",
       .brief = "Take it from an open file descriptor",
       .take = [](ParsedOptions& p,
                  const std::string& text) { p.global.passwordFd = ReadDescriptor("--password-fd", text); }},
      {.name = "--no-input",
       .brief = "Ask nothing; take the answer that changes nothing, and say so",
       .take = [](ParsedOptions& p, const std::string&) { p.global.noInput = true; }},
      {.name = "--on-error",
       .value = "WHAT",
       .brief = "At an error abort, retry (three times) or ignore, instead of asking",
       .more =
           "To ignore means to go on without the part that failed. Without it the person at the terminal is "
           "asked; without a terminal the run ends.",
       .completion = Completion::Word,
       .words = OnErrorWords(),
       .take = [](ParsedOptions& p, const std::string& text) { p.global.onError = ReadOnError(text); }},
      {.name = "--quiet",
       .letter = 'q',
       .brief = "No progress and no word of success; warnings and errors are still shown",
       .take = [](ParsedOptions& p, const std::string&) { p.global.quiet = true; }},
      {.name = "--json",
       .brief = "Print one JSON object; messages are objects too",
       .take = [](ParsedOptions& p, const std::string&) { p.global.json = true; }},
      {.name = "--help",
       .letter = 'h',
       .brief = "Show the options of the program or of a verb",
       .take = [](ParsedOptions& p, const std::string&) { p.wantsHelp = true; }},
      {.name = "--version",
       .letter = 'V',
       .brief = "Show the version",
       .take = [](ParsedOptions& p, const std::string&) { p.wantsVersion = true; }}};
}

}  // namespace

const std::vector<OptionRow>& OptionTable() {
  static const std::vector<OptionRow> table = [] {
    Rows all;
    for (Rows (*rows)() : {NewHideoutOptions, HidingOptions, ChoosingOptions, ReadingOptions,
                           SearchingOptions, PhraseOptions, CommonRows})
      std::ranges::move(rows(), std::back_inserter(all));
    return all;
  }();
  return table;
}

bool OptionRow::Serves(std::string_view verb) const {
  return IsCommon() || std::ranges::find(verbs, verb) != verbs.end();
}

std::vector<const OptionRow*> OptionsOf(std::string_view verb) {
  std::vector<const OptionRow*> rows;
  for (const OptionRow& row : OptionTable())
    if (!row.IsCommon() && row.Serves(verb)) rows.push_back(&row);
  return rows;
}

std::vector<const OptionRow*> CommonOptions() {
  std::vector<const OptionRow*> rows;
  for (const OptionRow& row : OptionTable())
    if (row.IsCommon()) rows.push_back(&row);
  return rows;
}

std::string Spelled(const OptionRow& option) {
  std::string text = option.letter != 0 ? std::string("-") + option.letter + ", " : "    ";
  text += option.name;
  if (option.value.empty()) return text;
  return text + (option.standIn.empty() ? " " + option.value : "[=" + option.value + "]");
}

}  // namespace tarnel
