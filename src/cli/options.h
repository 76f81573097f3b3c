#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "crypto/algorithm.h"
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

struct HideOptions {
  std::string carrier;
  std::vector<std::string> paths;
  std::optional<std::string> title;
  std::optional<Algorithm> algorithm;
  std::optional<int> compressionLevel;
  bool noFolders = false;
  bool writeProtect = false;
  Originals originals = Originals::Keep;
  bool makeNew = false;  ///< make a new hideout where none opens, whatever the carrier is like
};

struct ListOptions {
  std::string carrier;
};

struct ExtractOptions {
  std::string carrier;
  std::vector<std::string> entries;
  std::string target;
  bool overwrite = false;
  bool flat = false;
};

struct VerifyOptions {
  std::string carrier;
};

struct DeleteOptions {
  std::string carrier;
  std::vector<std::string> entries;
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

using VerbOptions = std::variant<HideOptions, ListOptions, ExtractOptions, VerifyOptions, DeleteOptions,
                                 UpdateOptions, PasswdOptions, SearchOptions, RecoverOptions, SalvageOptions>;

struct CommandLine {
  GlobalOptions global;
  VerbOptions verb;
};

/// What --help and --version ask for, ready for standard output.
struct HelpText {
  std::string text;
};

/// Reads the arguments, program name not included. Options may stand before or behind the verb; "--" ends
/// them. Throws CliFailure(Usage).
std::variant<CommandLine, HelpText> ParseOptions(const std::vector<std::string>& arguments);

/// True if --json stands among the options, even where the rest can't be understood.
bool AsksForJson(const std::vector<std::string>& arguments);

}  // namespace tarnel
