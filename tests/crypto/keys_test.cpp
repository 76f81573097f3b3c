#include "crypto/keys.h"

#include <botan/hex.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <thread>

#include "crypto/base64.h"
#include "crypto/cipher.h"
#include "crypto/cipher_suite.h"
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
    {Algorithm::Blowfish, "AQIDBAUGBwjtb6Odus7MZe2zj+JDSAitHKaT6yO+scFs/NZB4fd4O77PDLZSny6LDoAuJz9z5b2bXw==",
     "AAECAwQFBgcICQoLDA0OD0NCa0aTwnqSGgnjfwlBeAspTagkVNJZXLlEHvuszTlZvuZ6A5ZDKMpFQ6pHbwRi8OjOa3tRL21SSgFZkD6"
     "vRiQtRT8="},
    {Algorithm::Cast5, "AQIDBAUGBwgidlAu07EFeEccRRvNSwhkHKHmJpOTx3skoRPsEnsWNpan9wJ+fhk7O+kQGvmvBaAktQ==",
     "AAECAwQFBgcICQoLDA0OD51b226uKj7LJZJ1oLolPd/+97Tgt+TFl8P9yk9LM5XUCuvO6p5B2bOW/"
     "893L8CVAUgKfRib4W8Y8KUeUr+7628Pkqo="},
    {Algorithm::Des, "AQIDBAUGBwgGz/bN3VGy5L4mm/xJRJKYjE/7esxrXv3gMQEuHUAPT6qYj4S2umRMjriAmU1S/a7lag==",
     "AAECAwQFBgcICQoLDA0OD/RAZvdbiY6kwOgGmBZdXjOD5ZZWSSzIJPsAku0A/IyXMrsS4k3rH1FpvyfRBC5zu8CgYELGVf/"
     "Fg7ukrUWVM+Aq2hc="},
    {Algorithm::Serpent256,
     "AQIDBAUGBwiWsn+Qa9Tu8Om6BYPmwEi/+kj9QT7d+OCcvK7Yw6+MVnDSh86Gpj6RyOs0uzElVFFulg==",
     "AAECAwQFBgcICQoLDA0ODxIdKPkZjMIoGKusQlmbKU/mthz39m31CkDxEkYTmJeISMbUxHg3shb+oBq/"
     "WR++6KE0irKL9o2mg8i3ZPX9nEZx0t0="},
    {Algorithm::Rijndael256,
     "AQIDBAUGBwgxtuHcM5/ua3pg/cOLPm0ggODj/Qyy/CSIMihco0C+dINIVkULxOZ4nQW88Qu7LU+XOA==",
     "AAECAwQFBgcICQoLDA0OD1ileVj/j0ia6iekSQ2OguGRz5CYXkk54pUaJn96lz5rjCjeKh0kftCRZVwrHYchS/"
     "f0UmofZhsmbCB5URvInM8hIZo="},
    {Algorithm::TripleDes, "AQIDBAUGBwiVU9qxtM6jsk0yo1sobJfqwPpK14xcSnRseWEfXPq4XKWVptRrwS9mag3X3z6TaNXDPQ==",
     "AAECAwQFBgcICQoLDA0OD6vRnFnqmqgKOhKxzPF9Nf+satyADopk+nqvrb4s/"
     "eC1+2hfrFT7JQzKUQY++o+RGT2bXoHXPzvEpUlyndNsvYybLfg="},
    {Algorithm::Twofish, "AQIDBAUGBwjgpPkjZS+Gy7r2rlETjeBUwYdrmmZ0Y6ZVdeT6Jg5+XhGM09L9oFz+fyxKUBbhOHV90Q==",
     "AAECAwQFBgcICQoLDA0OD4ZNRAeG4IqsoAjWANbX8qLP8IfWS33ER106Kusi8af5efVuQ6SJ4bEYmYTRUbr/"
     "3pRtCDsHU7yO3JQ+skw4maa7KLs="},
};

