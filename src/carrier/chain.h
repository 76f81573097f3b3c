#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"
#include "base/secret.h"
#include "carrier/walk.h"
#include "crypto/algorithm.h"
#include "crypto/keys.h"

namespace tarnel {

/// How the chain of a carrier's entries stands under a key. Whatever reads a hideout asks here, so that no
/// two stories are told of one carrier.

/// The longest name and folder that are read or written, in the platform's bytes. No platform takes longer
/// ones; a crafted record can't make a reader build more folders than these hold.
inline constexpr std::size_t kNameLimit = 1024;
inline constexpr std::size_t kFolderLimit = 4096;

/// What of a record no platform can extract, as a clause; empty for a record that is in order.
std::string ExcessOf(std::string_view record);

struct JudgedEntry {
  enum class State {
    Foreign,  ///< somebody else's, or damaged where its key check stands, which can't be told apart
    Whole,    ///< the record can be used; its payload was not looked at
    Damaged,  ///< this key's, and not usable
    Closed,   ///< whole, but of another format version: it and all older entries are closed to this program
    Broken,   ///< its trailer is wrong, and the walk ends here
  } state = State::Foreign;
  WipedText record;   ///< plain; empty unless Whole or Closed, or Damaged with a record that can be read
  std::string fault;  ///< Damaged: what is wrong, as a clause such as "its record is damaged"
};

/// Judges the walk's current entry. Throws Error for what can't be read.
JudgedEntry Judge(Walk& walk, const EntryPlace& place, Algorithm algorithm, const Key& key);

struct EntryFault {
  Position at;       ///< first byte of the entry
  std::string name;  ///< stored text; empty where it isn't known
  std::string fault;
};

/// What a reader of a hideout has found wrong with the chain.
struct ChainFaults {
  static constexpr std::size_t kMostNoted = 100;

  std::vector<EntryFault> entries;  ///< newest first, kMostNoted at most
  std::size_t notNoted = 0;         ///< further ones
  std::optional<Position> brokenAt;
  std::optional<std::string> closedBy;  ///< the other format version, stored text
  bool hasMoreFolders = false;          ///< than the catalogue makes nodes of, which is no damage

  bool None() const { return entries.empty() && !brokenAt && !closedBy && !hasMoreFolders; }
  bool IsDamage() const { return !entries.empty() || brokenAt; }
  void Note(EntryFault fault);
};

/// Reads all records of the chain. Yields before each entry; a cancel throws Stop(Cancelled). Throws Error
/// for what can't be read.
ChainFaults ExamineChain(File& carrier, const Path& name, Algorithm algorithm, const Key& key,
                         Dialogue& dialogue);

/// The faults as sentences without a full stop, such as "the chain of entries is broken at byte 280: ...".
std::vector<std::string> SentencesOf(const ChainFaults& faults);

}  // namespace tarnel
