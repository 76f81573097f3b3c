#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"
#include "crypto/keys.h"

namespace tarnel {

/// What has to change in a carrier so that its chain of entries holds again.
struct MendPlan {
  struct Step {
    enum class Kind {
      CutEnd,       ///< bytes behind the newest entry go
      WriteLength,  ///< a length field is written anew
      Bridge,  ///< bytes that belong to no entry get a trailer of their own, so that the walk passes them
    } kind = Kind::CutEnd;
    Position at;         ///< CutEnd and Bridge: the first of the bytes; WriteLength: of the field
    Length bytes = 0;    ///< how many; WriteLength: the new number
    std::string reason;  ///< WriteLength: what the number was derived from
  };
  /// A stretch of the new carrier: bytes of the old one, or bytes to be written.
  struct Piece {
    Position from;
    Length length = 0;
    std::string written;  ///< if this isn't empty, it is the piece
  };

  std::vector<Step> steps;    ///< in file order; none: there is nothing to mend, or nothing to mend it from
  std::vector<Piece> pieces;  ///< the whole new carrier
  std::size_t entries = 0;    ///< that the key opens and the mended chain leads to
  std::size_t links = 0;      ///< all that the mended chain leads to, bridges too
  /// A length that can't be derived: the first byte of its trailer. The chain ends there also when mended.
  std::optional<Position> unknown;
  bool cancelled = false;  ///< and nothing else is in the plan
};

/// Looks for the carrier's entries by their records and works out how they hang together: a length comes from
/// its field, else from the other field, the record (of entries that the key opens), the record's text, or
/// the end of the entry before. Reads the whole carrier and changes nothing. Yields. Throws Error.
MendPlan PlanMending(File& carrier, const Key& key, Dialogue& dialogue);

/// A step as a sentence without a full stop, such as "cut off 128 bytes from byte 361 on".
std::string SentenceOf(const MendPlan::Step& step);

/// Writes the mended carrier as `to`, a new file that is on the medium afterwards, and walks through it: a
/// chain that still doesn't lead to all links throws Error BadRecordNumber. Whatever is thrown, `to` is gone.
/// So it is where the person has cancelled; then the answer is false.
bool WriteMended(const MendPlan& plan, File& carrier, const Path& path, const Path& to, Files& files,
                 Dialogue& dialogue);

}  // namespace tarnel