const Key kPinnedPhrase(Secret("a pinned pass phrase"));
const Key kTrailer = Key::OfLengthFields();

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
  const WipedBytes masterKey = kTrailer.Master();
  EXPECT_EQ(Botan::hex_encode(masterKey.data(), masterKey.size(), false),
            "551aaf100535fc218cb95f0a2d772490620c796d20448a514d41e9edd099139b");
  StringCipher cipher(*FindCipherSuite(Algorithm::Blowfish), masterKey);
  EXPECT_EQ(
      Base64Encode(AsBytes(cipher.Seal({0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17}, "1234 bytes"))),
      "EBESExQVFhd2QmsxUOQPcrlr6eA8y+IoPBf+ks/3sQuhXSg5oDxrNz30");
}

int YieldsToPrepare(const Key& key) {
  int yields = 0;
  key.Prepare([&] { ++yields; });
  return yields;
}

TEST(Keys, AreDerivedOnceAndSharedByThoseOfOnePhraseThatLiveAtOneTime) {
  std::optional<Key> first(Secret("some phrase"));
  EXPECT_GT(YieldsToPrepare(*first), 0);
  const Key second(Secret("some phrase"));
  EXPECT_EQ(YieldsToPrepare(second), 0);
  EXPECT_TRUE(second.IsOf(Secret("some phrase")));
  const Key other(Secret("some phrasf"));
  std::string secondKey;
  CipherEncryptString(Algorithm::Des, "text", TextForm::Raw, other, secondKey);
  EXPECT_EQ(YieldsToPrepare(other), 0) << "the first use by a cipher counts";
  EXPECT_FALSE(other == second || other.IsOf(Secret("some phrase")));
  first.emplace(Secret("a third phrase"));
  first.emplace(Secret("a fourth phrase"));
  EXPECT_GT(YieldsToPrepare(Key(Secret("a third phrase"))), 0) << "nothing is kept that nobody holds";
}

TEST(Keys, AreDerivedBeforehandByAStart) {
  std::optional<Key> dying(Secret("a phrase whose handle dies at once"));
  dying->Start();
  dying.reset();
  const Key started(Secret("a phrase that is started"));
  started.Start();
  started.Start();
  EXPECT_EQ(started.Master(), Key(Secret("a phrase that is started")).Master());
  EXPECT_EQ(YieldsToPrepare(started), 0);
}

TEST(Keys, MayBeUsedOnAnyThreadWhileTheyArePrepared) {
  const Key key(Secret("a phrase of threads"));
  const auto work = [&key] {
    std::string second;
    for (int i = 0; i < 100; ++i) {
      const std::string text = CipherEncryptString(Algorithm::Blowfish, "12", TextForm::Raw, key, second);
      EXPECT_EQ(CipherDecryptString(Algorithm::Blowfish, text, TextForm::Raw, key, second, Cut::Whole), "12");
    }
  };
  const std::jthread first(work), second(work);
  key.Prepare(work);
}

TEST(Keys, AYieldThatThrowsEndsThePreparation) {
  const Key key(Secret("some phrase"));
  EXPECT_THROW(key.Prepare([] { throw 1; }), int);
}

TEST(Keys, AreAllWipedAtOnceWhoeverHoldsThem) {
  const Key key(Secret("a phrase that goes"));
  const WipedBytes& master = key.Master();
  const std::weak_ptr<StringCipher> cipher = key.Strings(*FindCipherSuite(Algorithm::Serpent256));
  const auto isWiped = [&] {
    WipeAllKeys();
    return cipher.expired() && key.IsOf(Secret()) && master == WipedBytes(master.size());
  };
  EXPECT_EXIT(std::_Exit(isWiped() ? 0 : 1), testing::ExitedWithCode(0), "");  // other tests hold keys, too
}

TEST(Keys, APersonsPhraseIsNeverThePublicKeyOfLengthFields) {
  EXPECT_NE(Key(Secret("TarnKey")).Master(), Key::OfLengthFields().Master());
}

}  // namespace
}  // namespace tarnel
