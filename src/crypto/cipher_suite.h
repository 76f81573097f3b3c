#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "base/bytes.h"
#include "base/secret.h"
#include "crypto/algorithm.h"

namespace Botan {
class StreamCipher;
}

namespace tarnel {

/// What stands behind one algorithm number. The codes select the keys, so that strings and files of one pass
/// phrase never share any.
struct CipherSuite {
  Algorithm algorithm;
  int stringCode;
  int fileCode;
  std::string_view blockCipher;
  std::size_t keyBytes;
  std::size_t bytesAlone;  ///< of a file, at least: as many as are encrypted while threads start
};

/// Null for a number without a cipher.
const CipherSuite* FindCipherSuite(Algorithm algorithm);

/// The suite's block cipher in counter mode (NIST SP 800-38A), without a key. The counter block begins with
/// the initial vector, is filled up with zeros, and counts in its last eight bytes, big-endian, modulo 2^64.
std::unique_ptr<Botan::StreamCipher> MakeCounterMode(const CipherSuite& suite);

inline constexpr std::size_t kMasterKeyBytes = 32;

/// HKDF with SHA-256 (RFC 5869). An empty salt is 32 zero bytes, as told there.
WipedBytes DeriveKeys(const WipedBytes& masterKey, Bytes salt, std::string_view info, std::size_t length);

}  // namespace tarnel
