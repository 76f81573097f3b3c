#pragma once

#include <cstddef>
#include <vector>

#include "base/files.h"
#include "base/secret.h"
#include "carrier/format.h"
#include "hiding/run_hide.h"

namespace tarnel {

/// An entry that a hide has appended.
struct NewEntry {
  std::size_t row = 0;  ///< of the request
  Position start;
  Length payload = 0;
};

/// A row whose original came back identical, and the original as it was then: looked at before it was
/// compared, and untouched afterwards.
struct RowReadBack {
  std::size_t row = 0;
  FileStat seen;
};

/// Reads the entries as any reader would: walks to each of them from the carrier's end, opens its record,
/// decrypts its payload, decompresses it, and compares what comes out with the original, byte for byte.
/// `entries` are the newest of the carrier, oldest first. Gives the rows whose original came back identical,
/// ascending; an entry that can't be reached, read or authenticated, and an original that can't be read, are
/// not among them. Throws no Error. Memory doesn't grow with the files.
std::vector<RowReadBack> RowsThatReadBack(const std::vector<NewEntry>& entries,
                                          const std::vector<HideRow>& rows, const CurrentHideout& hideout,
                                          File& carrier, Files& files, HideScreen& screen);

/// Whether all entries can be read so and are authentic, whatever has become of the originals.
bool AllReadBack(const std::vector<NewEntry>& entries, const std::vector<HideRow>& rows,
                 const CurrentHideout& hideout, File& carrier, Dialogue& dialogue);

}  // namespace tarnel
