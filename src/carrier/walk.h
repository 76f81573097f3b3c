#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/files.h"
#include "base/secret.h"
#include "carrier/format.h"
#include "crypto/algorithm.h"

namespace tarnel {

/// One entry as the walk meets it, whoever it belongs to.
struct EntryPlace {
  Position start;  ///< first payload byte
  Length payload = 0;
  Length recordLength = 0;
  Position Record() const { return start + payload; }
  Position Trailer() const { return Record() + recordLength; }
  Position End() const {
    return Trailer() + static_cast<Length>(kTrailerSize);
  }  ///< first byte behind the entry
};

/// Goes through the entries of a carrier from its end. Of payloads it reads no more than what shares a small
/// block with a trailer.
///
/// A record length of 0 is the normal end. A position below 1 and a length that is no whole number or
/// negative throw Error BadRecordNumber: a file of fewer than 80 bytes does so at once, a body of exactly 79
/// bytes behind its oldest entry. The next call of Next then throws again. A carrier that becomes shorter
/// meanwhile is an Error DeviceIo. After any throw the call can be repeated.
class Walk {
 public:
  /// `name` is for messages; the walk reads from `carrier` alone.
  explicit Walk(File& carrier, Path name = {});

  /// The next older entry, or nothing at the end. The place found stays valid until the next call.
  std::optional<EntryPlace> Next();

  /// The bytes of the current entry's record, cipher text as it stands in the file.
  std::string ReadRecordText();

  /// The record's plain text under this key; empty if the entry belongs to somebody else, or its record is
  /// damaged or longer than kRecordLimit. Reads no more of a foreign record than it takes to see that.
  /// `secondKey` becomes empty.
  WipedText DecryptRecord(Algorithm algorithm, const Secret& password, std::string& secondKey);

  /// True if the current record was written under this key, be it whole or damaged.
  bool KeyFits(Algorithm algorithm, const Secret& password);

  /// The current entry's cipher text and trailer, exactly as stored.
  std::string ReadTail();

  /// Bytes between the trailer now being looked at and the end of the carrier.
  Length Passed() const;
  Length CarrierSize() const { return m_size; }

 private:
  std::string Slice(Position from, Length length);
  void FillWindow(Position from, Length length);
  EntryPlace PlaceOf(Position trailer, double payload, double recordLength) const;
  Position Back(Position from, double length) const;
  Error TooShort() const;
  Error Shrunk() const;
  std::string Name() const;

  File& m_carrier;
  Path m_name;
  Length m_size;
  Position m_cursor;  ///< of the next trailer to read
  bool m_ended = false;
  EntryPlace m_entry;
  std::vector<std::uint8_t> m_window;  ///< what was read last, from m_windowStart on
  Position m_windowStart;
};

}  // namespace tarnel
