#pragma once

#include <cstddef>

#include "base/bytes.h"
#include "base/secret.h"
#include "crypto/cipher.h"
#include "crypto/cipher_suite.h"
#include "crypto/file_line.h"
#include "crypto/work_line.h"

namespace tarnel {

/// An encrypted file: 16 bytes nonce, the bytes in counter mode from counter 0, 16 bytes tag. The nonce makes
/// keys that serve this one file: one for the cipher, one for the tag, which is GMAC under AES-256 (NIST SP
/// 800-38D) with an all-zero initial vector of 12 bytes, over nonce and cipher text.
///
/// Large files are worked on by up to `workers` threads (see FileLine). Source and destination are called by
/// the caller's thread only. When the source throws, what came before has reached the destination.

/// Encrypts a file piece by piece. Never use a nonce twice under one master key.
class FileSealer {
 public:
  /// Writes the nonce.
  FileSealer(const CipherSuite& suite, const WipedBytes& masterKey, const FileNonce& nonce,
             ByteSink& destination, std::size_t workers = WorkerLimit());

  /// Encrypts all of `source`.
  void Seal(ByteSource& source);
  /// Encrypts a piece, which may not be written before Finish.
  void Seal(Bytes piece);
  /// Writes what is left, and the tag, which ends the file. A damaged one has each bit of the right one
  /// turned round.
  void Finish(FileEnd end = FileEnd::Authentic);

 private:
  ByteSink& m_destination;
  FileLine m_line;
};

/// Seals all of `source`.
void SealFile(const CipherSuite& suite, const WipedBytes& masterKey, const FileNonce& nonce,
              ByteSource& source, ByteSink& destination, std::size_t workers = WorkerLimit());

/// False if the tag doesn't fit or the source is shorter than nonce and tag. Bytes reach the destination
/// before.
bool OpenFile(const CipherSuite& suite, const WipedBytes& masterKey, ByteSource& source,
              ByteSink& destination, std::size_t workers = WorkerLimit());

}  // namespace tarnel
