#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/files.h"
#include "base/secret.h"
#include "crypto/algorithm.h"
#include "crypto/keys.h"

namespace tarnel {

/// What a record says of one hidden file. All texts are stored text; those that the user made are wiped.
struct RecordFields {
  WipedText name = {};
  std::string plainSize = {};  ///< plain digits, as are the next two
  std::string storedSize = {};
  std::string attributes = {};
  std::string date = {};
  std::string compressed = {};  ///< zlib level, "0" if stored as it is
  WipedText folder = {};        ///< parts joined by "\", empty for the root
  WipedText title = {};
  std::string mode = {};   ///< octal, empty where the attributes say all
  std::string seal = {};   ///< names the payload; empty in a record that doesn't
  std::string mtime = {};  ///< seconds since 1970 in UTC, empty unless the person wanted times to be kept
};

/// A hide writes the format version once, a rewrite writes it twice. Readers take the first.
enum class RecordWriter { Hide, Rewrite };

WipedText BuildRecord(const RecordFields& fields, RecordWriter writer);

/// The fields of a plain record as they stand there.
RecordFields ReadRecord(std::string_view record);

/// Everything that follows the payload of an entry: the encrypted record as Base64 text, then the trailer.
std::string SealEntry(std::string_view plainRecord, Length payload, Algorithm algorithm, const Key& key,
                      std::string& secondKey);

}  // namespace tarnel
