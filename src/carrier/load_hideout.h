#pragma once

#include <cstddef>
#include <string>

#include "base/dialogue.h"
#include "base/files.h"
#include "carrier/catalogue.h"
#include "carrier/chain.h"

namespace tarnel {

/// The guards that keep one thread's operations from running into each other while events run.
struct ReadingGuards {
  bool ReadingBusy = false;
  bool AbortReadingFlag = false;
  bool TreeClickBlocked = false;
  bool SearchBusy = false;
  bool SearchAbort = false;
  bool ViewBusy = false;  ///< a view, an update or the return from a view runs
};

/// What the program works on: the carrier, the hideout and the key that commands use.
struct CurrentHideout {
  Path CurrentCarrierPath;
  std::string CurrentCarrierName;  ///< stored text
  WipedText CurrentHideoutTitle;   ///< stored text
  Algorithm CurrentAlgorithmId = Algorithm::Rijndael256;
  Secret CurrentPassword;
  std::string SecondKey;
};

/// What reading shows. The walk's questions come through the Dialogue.
class ReadingScreen : public virtual Dialogue {
 public:
  /// After at least one file was read: `passed` of `size` bytes are behind the walk.
  virtual void ShowReading(Length passed, Length size) = 0;

  /// A hideout was loaded: its root is to be selected and clicked, and the status bar shows `files` and the
  /// algorithm.
  virtual void HideoutLoaded(TreeNode& root, std::size_t files) = 0;

  /// Reading was aborted by AbortReadingFlag: a hideout of which something had been read is closed. The
  /// visible list is to be emptied and the first node, if there is one, to be clicked.
  virtual void HideoutGone() = 0;

  /// The hideout was read, or sought and not found, and this is wrong with its carrier. Not called for a
  /// forced reload, whose person knows already.
  virtual void ShowFaults(const ChainFaults& faults);
};

/// What every operation that reads or reloads a hideout works with.
struct Reading {
  Files& files;
  Catalogue& catalogue;
  FileTypes& types;
  ReadingGuards& guards;
  CurrentHideout& current;
};

struct LoadRequest {
  Path carrier;
  Secret password;
  Algorithm algorithm = Algorithm::Rijndael256;
  enum class Reload { Ask, Forced } reload = Reload::Ask;
  enum class Fit { AnyEntry, NewestEntry } fit = Fit::AnyEntry;
};

enum class LoadResult {
  NotFound,  ///< nothing fits, a guard was set, or the walk was left through the error dialog
  Loaded,
  KeptOpen,  ///< the person refused to reload; the open hideout stays
  Aborted,   ///< by AbortReadingFlag with at least one file read; the hideout is closed
};

/// A result, and what was found wrong with the carrier on the way, also where nothing was loaded.
struct LoadOutcome {
  LoadResult result = LoadResult::NotFound;
  ChainFaults faults = {};
};

/// The caller need not try further.
constexpr bool IsFinal(LoadResult result) {
  return result != LoadResult::NotFound;
}

/// Reads the entries that password and algorithm open into the catalogue, newest first, and makes the hideout
/// current. Nothing in the catalogue changes before the first entry fits. Yields before each entry.
///
/// A hideout that is open on this carrier is replaced: without a question if the reload is forced or its
/// password is another one. Errors are asked about as "load.error". Ignore passes the entry over whose record
/// can't be read, and ends the walk where it can't go on; Abort gives NotFound and
/// leaves what was read so far in the catalogue. ReadingBusy and TreeClickBlocked are clear when the screen
/// hears of the end.
///
/// Entries of this key that can't be used, and where the chain is broken, go to ShowFaults.
LoadResult LoadHideout(const LoadRequest& request, Reading& reading, ReadingScreen& screen);

/// The same without ShowFaults.
LoadOutcome ReadHideout(const LoadRequest& request, Reading& reading, ReadingScreen& screen);

struct ProbeRequest {
  Path carrier;
  Secret password;
  Algorithm algorithm = Algorithm::Rijndael256;
  enum class Depth { NewestEntry, WholeChain } depth = Depth::WholeChain;
};
struct ProbeResult {
  bool found = false;
  WipedText title;  ///< of the entry that fits, stored text
};

/// Says whether an entry of the carrier fits. No model, no version gate. Yields before each entry;
/// SearchAbort stops it and stays set. Errors are asked about as "probe.error", but BadRecordNumber is
/// silent. After that one, which a file of fewer than 80 bytes gives, and after Abort, SearchBusy stays set
/// and every further probe finds nothing: callers that don't want that pass such files over.
ProbeResult ProbeCarrier(const ProbeRequest& request, Reading& reading, Dialogue& dialogue);

}  // namespace tarnel
