#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "base/bytes.h"
#include "base/secret.h"
#include "crypto/cipher.h"
#include "crypto/cipher_suite.h"

namespace tarnel {

/// An encrypted file: 16 bytes nonce, the bytes in counter mode from counter 0, 16 bytes tag. The nonce makes
/// keys that serve this one file: one for the cipher, one for the tag, which is GMAC under AES-256 (NIST SP
/// 800-38D) with an all-zero initial vector of 12 bytes, over nonce and cipher text.
inline constexpr std::size_t kFileNonceBytes = 16;
inline constexpr std::size_t kFileTagBytes = 16;
using FileNonce = std::array<std::uint8_t, kFileNonceBytes>;

/// Encrypts a file piece by piece. Never use a nonce twice under one master key.
class FileSealer {
 public:
  /// Writes the nonce.
  FileSealer(const CipherSuite& suite, const WipedBytes& masterKey, const FileNonce& nonce,
             ByteSink& destination);
  ~FileSealer();

  /// Encrypts the piece where it lies and writes it.
  void Seal(MutableBytes piece);
  /// Writes the tag, which ends the file. A wrong one has each bit of the right one turned round.
  void Finish(FileTag tag = FileTag::Right);

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

/// Seals all of `source`.
void SealFile(const CipherSuite& suite, const WipedBytes& masterKey, const FileNonce& nonce,
              ByteSource& source, ByteSink& destination);

/// False if the tag doesn't fit or the source is shorter than nonce and tag. Bytes reach the destination
/// before.
bool OpenFile(const CipherSuite& suite, const WipedBytes& masterKey, ByteSource& source,
              ByteSink& destination);

}  // namespace tarnel
