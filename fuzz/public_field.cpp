#include "fuzz/public_field.h"

#include "carrier/format.h"
#include "crypto/base64.h"
#include "crypto/cipher.h"
#include "crypto/cipher_suite.h"
#include "crypto/string_cipher.h"

namespace tarnel::fuzz {

std::string SealWith(Algorithm algorithm, const Key& key, std::string_view plain, std::uint8_t nonce) {
  StringCipher::Iv iv{};
  iv[0] = nonce;
  return Base64Encode(AsBytes(key.Strings(*FindCipherSuite(algorithm))->Seal(iv, plain)));
}

std::string PublicField(std::string_view text, std::uint8_t nonce) {
  std::string field = SealWith(Algorithm::Blowfish, Key::OfLengthFields(), text, nonce);
  field.resize(kLengthFieldSize, ' ');
  return field;
}

}  // namespace tarnel::fuzz
