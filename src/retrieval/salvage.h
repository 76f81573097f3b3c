#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"
#include "carrier/chain.h"
#include "crypto/keys.h"

namespace tarnel {

struct SalvageRequest {
  Path carrier;
  Key password;
  Path target;  ///< made if missing, one level only
};

/// What salvaging shows.
class SalvageScreen : public virtual Dialogue {
 public:
  /// While records are sought and while contents are taken out.
  virtual void ShowProgress(Length value, Length maximum) = 0;
  /// A file stands in the target folder now.
  virtual void FileSalvaged(const Path& file) = 0;
};

enum class SalvageEnding { Done, Cancelled, Aborted };

struct SalvageResult {
  SalvageEnding ending = SalvageEnding::Done;
  std::size_t found = 0;                             ///< records that the password opens, whole or not
  std::size_t salvaged = 0;                          ///< files that were made
  static constexpr std::size_t kMostNoted = 10'000;  ///< of the next two each; `notNoted` counts the others
  std::vector<EntryFault> damaged;                   ///< entries that don't authenticate; no file was made
  std::vector<EntryFault> leftOut;  ///< passed over by Ignore, or with a name that nothing can be made under
  std::size_t notNoted = 0;
};

/// Looks through the whole carrier for records that the password opens, under any algorithm and wherever they
/// stand, and takes out each entry that authenticates, newest first, into its folder below the target. The
/// carrier is only read. Nothing is ever overwritten: a file whose name is taken, as by a newer version of
/// it, gets a number, such as "letter (2).txt". Cancel is looked at before each mebibyte that is read, before
/// each file and behind each full block of it; files made until then stay.
SalvageResult RunSalvage(const SalvageRequest& request, Files& files, SalvageScreen& screen);

/// "letter.txt", 2 -> "letter (2).txt". The number stands before the extension.
std::string NumberedName(const std::string& name, int number);

}  // namespace tarnel
