#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"
#include "base/secret.h"
#include "crypto/algorithm.h"
#include "crypto/keys.h"

namespace tarnel {

/// One file that could be the carrier: itself, its ".bak" or its ".tmp".
struct CarrierCopy {
  Path path;
  Length size = 0;
  /// The algorithm under which the password opens most entries; nothing if it opens none.
  std::optional<Algorithm> algorithm;
  std::size_t entries = 0;  ///< that the password opens
  std::size_t damaged = 0;  ///< entries of this hideout whose contents or record are not whole
  std::string fault;        ///< why it could not be read to its end; empty if it could

  enum class Relation {
    Itself,     ///< the carrier, or there is none to compare with
    Identical,  ///< same bytes as the carrier
    Front,      ///< its bytes are the front of the carrier: what a hide started from, or a copy cut short
    Different,
  } relation = Relation::Itself;

  /// Of the carrier: an unfinished hide has left a hole behind the entries of a front copy, so that reading
  /// from the end doesn't come to them.
  bool hidesItsFront = false;
};

/// What stands beside a carrier after an interrupted run, as the password shows it.
struct RecoverPlan {
  Path carrier;
  std::vector<CarrierCopy> copies;  ///< the carrier first, if it exists
  /// The copy with most whole entries, and fewest damaged ones of these; the carrier where it is no worse,
  /// but never one that hides the entries of its front copy. None if the password opens no copy. Only a
  /// proposal: fewer entries are also what a completed deletion leaves.
  std::optional<std::size_t> best;
  bool cancelled = false;  ///< and not complete
};

/// Reads all copies, contents too, and changes nothing. Yields while it works. A copy that can't be read is
/// in the plan with its fault.
RecoverPlan PlanRecovery(const Path& carrier, const Key& password, Files& files, Dialogue& dialogue);

/// Makes copy `choice` the carrier and keeps each other copy under a new name: the carrier's with ".old",
/// ".old2" and so on. Gives these names. Every copy exists at every moment under one name or another. Throws
/// Error, PermissionDenied if another process works on the carrier; running it again, with a new plan, then
/// finishes the work.
std::vector<Path> ApplyRecovery(const RecoverPlan& plan, std::size_t choice, Files& files);

/// Makes `fresh`, a whole carrier that is on the medium, the carrier, with its owner, group and mode, and
/// keeps the old one under a new name, which it gives; both exist at every moment. Throws Error.
Path PutInPlace(const Path& fresh, const Path& carrier, Files& files);

}  // namespace tarnel
