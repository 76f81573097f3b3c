#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/options.h"

namespace tarnel {

/// All verbs' options at once, as the arguments fill them.
struct ParsedOptions {
  GlobalOptions global;
  ChoiceOptions choice;
  HideOptions hide;
  ListOptions list;
  ExtractOptions extract;
  VerifyOptions verify;
  DeleteOptions deletion;
  UpdateOptions update;
  PasswdOptions passwd;
  SearchOptions search;
  RecoverOptions recover;
  SalvageOptions salvage;
  PassphraseOptions passphrase;
  std::vector<std::string> operands;  ///< what is neither verb nor option, byte for byte
  bool wantsHelp = false;
  bool wantsVersion = false;
};

/// What a shell offers to complete an operand or value with.
enum class Completion { Nothing, File, Folder, Word };

/// One verb. Parsing, help, manual page and completions are all made from these two tables.
struct VerbRow {
  std::string name;
  /// In order: "CARRIER", "[ENTRY...]". Brackets mean that it may be missing, points that it may be repeated.
  std::vector<std::string> operands;
  std::string brief;     ///< a few words for lists
  std::string text;      ///< whole sentences
  std::string more;      ///< what only the manual page says besides; may be empty
  std::string examples;  ///< lines without the program's name
  Completion first = Completion::File;
  Completion rest = Completion::Nothing;
  /// Takes the operands, of which as many are there as must be.
  std::function<VerbOptions(ParsedOptions&)> finish;
};

struct OptionRow {
  std::string name;                     ///< with its hyphens
  char letter = 0;                      ///< "-q"
  std::string value = {};               ///< "FILE"; empty for a flag
  std::vector<std::string> verbs = {};  ///< who takes it; all if none is named
  std::string brief;                    ///< one sentence without its point
  std::string more = {};                ///< what only the manual page says besides; may be empty
  Completion completion = Completion::Nothing;
  std::vector<std::string> words = {};  ///< Completion::Word
  std::function<void(ParsedOptions&, const std::string& value)> take;
  /// What counts where no value follows; the option is then written --name[=VALUE], or --name VALUE where the
  /// next word is one of `words`.
  std::string standIn = {};

  bool IsCommon() const { return verbs.empty(); }
  bool Serves(std::string_view verb) const;
};

const std::vector<VerbRow>& VerbTable();
const std::vector<OptionRow>& OptionTable();

/// Null if there is no such verb.
const VerbRow* FindVerb(std::string_view name);

/// The options that one verb takes and others don't, and those that all take.
std::vector<const OptionRow*> OptionsOf(std::string_view verb);
std::vector<const OptionRow*> CommonOptions();

/// "-o, --to DIR"
std::string Spelled(const OptionRow& option);
/// "extract CARRIER [ENTRY...] --to DIR"
std::string Usage(const VerbRow& verb);

}  // namespace tarnel
