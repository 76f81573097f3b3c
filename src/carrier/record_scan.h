#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/files.h"
#include "base/secret.h"
#include "crypto/algorithm.h"
#include "crypto/keys.h"

namespace tarnel {

/// Records sought by how their text looks (record_text.h), whatever the chain of entries says.

struct RecordText {
  Position begin;
  Position linesEnd;  ///< behind its last full line; a shorter line and a trailer may follow
};

/// Goes through a whole file from front to back, reading it once. A record of fewer than one full line isn't
/// found; every record that a file name and a size stand in is longer.
class RecordScan {
 public:
  /// `passed` is called with the bytes read so far, at least once a mebibyte, and may throw to end the scan.
  RecordScan(File& carrier, std::function<void(Length)> passed);

  /// The next text, or nothing at the end. Throws Error.
  std::optional<RecordText> Next();

 private:
  bool ReadOn();
  std::optional<Position> NextLine();
  bool IsLine(Position begin);

  File& m_carrier;
  std::function<void(Length)> m_passed;
  Length m_size;
  std::string m_block;  ///< from m_blockStart on
  Position m_blockStart;
  std::size_t m_next = 0;  ///< in m_block: where to look for a line end
  std::optional<RecordText> m_text;
};

/// A record that a key opens, with the place that its own tag proves.
struct OpenedRecord {
  Algorithm algorithm = Algorithm::Rijndael256;
  bool isWhole = false;  ///< false: written under this key, and damaged
  WipedText plain;
  Length length = 0;  ///< of the text
};

/// Opens texts under a key. What a damaged record costs, a try with each length that it can have, is spent on
/// 50,000 of a carrier at most: the others are tried with the likeliest, under which a whole record opens.
class RecordOpener {
 public:
  RecordOpener(File& carrier, const Key& key, int mostDamaged = 50'000)
      : m_carrier(carrier), m_key(key), m_mostDamaged(mostDamaged) {}

  /// With whichever algorithm fits; nothing if none does. Throws Error.
  std::optional<OpenedRecord> Open(const RecordText& text);

 private:
  File& m_carrier;
  const Key& m_key;
  const int m_mostDamaged;
  int m_damaged = 0;
};

/// A trailer of which at least one field holds.
struct FoundTrailer {
  Position at;
  bool isWhole = false;  ///< both hold, and the right one leads to the begin of the text
};

/// The trailer behind the text.
std::optional<FoundTrailer> TrailerOf(File& carrier, const RecordText& text);

}  // namespace tarnel
