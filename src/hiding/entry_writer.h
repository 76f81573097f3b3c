#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/files.h"
#include "carrier/format.h"
#include "hiding/run_hide.h"

namespace tarnel {

/// The progress bar of a hide. Its maximum starts as the sum of the sources and becomes the sum of the
/// payloads; its value is the sum of the payload bytes written.
struct HideProgress {
  Length value = 0;
  Length maximum = 0;
};

/// Appends entries behind the last byte of a carrier. An entry counts from the moment when FinishEntry
/// returns; until then Rewind takes back all that was written of it.
///
/// The payload goes out in blocks of kCopyBlock. Before each full block the writer looks whether the person
/// has cancelled, behind it it yields; the last part, which is shorter or empty, is written without a look.
/// Several blocks are gathered for one write, so an error of the disk can come up to kGathered bytes late.
/// Throws Stop(Cancelled), Stop(TooLarge) before a byte that would take the carrier beyond kCarrierLimit, or
/// Error.
class EntryWriter : public ByteSink {
 public:
  /// Appends from position `end` + 1 on. `path` is for messages. The file must outlive the writer's last
  /// call.
  EntryWriter(File& carrier, const Path& path, Length end, HideScreen& screen, HideProgress& progress);

  /// Cuts the carrier back to the end of its last whole entry, and takes the progress back with it. Where
  /// nothing was written behind that entry, bytes that are there or missing all the same are another
  /// program's: DeviceIo.
  void Rewind();

  /// Whether a byte may have been appended, now or ever.
  bool HasBegun() const { return m_hasBegun; }

  /// Takes payload.
  void Write(Bytes bytes) override;

  /// Writes the last part; gives the size of the whole payload.
  Length FinishPayload();

  /// Writes what follows the payload. Now the entry stands.
  void FinishEntry(std::string_view tail);

  /// Length of the carrier up to the end of its last whole entry.
  Length End() const { return m_end; }

 private:
  static constexpr std::size_t kGathered = 16 * kCopyBlock;

  void EndBlock();
  void Flush();
  void WriteThrough(Bytes bytes);
  void Advance(std::size_t bytes);

  File& m_carrier;
  const Path m_path;
  HideScreen& m_screen;
  HideProgress& m_progress;
  Length m_end;
  Length m_written = 0;  ///< of the entry in the making
  bool m_hasBegun = false;
  bool m_mayHavePart = false;  ///< of an entry, behind m_end
  Length m_valueAtEnd;         ///< progress that belongs to m_end
  std::vector<std::uint8_t> m_gathered;
  std::size_t m_inBlock = 0;  ///< bytes at the end of m_gathered that make no full block yet
};

}  // namespace tarnel
