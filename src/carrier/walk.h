#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/files.h"
#include "base/secret.h"
#include "carrier/format.h"
#include "crypto/algorithm.h"
#include "crypto/keys.h"

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

/// Why a walk has come to its end.
enum class WalkEnd {
  None,          ///< it hasn't
  Normal,        ///< the bytes of the body are no trailer, or too few for a look
  BodyTooShort,  ///< the same for a body of exactly 79 bytes, where Next throws
  Broken,        ///< at BrokenAt
};

/// Goes through the entries of a carrier from its end. Of payloads it reads no more than what shares a small
/// block with a trailer.
///
/// A record length of 0 is the normal end. A position below 1 and a length that is no whole number or
/// negative throw Error BadRecordNumber: a file of fewer than 80 bytes does so at once, a body of exactly 79
/// bytes behind its oldest entry. The next call of Next then throws again. A carrier that becomes shorter
/// meanwhile is an Error DeviceIo. After any throw the call can be repeated.
///
/// A trailer of which one length field holds and the other doesn't was damaged, for no bytes of a body pass
/// for a field by chance; the walk ends there, and BrokenAt says where. The same where the walk comes to its
/// end behind a trailer whose lengths are disproved: by the lines of the record's text, by a whole trailer at
/// the place where another number of one changed digit would have led, or by one that they lead into.
class Walk {
 public:
  /// `name` is for messages; the walk reads from `carrier` alone.
  explicit Walk(File& carrier, Path name = {});

  /// From now on remembers the places of the newest entries and the fronts of their records, 65,536 entries
  /// at most in some 8 MiB, so that it goes the same way again after Rewind and reads little.
  void RememberTheWay() { m_remembers = true; }

  /// Goes back to before the newest entry. False, and the walk is not to be used again, where the last read
  /// has failed: a file that is opened anew may be read.
  bool Rewind();

  /// The next older entry, or nothing at the end. The place found stays valid until the next call.
  std::optional<EntryPlace> Next();

  /// The bytes of the current entry's record, cipher text as it stands in the file.
  std::string ReadRecordText();

  /// The record's plain text under this key; empty if the entry belongs to somebody else, or its record is
  /// damaged or longer than kRecordLimit. Reads no more of a foreign record than it takes to see that.
  /// `secondKey` becomes empty.
  WipedText DecryptRecord(Algorithm algorithm, const Key& key, std::string& secondKey);

  /// True if the current record was written under this key, be it whole or damaged.
  bool KeyFits(Algorithm algorithm, const Key& key);

  /// The current entry's cipher text and trailer, exactly as stored.
  std::string ReadTail();

  /// The first byte of the trailer at which the chain of entries is known to be broken. What lies before it
  /// is out of reach.
  const std::optional<Position>& BrokenAt() const { return m_brokenAt; }

  WalkEnd End() const;

  /// Ends the walk at the current entry, whose trailer has turned out to be wrong.
  void BreakHere();

  /// True if the bytes before `start` are a trailer of which both fields hold.
  bool IsBehindAnEntry(Position start);

  /// Bytes between the trailer now being looked at and the end of the carrier.
  Length Passed() const;
  Length CarrierSize() const { return m_opened.size; }
  /// The carrier as it was before its first byte was read.
  const FileStat& Opened() const { return m_opened; }

 private:
  /// Enough of a record to see whether a key fits.
  static constexpr std::size_t kRecordFront = 64;

  /// One entry of the way that is remembered.
  struct Step {
    EntryPlace place;
    std::array<char, kRecordFront> front = {};
    std::size_t frontLength = 0;  ///< 0 until it is read
  };

  std::optional<EntryPlace> ReadNext();
  std::optional<EntryPlace> StepTo(const EntryPlace& entry);
  Step* RememberedStep();
  std::string RecordFront();
  void ReadInto(Position from, MutableBytes target);
  std::string Slice(Position from, Length length);
  void FillWindow(Position from, Length length);
  std::nullopt_t EndHere(bool isBroken);
  bool HasRoomForMore();
  bool IsInATrailer(Position place);
  bool WasMisled();
  EntryPlace PlaceOf(Position trailer, double payload, double recordLength) const;
  Position Back(Position from, double length) const;
  Error TooShort() const;
  Error Shrunk() const;
  std::string Name() const;

  File& m_carrier;
  Path m_name;
  FileStat m_opened;
  Position m_cursor;  ///< of the next trailer to read
  bool m_ended = false;
  bool m_hasEntry = false;  ///< m_entry is one
  std::optional<Position> m_brokenAt;
  EntryPlace m_entry;
  std::vector<std::uint8_t> m_window;  ///< what was read last, from m_windowStart on
  Position m_windowStart;
  bool m_hasFailed = false;  ///< the last read has
  bool m_remembers = false;
  std::vector<Step> m_steps;
  std::size_t m_passedEntries = 0;
  bool m_knowsEnd = false;  ///< behind the last of m_steps, which are all
  std::optional<Position> m_endBrokenAt;
};

}  // namespace tarnel
