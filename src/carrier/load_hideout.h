#pragma once

#include "carrier/guarded_walk.h"
#include "carrier/reading.h"

namespace tarnel {

struct LoadRequest {
  Path carrier;
  Key password;
  Algorithm algorithm = Algorithm::Rijndael256;
  enum class Reload { Ask, Forced } reload = Reload::Ask;
  enum class Fit { AnyEntry, NewestEntry } fit = Fit::AnyEntry;
  OpenedCarrier* opened = nullptr;  ///< that `carrier` is, where several requests for it follow each other
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
  bool wasLeft =
      false;  ///< NotFound because the person left at an error, or ignored that the carrier can't be opened
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

}  // namespace tarnel
