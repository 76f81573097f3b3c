#include "carrier/payload.h"

#include <algorithm>

#include "base/file_streams.h"
#include "base/printable.h"
#include "carrier/format.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "crypto/cipher.h"
#include "crypto/compression.h"

namespace tarnel {
namespace {

/// Hands a payload on and follows its seal.
class SealedSource : public ByteSource {
 public:
  explicit SealedSource(ByteSource& inner) : m_inner(inner) {}

  std::size_t Read(MutableBytes into) override {
    const std::size_t got = m_inner.Read(into);
    m_seal.Follow(into.first(got));
    return got;
  }
  std::string SealText() const { return m_seal.Text(); }

 private:
  ByteSource& m_inner;
  Seal m_seal;
};

class CountingSink : public ByteSink {
 public:
  explicit CountingSink(ByteSink& inner) : m_inner(inner) {}

  void Write(Bytes bytes) override {
    m_inner.Write(bytes);
    m_written += static_cast<Length>(bytes.size());
  }
  Length Written() const { return m_written; }

 private:
  ByteSink& m_inner;
  Length m_written = 0;
};

constexpr const char* kAltered = "its contents are damaged or were altered";

}  // namespace

PayloadClaims ClaimsOf(std::string_view record) {
  return {.plainSize = GetTag(record, tag::kPlainSize),
          .compressed = GetTag(record, tag::kCompressed),
          .seal = GetTag(record, tag::kSeal)};
}

void MustLieInside(Position start, Length size, Length carrierSize, const Path& carrier) {
  const bool isInside =
      start.value >= 1 && size >= 0 && size <= carrierSize && start.value - 1 <= carrierSize - size;
  if (isInside) return;
  throw Error(ErrorNumber::BadRecordNumber,
              "cannot read " + Printable(carrier.native()) +
                  ": it is shorter than it was when its hideout was opened; open it again",
              carrier);
}

void MustStillStand(File& carrier, Position start, Length size, const EntryTail& tail, const Path& path) {
  MustLieInside(start, size, carrier.Size(), path);
  if (EntryTail(ReadFileSlice(carrier, start + size, tail.length)) == tail) return;
  throw Error(ErrorNumber::BadRecordNumber,
              "cannot read " + Printable(path.native()) +
                  ": it has changed since its hideout was opened; open it again",
              path);
}

std::string TakeOutStored(ByteSource& payload, const PayloadClaims& claims, Algorithm algorithm,
                          const Key& key, ByteSink& stored) {
  SealedSource sealed(payload);
  std::string secondKey;
  if (!CipherDecryptFile(algorithm, sealed, stored, key, secondKey)) return kAltered;
  const bool isNamed = claims.seal.empty() || claims.seal == sealed.SealText();
  return isNamed ? "" : "its contents are not those that its record names";
}

std::string TakeOutPayload(ByteSource& payload, const PayloadClaims& claims, Algorithm algorithm,
                           const Key& key, ByteSink& plain) {
  CountingSink counted(plain);
  DecompressingSink decompressing(counted);
  const bool isCompressed = claims.compressed != "0";
  ByteSink& stored = isCompressed ? static_cast<ByteSink&>(decompressing) : counted;
  std::string fault = TakeOutStored(payload, claims, algorithm, key, stored);
  if (!fault.empty()) return fault;
  if (isCompressed && !decompressing.IsIntact()) return kAltered;
  if (claims.plainSize.empty() || ReadNumber(claims.plainSize) == static_cast<double>(counted.Written()))
    return {};
  return "its record says another size than the " + std::to_string(counted.Written()) + " bytes that it has";
}

Error DamagedPayload(std::string_view verb, std::string_view storedName, std::string_view fault) {
  return Error(ErrorNumber::DeviceIo, "cannot " + std::string(verb) + " " +
                                          Printable(ToPlatform(storedName)) + ": " + std::string(fault));
}

void Seal::Follow(Bytes bytes) {
  const Bytes last = bytes.last(std::min(bytes.size(), m_last.size()));
  std::copy(m_last.begin() + static_cast<std::ptrdiff_t>(last.size()), m_last.end(), m_last.begin());
  std::copy(last.begin(), last.end(), m_last.end() - static_cast<std::ptrdiff_t>(last.size()));
}

std::string Seal::Text() const {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : m_last) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

void PayloadSink::Write(Bytes bytes) {
  m_inner.Write(bytes);
  m_written += static_cast<Length>(bytes.size());
  m_seal.Follow(bytes);
}

}  // namespace tarnel
