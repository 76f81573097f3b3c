#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/bytes.h"
#include "base/error.h"
#include "base/files.h"
#include "carrier/entry_tail.h"
#include "crypto/algorithm.h"
#include "crypto/keys.h"

namespace tarnel {

/// What a record says of its payload. All stored text, pointing into the record.
struct PayloadClaims {
  std::string_view plainSize;   ///< "?Fls=<"; empty where the record doesn't say
  std::string_view compressed;  ///< "?Cmpr=<": "0" for contents that are stored as they are
  std::string_view seal;        ///< "?Seal=<"; empty in a record that doesn't name its payload
};
PayloadClaims ClaimsOf(std::string_view record);

/// Throws Error BadRecordNumber unless [start, start + size) lies inside a carrier of `carrierSize` bytes.
void MustLieInside(Position start, Length size, Length carrierSize, const Path& carrier);

/// Throws Error BadRecordNumber unless the carrier holds `tail` right behind the payload [start, start +
/// size): then the entry is still where it was when its hideout was opened.
void MustStillStand(File& carrier, Position start, Length size, const EntryTail& tail, const Path& path);

/// Decrypts a payload into `plain`, decompresses it where the claims say so, and compares it with them. Empty
/// if it is the whole payload that the record names; else what is wrong, as a clause such as "its contents
/// are damaged or were altered". Bytes reach `plain` before that is known.
std::string TakeOutPayload(ByteSource& payload, const PayloadClaims& claims, Algorithm algorithm,
                           const Key& key, ByteSink& plain);

/// The same but for the decompression: `stored` gets the contents as they are stored.
std::string TakeOutStored(ByteSource& payload, const PayloadClaims& claims, Algorithm algorithm,
                          const Key& key, ByteSink& stored);

/// DeviceIo: "cannot ", the verb, the name, ": " and the clause.
Error DamagedPayload(std::string_view verb, std::string_view storedName, std::string_view fault);

/// The last bytes of a payload, which are its tag, as the record names it: 32 lower-case hexadecimal digits.
class Seal {
 public:
  void Follow(Bytes bytes);
  std::string Text() const;

 private:
  std::array<std::uint8_t, 16> m_last{};
};

/// Hands a payload on, counts it and follows its seal.
class PayloadSink : public ByteSink {
 public:
  explicit PayloadSink(ByteSink& inner) : m_inner(inner) {}

  void Write(Bytes bytes) override;
  Length Written() const { return m_written; }
  std::string SealText() const { return m_seal.Text(); }

 private:
  ByteSink& m_inner;
  Length m_written = 0;
  Seal m_seal;
};

}  // namespace tarnel
