#include "crypto/rijndael_256.h"

#include <botan/block_cipher.h>
#include <botan/hex.h>
#include <gtest/gtest.h>
#include <mcrypt.h>

#include <string>
#include <vector>

#include "base/bytes.h"
#include "crypto/random.h"
#include "crypto/string_cipher.h"

namespace tarnel {
namespace {

using Buffer = std::vector<std::uint8_t>;

Buffer RandomBytes(std::size_t length) {
  Buffer bytes(length);
  FillRandom(bytes);
  return bytes;
}

/// What the independent implementation of libmcrypt makes of the blocks.
Buffer OracleEncrypts(Buffer key, Buffer blocks) {
  std::string algorithm = "rijndael-256", mode = "ecb";
  const MCRYPT module = mcrypt_module_open(algorithm.data(), nullptr, mode.data(), nullptr);
  mcrypt_generic_init(module, key.data(), static_cast<int>(key.size()), nullptr);
  mcrypt_generic(module, blocks.data(), static_cast<int>(blocks.size()));
  mcrypt_generic_deinit(module);
  mcrypt_module_close(module);
  return blocks;
}

// The digits of pi under the digits of e, from the vectors that Brian Gladman published for all block sizes.
TEST(Rijndael256, EncryptsThePublishedVector) {
  const Buffer plain = Botan::hex_decode("3243f6a8885a308d313198a2e03707344a4093822299f31d0082efa98ec4e6c8");
  for (const RijndaelPath path : RijndaelPaths()) {
    const auto cipher = MakeRijndael256(path);
    cipher->set_key(Botan::hex_decode("2b7e151628aed2a6abf7158809cf4f3c762e7160f38b4da56a784d9045190cfe"));
    Buffer block = plain;
    cipher->encrypt(block);
    EXPECT_EQ(Botan::hex_encode(block, false),
              "a49406115dfb30a40418aafa4869b7c6a886ff31602a7dd19c889dc64f7e4e7a");
    cipher->decrypt(block);
    EXPECT_EQ(block, plain);
  }
}

TEST(Rijndael256, AgreesWithTheOracleForEveryNumberOfBlocks) {
  for (std::size_t blocks = 0; blocks < 70; ++blocks) {
    const Buffer key = RandomBytes(32);
    const Buffer plain = RandomBytes(blocks * kRijndaelBlock);
    const Buffer expected = OracleEncrypts(key, plain);
    for (const RijndaelPath path : RijndaelPaths()) {
      const auto cipher = MakeRijndael256(path);
      cipher->set_key(key);
      Buffer elsewhere(plain.size());
      cipher->encrypt_n(plain.data(), elsewhere.data(), blocks);
      EXPECT_EQ(elsewhere, expected) << cipher->provider();
      cipher->decrypt_n(elsewhere.data(), elsewhere.data(), blocks);
      EXPECT_EQ(elsewhere, plain) << cipher->provider();
    }
  }
}

TEST(Rijndael256, CountsInTheLastEightBytesOfItsBlock) {
  const CipherSuite& suite = *FindCipherSuite(Algorithm::Rijndael256);
  const WipedBytes masterKey(kMasterKeyBytes, 7);
  const StringCipher::Iv iv = {1, 2, 3, 4, 5, 6, 7, 8};
  constexpr std::size_t kBlocks = 300;
  Buffer counters;
  for (std::size_t i = 0; i < kBlocks; ++i) {
    counters.insert(counters.end(), iv.begin(), iv.end());
    counters.resize(counters.size() + 22);
    counters.push_back(static_cast<std::uint8_t>(i >> 8));
    counters.push_back(static_cast<std::uint8_t>(i));
  }
  const WipedBytes keys = DeriveKeys(masterKey, {}, "tarnel string 80", 32);
  const Buffer expected = OracleEncrypts(Buffer(keys.begin(), keys.end()), counters);
  const std::string sealed = StringCipher(suite, masterKey).Seal(iv, std::string(counters.size(), '\0'));
  EXPECT_EQ(sealed.substr(StringCipher::kFrontBytes, expected.size()), AsText(expected));
}

}  // namespace
}  // namespace tarnel
