#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "base/bytes.h"
#include "base/secret.h"
#include "crypto/cipher_suite.h"

namespace Botan {
class MessageAuthenticationCode;
}

namespace tarnel {

/// Encrypts and decrypts the strings of one master key and algorithm, with all key schedules made once.
/// An encrypted string: 8 bytes initial vector, 8 bytes key check, the text in counter mode, 16 bytes tag.
/// May be used by several threads.
class StringCipher {
 public:
  static constexpr std::size_t kIvBytes = 8;
  static constexpr std::size_t kFrontBytes = 16;  ///< initial vector and key check
  static constexpr std::size_t kTagBytes = 16;
  using Iv = std::array<std::uint8_t, kIvBytes>;

  StringCipher(const CipherSuite& suite, const WipedBytes& masterKey);
  ~StringCipher();
  StringCipher(const StringCipher&) = delete;
  StringCipher& operator=(const StringCipher&) = delete;

  /// Never use an initial vector twice: texts under the same one give each other away.
  std::string Seal(const Iv& iv, std::string_view plain);

  /// True if `sealed` begins with a front that was made under this key.
  bool KeyFits(Bytes sealed);

  /// True if `sealed` is whole: front, text and a tag that fits.
  bool IsWhole(Bytes sealed);

  /// The text behind the front, up to the end of `sealed`. Looks at neither key check nor tag.
  WipedText Decrypt(Bytes sealed);

 private:
  using KeyCheck = std::array<std::uint8_t, kFrontBytes - kIvBytes>;
  using Tag = std::array<std::uint8_t, kTagBytes>;

  KeyCheck CheckOf(Bytes iv);
  Tag TagOf(Bytes sealed);
  void Crypt(Bytes iv, Bytes from, std::uint8_t* to);

  std::mutex m_mutex;
  std::unique_ptr<Botan::StreamCipher> m_cipher;
  std::unique_ptr<Botan::MessageAuthenticationCode> m_keyCheck;
  std::unique_ptr<Botan::MessageAuthenticationCode> m_tag;
};

}  // namespace tarnel
