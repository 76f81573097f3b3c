#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/bytes.h"
#include "base/secret.h"
#include "crypto/cipher_suite.h"
#include "crypto/file_mac.h"

namespace tarnel {

inline constexpr std::size_t kFileNonceBytes = 16;
using FileNonce = std::array<std::uint8_t, kFileNonceBytes>;

enum class FileWay { Seal, Open };

/// The bytes of one file on their way through cipher and tag to a destination, in which they arrive in their
/// order, in pieces as large as those that came, and by calls on the caller's thread.
///
/// The first bytes of a file (see CipherSuite), and all of it where `workers` is 0, arrive as they come. From
/// there on up to `workers` threads encrypt or decrypt blocks of four pieces side by side while the caller
/// fills further blocks; after as many blocks as there is memory for, the caller hands the oldest on before
/// it goes on. So the destination gets the same calls in the same order, however many threads there are; only
/// the source is read ahead, always as far. Memory is about half a mebibyte for a worker.
class FileLine {
 public:
  /// When opening, the last 16 bytes that came are held back, as they may be the tag.
  FileLine(FileWay way, const CipherSuite& suite, const WipedBytes& masterKey, const FileNonce& nonce,
           ByteSink& destination, std::size_t workers);
  /// What has not arrived is dropped.
  ~FileLine();

  /// Where the next bytes go: one piece. When opening the first is longer by a tag.
  MutableBytes Room();
  /// So many bytes came into the room. Less than it holds, but not none, makes a piece of its own. Throws
  /// what the destination throws.
  void Add(std::size_t length);
  /// Lets everything that came arrive. To be called behind the last Add, and when the source throws.
  void Drain();

  /// Behind Drain: what came last and was held back. Shorter than a tag if less than that came in all.
  Bytes HeldBack() const;
  /// Behind Drain, once: the tag over nonce and cipher text.
  FileTag MakeTag();

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace tarnel
