#include "crypto/keys.h"

#include <botan/hex.h>
#include <gtest/gtest.h>

#include <thread>

#include "crypto/base64.h"
#include "crypto/cipher.h"
#include "crypto/key_ring.h"
#include "crypto/string_cipher.h"
#include "tests/crypto/memory_streams.h"

namespace tarnel {
namespace {

struct Pinned {
  Algorithm algorithm;
  std::string_view string;
  std::string_view file;
};

// Written once and checked with other implementations of all that goes into them. They have to open for ever.
constexpr Pinned kPinned[] = {
    {Algorithm::Blowfish, "AQIDBAUGBwhOxTpl4VD4OMmPZWbHKuDXpejBnofa9bhYp0rclp5PP+3/5i7EdKfKyd6WUN8sVAOC3A==",
     "AAECAwQFBgcICQoLDA0OD23LPAt76XyLQmsRRAa/aNT7VvcjF6hG/opUnxt09PEbczhfsLzAd6G+FEbFrIBDgNw7fLSLKjCSO6Bgq/"
     "F1h3lcvIM="},
    {Algorithm::Cast5, "AQIDBAUGBwiwIEULzZf/e0BguaZdbSa905Bx6P6tW+9OEEbl6zLOC8yD9NYLti4Lj+HU7WF8IWC1aw==",
     "AAECAwQFBgcICQoLDA0OD1bsOzQI/"
     "zmuCElE3hXPZH2CRtc9fL40+H2BCx0PCHnGfPpUsRstZx2hOOJRklDYWCUiuO1ebNwwJhYy2Tj0wrEQuBA="},
    {Algorithm::Des, "AQIDBAUGBwjfaJjcpYRNSNMMkKmzAt96gqM0J2fGgxhg/B+un+DHj466BG4C6MV1dJhu4A6h1/RAUA==",
     "AAECAwQFBgcICQoLDA0OD3hdQTvH6j55DU2KAJJb5W8pavwf1DM9z+rmgJe7AY2pkGJvjkNY/"
     "1DHguiffRVHPnhYFAQEF4anUDEyd9b4qrgdKec="},
    {Algorithm::Serpent256,
     "AQIDBAUGBwi7lp1lE8GYNSVV773Nz76jVle5bcu/w2Wq0htiOQvaHWBHfRzhlM+1LHFnSVPxAXVfsw==",
     "AAECAwQFBgcICQoLDA0OD6mLTX6lGAsvueVpnch3rMTYovlrtP+UbN+"
     "934NzhALcTCmkpbVo9Zgvhff61X1nm6IiA52kFuavcUOZji9jiSF/8Yw="},
    {Algorithm::Rijndael256,
     "AQIDBAUGBwjGeZiMDwgwT5SYX0bnWv+gTUbeiTgRMksKD70Ts0zEhnuMrzEvg3Y4OUDMv/JeTICdPw==",
     "AAECAwQFBgcICQoLDA0OD/z/2anK+tzPgZWOUr3GWo0ipMs1Zqsucz0tzzK0H6xBwiRUr8co6ACzos0enIONTKtNN6EvQfM6GS/"
     "bhc5dBh/htps="},
    {Algorithm::TripleDes, "AQIDBAUGBwjPRxfi4z3LcPtSCArFIl8y2jyAqvzz4hpcZC6lmyZhhnEWw7yeCyKeHjtJhutI+F204g==",
     "AAECAwQFBgcICQoLDA0OD7mn7ma8zfBLEO8HSmggqm0n4iF8hJkI7tEmZnim4RrAOdLklF9r93U9iivSp/rI45X0L5ATkC2o+SNIeN/"
     "OxQW+9Rs="},
    {Algorithm::Twofish, "AQIDBAUGBwi6YETBOcrwmh/Yv8DJ8ogmrwQOWFYVa2PDV2XbK1UZO3rP50SlvW0I66mkaWxGDJAuJQ==",
     "AAECAwQFBgcICQoLDA0OD7uXdgfWaWe0TOHaqeVjhfVEmZdI6iApAk6euIHaiQF12rzS8814hVQrkiIVu/"
     "ig+whhuEXHoDuUrW6xRpBmC4RWffw="},
};

const Secret kPinnedPhrase("a pinned pass phrase");
const Secret kTrailer(kTrailerPassPhrase);

TEST(PinnedTexts, OpenForEver) {
  for (const auto& [algorithm, string, file] : kPinned) {
    std::string second;
    EXPECT_EQ(CipherDecryptString(algorithm, string, TextForm::Base64, kPinnedPhrase, second, Cut::Whole),
              "?Fnm=<pinned.txt>?Fls=<13>")
        << AlgorithmName(algorithm);
    MemorySource source(Base64Decode(file));
    MemorySink sink;
    EXPECT_TRUE(CipherDecryptFile(algorithm, source, sink, kPinnedPhrase, second))
        << AlgorithmName(algorithm);
    EXPECT_EQ(sink.text, "a pinned file of more than two blocks of any cipher");
  }
}

TEST(PinnedTexts, TheExampleOfTheDescriptionIsRight) {
  const WipedBytes masterKey = MasterKeyOf(kTrailer);
  EXPECT_EQ(Botan::hex_encode(masterKey.data(), masterKey.size(), false),
            "551aaf100535fc218cb95f0a2d772490620c796d20448a514d41e9edd099139b");
  StringCipher cipher(*FindCipherSuite(Algorithm::Blowfish), masterKey);
  EXPECT_EQ(
      Base64Encode(AsBytes(cipher.Seal({0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17}, "1234 bytes"))),
      "EBESExQVFhd2QmsxUOQPcrlr6eA8y+IoPBf+ks/3sQuhXSg5oDxrNz30");
}

TEST(Hkdf, AgreesWithTheVectorsOfRfc5869) {
  const WipedBytes secret(22, 0x0B);
  const auto salt = Botan::hex_decode("000102030405060708090a0b0c");
  const WipedBytes salted = DeriveKeys(secret, salt, "\xF0\xF1\xF2\xF3\xF4\xF5\xF6\xF7\xF8\xF9", 42);
  EXPECT_EQ(Botan::hex_encode(salted.data(), salted.size(), false),
            "3cb25f25faacd57a90434f64d0362f2a2d2d0a90cf1a5a4c5db02d56ecc4c5bf34007208d5b887185865");
  const WipedBytes plain = DeriveKeys(secret, {}, "", 42);
  EXPECT_EQ(Botan::hex_encode(plain.data(), plain.size(), false),
            "8da4e775a563c18f715f802a063c5a31b8a11f5c5ee1879ec3454e5f3c738d2d9d201395faa4b61a96c8");
}

int YieldsToPrepare(const Secret& phrase) {
  int yields = 0;
  PrepareKey(phrase, [&] { ++yields; });
  return yields;
}

TEST(Keys, AreDerivedOncePerPhraseUntilForgotten) {
  ForgetKeys();
  EXPECT_GT(YieldsToPrepare(Secret("some phrase")), 0);
  EXPECT_EQ(YieldsToPrepare(Secret("some phrase")), 0);
  EXPECT_GT(YieldsToPrepare(Secret("some phrasf")), 0);
  ForgetKeys();
  std::string second;
  CipherEncryptString(Algorithm::Des, "text", TextForm::Raw, Secret("some phrase"), second);
  EXPECT_EQ(YieldsToPrepare(Secret("some phrase")), 0) << "the first use by a cipher counts";
  EXPECT_GT(YieldsToPrepare(Secret("some phrasf")), 0);
}

TEST(Keys, MayBeForgottenAndUsedOnAnyThreadWhileTheyArePrepared) {
  const auto work = [] {
    std::string second;
    for (int i = 0; i < 100; ++i) {
      const std::string text =
          CipherEncryptString(Algorithm::Blowfish, "12", TextForm::Raw, kTrailer, second);
      EXPECT_EQ(CipherDecryptString(Algorithm::Blowfish, text, TextForm::Raw, kTrailer, second, Cut::Whole),
                "12");
      ForgetKeys();
    }
  };
  {
    const std::jthread first(work), second(work);
    PrepareKey(Secret("some phrase"), work);
  }
  PrepareKey(Secret("some phrase"), ForgetKeys);
  EXPECT_EQ(YieldsToPrepare(Secret("some phrase")), 0);
}

TEST(Keys, AYieldThatThrowsEndsThePreparation) {
  ForgetKeys();
  EXPECT_THROW(PrepareKey(Secret("some phrase"), [] { throw 1; }), int);
  EXPECT_GT(YieldsToPrepare(Secret("some phrase")), 0);
}

}  // namespace
}  // namespace tarnel
