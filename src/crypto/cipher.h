#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/bytes.h"
#include "base/secret.h"
#include "crypto/algorithm.h"
#include "crypto/keys.h"

namespace tarnel {

/// The one door to the ciphers.
///
/// Every operation takes a key and, behind it, a second key string. That string is set to empty before
/// anything else happens; it is a parameter for the sake of the callers' interfaces only. An algorithm
/// without a cipher gives the empty string, and for files true with nothing written. The first use of a pass
/// phrase derives its key, which takes a fifth of a second; Key::Prepare does that beforehand without
/// freezing a window.

/// Whether anything can be encrypted with it; of some only the name is known.
bool HasCipher(Algorithm algorithm);

enum class TextForm { Raw, Base64 };

/// The encrypted form of `plain`, raw or as Base64 with its line ends. Empty for empty.
/// Two calls give different texts. Throws Error (DeviceIo) if the system gives no random bytes.
std::string CipherEncryptString(Algorithm algorithm, std::string_view plain, TextForm form, const Key& key,
                                std::string& secondKey);

/// How much of an encrypted string the caller holds.
/// Whole: all of it. A last part that is no fitting tag makes the result empty.
/// Allowed: its front, such as a trailer field keeps. Every byte behind the 16th counts as text and nothing
/// is authenticated; of a text that was not cut at all, the tag's 16 bytes come out as rubbish behind the
/// plain text.
enum class Cut { Allowed, Whole };

/// The plain text, or empty on any failure: a wrong key, bytes that are no encrypted string, a failed tag.
WipedText CipherDecryptString(Algorithm algorithm, std::string_view cipherText, TextForm form, const Key& key,
                              std::string& secondKey, Cut cut);

/// True if the text was written under this key, whether or not it is whole and unharmed. What tells a damaged
/// record from a foreign one.
bool CipherKeyFits(Algorithm algorithm, std::string_view cipherText, TextForm form, const Key& key);

/// Reads `source` to its end and writes its encrypted form: 16 bytes of nonce, as many bytes as the source
/// had, 16 bytes of tag. Errors of source and sink, and of the random generator, pass through. True when all
/// is written.
bool CipherEncryptFile(Algorithm algorithm, ByteSource& source, ByteSink& destination, const Key& key,
                       std::string& secondKey);

enum class FileEnd { Authentic, Damaged };

/// CipherEncryptFile for contents that another stage hands on, such as a decryption under the old key. The
/// second key string is emptied at the beginning; without a cipher nothing is written.
class EncryptingSink : public ByteSink {
 public:
  EncryptingSink(Algorithm algorithm, ByteSink& destination, const Key& key, std::string& secondKey);
  ~EncryptingSink() override;
  void Write(Bytes plain) override;

  /// Writes the tag. Call it once, behind the last Write; without it the encrypted file is not complete.
  /// Damaged: a tag that never fits, for contents that must not pass for authentic.
  void Finish(FileEnd end = FileEnd::Authentic);

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

/// The reverse of CipherEncryptFile. False if the source is no encrypted file under this key or was altered.
/// Plain bytes reach the destination before that is known: on false the caller throws them away.
bool CipherDecryptFile(Algorithm algorithm, ByteSource& source, ByteSink& destination, const Key& key,
                       std::string& secondKey);

/// Bytes that encryption adds to a file.
inline constexpr std::int64_t kFileCipherOverhead = 32;

}  // namespace tarnel
