#include "fuzz/public_field.h"

#include "carrier/format.h"
#include "crypto/base64.h"
#include "crypto/cipher.h"
#include "crypto/key_ring.h"

namespace tarnel::fuzz {

std::string SealWith(Algorithm algorithm, const Secret& key, std::string_view plain, std::uint8_t nonce) {
  StringCipher::Iv iv{};
  iv[0] = nonce;
  return Base64Encode(AsBytes(StringCipherOf(*FindCipherSuite(algorithm), key)->Seal(iv, plain)));
}

std::string PublicField(std::string_view text, std::uint8_t nonce) {
  std::string field = SealWith(Algorithm::Blowfish, Secret(kTrailerPassPhrase), text, nonce);
  field.resize(kLengthFieldSize, ' ');
  return field;
}

}  // namespace tarnel::fuzz
