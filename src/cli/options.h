#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "crypto/algorithm.h"
#include "crypto/phrase_words.h"
#include "hiding/run_hide.h"

namespace tarnel {

enum class OnError { Abort, Retry, Ignore };

struct GlobalOptions {
  bool json = false;
  bool noInput = false;
  bool quiet = false;
  std::optional<OnError> onError;
  std::optional<std::string> passwordFile;
  std::optional<int> passwordFd;
};

/// What hide, extract and delete share in choosing.
struct ChoiceOptions {
  std::vector<std::string> exclude;      ///< globs
  std::optional<std::string> filesFrom;  ///< a file with more operands; "-" is standard input
  bool dryRun = false;                   ///< say what would be done, and do nothing
};

struct HideOptions {
  std::string carrier;
  std::vector<std::string> paths;
  ChoiceOptions choice;
  std::optional<std::string> title;
  std::optional<Algorithm> algorithm;
  std::optional<int> compressionLevel;
  std::optional<std::string> name;  ///< of what comes through standard input
  bool noFolders = false;
  bool keepTimes = false;
  bool follow = false;  ///< links met in a folder stand for the files that they lead to
  bool writeProtect = false;
  Originals originals = Originals::Keep;
  bool makeNew = false;   ///< make a new hideout where none opens, whatever the carrier is like
  bool existing = false;  ///< never make one
};

struct ListOptions {
  std::string carrier;
  std::vector<std::string> entries;
  bool onlyNames = false;  ///< whole names, each ended by a zero byte
};

struct ExtractOptions {
  std::string carrier;
  std::vector<std::string> entries;
  ChoiceOptions choice;
  std::string target;  ///< "-" is standard output
  bool overwrite = false;
  bool flat = false;
  bool allVersions = false;
};

struct VerifyOptions {
  std::vector<std::string> carriers;
  std::vector<std::string> entries;
};

struct DeleteOptions {
  std::string carrier;
  std::vector<std::string> entries;
  ChoiceOptions choice;
};

struct UpdateOptions {
  std::string carrier;
  std::string entry;
  std::string file;
};

struct NewPasswordOptions {
  std::optional<std::string> file;
  std::optional<int> descriptor;
};

struct PasswdOptions {
  std::string carrier;
  NewPasswordOptions newPassword;
};

struct SearchOptions {
  std::string folder;
  std::size_t type = 0;  ///< index in CarrierTypes()
  std::optional<Algorithm> algorithm;
  bool recursive = false;
  bool newestOnly = false;
};

struct RecoverOptions {
  std::string carrier;
  bool yes = false;  ///< do what would be asked about
};

struct SalvageOptions {
  std::string carrier;
  std::string target;
};

struct PassphraseOptions {
  int words = kUsualPhraseWords;
};

using VerbOptions =
    std::variant<HideOptions, ListOptions, ExtractOptions, VerifyOptions, DeleteOptions, UpdateOptions,
                 PasswdOptions, SearchOptions, RecoverOptions, SalvageOptions, PassphraseOptions>;

struct CommandLine {
  GlobalOptions global;
  VerbOptions verb;
};

/// The person wants help: on a verb, on all of them (an empty name), or the version.
struct HelpWish {
  enum class About { Program, Verb, Version } about = About::Program;
  std::string verb = {};
};

/// Reads the arguments, program name not included, by the tables of command_table.h. Options may stand before
/// or behind the verb; "--" ends them. Throws CliFailure(Usage) that names what is wrong, and what is nearest
/// to it.
std::variant<CommandLine, HelpWish> ParseOptions(const std::vector<std::string>& arguments);

/// True if --json stands among the options, even where the rest can't be understood.
bool AsksForJson(const std::vector<std::string>& arguments);

}  // namespace tarnel
