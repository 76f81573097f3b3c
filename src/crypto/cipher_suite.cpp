#include "crypto/cipher_suite.h"

#include <botan/ctr.h>
#include <botan/hkdf.h>
#include <botan/hmac.h>
#include <botan/sha2_32.h>

#include <algorithm>
#include <array>
#include <string>

#include "crypto/rijndael_256.h"

namespace tarnel {
namespace {

constexpr std::string_view kRijndael = "Rijndael-256";

constexpr std::size_t kHalfMebibyte = std::size_t{512} * 1024;

constexpr std::array kSuites = std::to_array<CipherSuite>({
    {Algorithm::Blowfish, 18, 19, "Blowfish", 56, kHalfMebibyte},
    {Algorithm::TripleDes, 55, 56, "TripleDES", 24, kHalfMebibyte},
    {Algorithm::Des, 51, 52, "DES", 8, kHalfMebibyte},
    {Algorithm::Cast5, 34, 35, "CAST-128", 16, kHalfMebibyte},
    {Algorithm::Serpent256, 96, 96, "Serpent", 32, kHalfMebibyte},
    {Algorithm::Rijndael256, 80, 80, kRijndael, 32, 8 * kHalfMebibyte},
    {Algorithm::Twofish, 64, 64, "Twofish", 32, kHalfMebibyte},
});

constexpr std::size_t kCounterBytes = 8;

std::unique_ptr<Botan::BlockCipher> MakeBlockCipher(std::string_view name) {
  if (name == kRijndael) return MakeRijndael256(RijndaelPaths().back());
  return Botan::BlockCipher::create_or_throw(std::string(name));
}

}  // namespace

const CipherSuite* FindCipherSuite(Algorithm algorithm) {
  const auto found = std::ranges::find(kSuites, algorithm, &CipherSuite::algorithm);
  return found == kSuites.end() ? nullptr : &*found;
}

std::unique_ptr<Botan::StreamCipher> MakeCounterMode(const CipherSuite& suite) {
  return std::make_unique<Botan::CTR_BE>(MakeBlockCipher(suite.blockCipher).release(), kCounterBytes);
}

WipedBytes DeriveKeys(const WipedBytes& masterKey, Bytes salt, std::string_view info, std::size_t length) {
  const Botan::HKDF function(new Botan::HMAC(new Botan::SHA_256));
  WipedBytes keys(length);
  function.kdf(keys.data(), keys.size(), masterKey.data(), masterKey.size(), salt.data(), salt.size(),
                AsBytes(info).data(), info.size());
  return keys;
}

}  // namespace tarnel
