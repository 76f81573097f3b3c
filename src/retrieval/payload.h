#pragma once

#include <string_view>

#include "base/bytes.h"
#include "base/error.h"
#include "base/files.h"
#include "base/secret.h"
#include "crypto/algorithm.h"

namespace tarnel {

/// Throws Error BadRecordNumber unless [start, start + size) lies inside a carrier of `carrierSize` bytes.
void MustLieInside(Position start, Length size, Length carrierSize, const Path& carrier);

/// Decrypts a payload into `plain`, and decompresses it unless `compressed`, the value of "?Cmpr=<", is "0".
/// False if it is damaged, was altered or belongs to another key. Bytes reach `plain` before that is known.
bool TakeOutPayload(ByteSource& payload, std::string_view compressed, Algorithm algorithm,
                    const Secret& password, ByteSink& plain);

/// DeviceIo: "cannot ", the verb, the name, and that it is damaged or was altered.
Error DamagedPayload(std::string_view verb, std::string_view storedName);

/// Hands all on and counts it.
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

}  // namespace tarnel
