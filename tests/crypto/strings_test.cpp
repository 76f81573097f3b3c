#include <gtest/gtest.h>

#include "crypto/base64.h"
#include "crypto/cipher.h"
#include "crypto/random.h"
#include "tests/crypto/every_cipher.h"
#include "tests/crypto/memory_streams.h"

namespace tarnel {
namespace {

const Secret kKey(kTrailerPassPhrase);  // its master key costs nothing
const Secret kOtherKey("another pass phrase");
constexpr std::size_t kFront = 16;

std::string Encrypt(Algorithm algorithm, std::string_view plain, TextForm form) {
  std::string second;
  return CipherEncryptString(algorithm, plain, form, kKey, second);
}

std::string Decrypt(Algorithm algorithm, std::string_view text, TextForm form, Cut cut,
                    const Secret& key = kKey) {
  std::string second;
  return std::string(CipherDecryptString(algorithm, text, form, key, second, cut));
}

class Strings : public testing::TestWithParam<Algorithm> {
 protected:
  Algorithm algorithm = GetParam();
};

TEST_P(Strings, ComeBackWholeWhateverTheirLength) {
  for (std::size_t length = 1; length < 300; ++length) {
    const std::string plain = SampleText(length);
    for (const TextForm form : {TextForm::Raw, TextForm::Base64})
      ASSERT_EQ(Decrypt(algorithm, Encrypt(algorithm, plain, form), form, Cut::Whole), plain) << length;
  }
}

TEST_P(Strings, CutAnywhereBehindTheFrontGiveTheirBeginning) {
  const std::string plain = SampleText(100);
  const std::string sealed = Encrypt(algorithm, plain, TextForm::Raw);
  for (std::size_t length = 0; length < sealed.size(); ++length) {
    const std::string cut = sealed.substr(0, length);
    EXPECT_EQ(Decrypt(algorithm, cut, TextForm::Raw, Cut::Whole), "");
    const std::string front = Decrypt(algorithm, cut, TextForm::Raw, Cut::Allowed);
    EXPECT_EQ(front.size(), length < kFront ? 0 : length - kFront);
    EXPECT_EQ(front.substr(0, plain.size()), plain.substr(0, front.size()));
  }
}

TEST_P(Strings, WithAFlippedBitAreNeverTakenForWhole) {
  const std::string sealed = Encrypt(algorithm, "?Fnm=<a.txt>", TextForm::Raw);
  for (std::size_t bit = 0; bit < sealed.size() * 8; ++bit) {
    const std::string altered = WithFlippedBit(sealed, bit);
    EXPECT_EQ(Decrypt(algorithm, altered, TextForm::Raw, Cut::Whole), "") << bit;
    EXPECT_EQ(CipherKeyFits(algorithm, altered, TextForm::Raw, kKey), bit >= kFront * 8) << bit;
  }
}

TEST_P(Strings, OfAnotherKeyOrAlgorithmAreForeign) {
  const std::string text = Encrypt(algorithm, "?Fnm=<a.txt>", TextForm::Base64);
  for (const Cut cut : {Cut::Allowed, Cut::Whole}) {
    EXPECT_EQ(Decrypt(algorithm, text, TextForm::Base64, cut, kOtherKey), "");
    for (const Algorithm other : EveryCipher()) {
      if (other == algorithm) continue;
      EXPECT_EQ(Decrypt(other, text, TextForm::Base64, cut), "");
    }
  }
  EXPECT_TRUE(CipherKeyFits(algorithm, text, TextForm::Base64, kKey));
  EXPECT_FALSE(CipherKeyFits(algorithm, text, TextForm::Base64, kOtherKey));
}

TEST_P(Strings, DifferEachTimeAndGrowByThirtyTwoBytes) {
  const std::string once = Encrypt(algorithm, "the same text", TextForm::Raw);
  const std::string again = Encrypt(algorithm, "the same text", TextForm::Raw);
  EXPECT_EQ(once.size(), 13U + 32U);
  for (const auto& [from, length] : {std::pair{0U, 8U}, {8U, 8U}, {16U, 13U}, {29U, 16U}})
    EXPECT_NE(once.substr(from, length), again.substr(from, length)) << from;
}

INSTANTIATE_TEST_SUITE_P(Every, Strings, testing::ValuesIn(EveryCipher()), TestNameOf);

TEST(StringsInBase64, FortyCharactersOfAFieldKeepFourteen) {
  const std::string field = "1234567890" + std::string(30, '\xC8');
  const std::string kept = Encrypt(Algorithm::Blowfish, field, TextForm::Base64).substr(0, 40);
  EXPECT_EQ(Decrypt(Algorithm::Blowfish, kept, TextForm::Base64, Cut::Allowed), field.substr(0, 14));
}

TEST(StringsInBase64, ReadAlikeWithALineEndOrAnEqualsSignAnywhere) {
  const std::string text = Encrypt(Algorithm::Twofish, "short", TextForm::Base64);
  for (const std::string_view nothing : {"\r\n", "=", "==\r\n\r\n====", "=\r\n=\r\n=\r\n=\r\n=\r\n=\r\n"})
    for (std::size_t place = 0; place <= text.size(); ++place) {
      const std::string other = std::string(text).insert(place, nothing);
      EXPECT_EQ(Decrypt(Algorithm::Twofish, other, TextForm::Base64, Cut::Whole), "short") << place;
      EXPECT_TRUE(CipherKeyFits(Algorithm::Twofish, other, TextForm::Base64, kKey)) << place;
    }
}

TEST(StringsInBase64, RandomFieldsAreNoStrings) {
  for (int i = 0; i < 2000; ++i) {
    std::string field(40, '\0');
    for (char& c : field)
      c = static_cast<char>(RandomBetween(-128, 127));
    EXPECT_EQ(Decrypt(Algorithm::Blowfish, field, TextForm::Base64, Cut::Allowed), "");
    EXPECT_EQ(Decrypt(Algorithm::Blowfish, field, TextForm::Raw, Cut::Allowed), "");
  }
}

TEST(StringsWithoutCipher, AreEmptyAndSoIsTheEmptyString) {
  for (const int number : {1, 4, 12, 6, -1, 99}) {
    EXPECT_EQ(Encrypt(Algorithm{number}, "text", TextForm::Base64), "");
    EXPECT_EQ(Decrypt(Algorithm{number}, std::string(60, 'A'), TextForm::Base64, Cut::Allowed), "");
    EXPECT_FALSE(CipherKeyFits(Algorithm{number}, std::string(60, 'A'), TextForm::Base64, kKey));
  }
  EXPECT_EQ(Encrypt(Algorithm::Blowfish, "", TextForm::Base64), "");
  EXPECT_EQ(Decrypt(Algorithm::Blowfish, "", TextForm::Base64, Cut::Allowed), "");
}

TEST(SecondKeyString, IsEmptyAfterEveryCall) {
  MemorySink sink;
  for (const Algorithm algorithm : {Algorithm::Cast5, Algorithm::Rc4}) {
    const auto emptied = [](auto call) {
      std::string second = "what it held";
      call(second);
      return second.empty();
    };
    MemorySource source("x");
    EXPECT_TRUE(emptied([&](auto& s) { CipherEncryptString(algorithm, "", TextForm::Raw, kKey, s); }));
    EXPECT_TRUE(
        emptied([&](auto& s) { CipherDecryptString(algorithm, "", TextForm::Raw, kKey, s, Cut::Whole); }));
    EXPECT_TRUE(emptied([&](auto& s) { CipherEncryptFile(algorithm, source, sink, kKey, s); }));
    EXPECT_TRUE(emptied([&](auto& s) { CipherDecryptFile(algorithm, source, sink, kKey, s); }));
  }
}

}  // namespace
}  // namespace tarnel
