#include "crypto/cipher.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/crypto/memory_streams.h"

namespace tarnel {
namespace {

enum class Kind { String, File };

const Key kKey = Key::OfLengthFields();  // its master key costs nothing
const Key kOtherKey(Secret("another pass phrase"));
constexpr std::size_t kPiece = std::size_t{64} * 1024;
constexpr std::size_t kFront = 16;
constexpr Algorithm kWithoutCipher[] = {Algorithm::Idea, Algorithm::Dese, Algorithm::Rc4, Algorithm{6},
                                        Algorithm{-1}};

std::string SealString(Algorithm algorithm, std::string_view plain, TextForm form) {
  std::string second = "what it held";
  const std::string sealed = CipherEncryptString(algorithm, plain, form, kKey, second);
  EXPECT_EQ(second, "");
  return sealed;
}

std::string OpenString(Algorithm algorithm, std::string_view sealed, TextForm form, Cut cut,
                       const Key& key = kKey) {
  std::string second = "what it held";
  const WipedText plain = CipherDecryptString(algorithm, sealed, form, key, second, cut);
  EXPECT_EQ(second, "");
  return std::string(plain);
}

std::string Seal(Kind kind, Algorithm algorithm, std::string_view plain) {
  if (kind == Kind::String) return SealString(algorithm, plain, TextForm::Raw);
  MemorySource source(plain);
  MemorySink sink;
  std::string second = "what it held";
  EXPECT_TRUE(CipherEncryptFile(algorithm, source, sink, kKey, second));
  EXPECT_EQ(second, "");
  return sink.text;
}

/// The plain bytes behind "intact: ", or "refused".
std::string Open(Kind kind, Algorithm algorithm, std::string_view sealed, const Key& key = kKey) {
  if (kind == Kind::String) {
    const std::string plain = OpenString(algorithm, sealed, TextForm::Raw, Cut::Whole, key);
    return plain.empty() ? "refused" : "intact: " + plain;
  }
  MemorySource source(sealed);
  MemorySink sink;
  std::string second = "what it held";
  const bool intact = CipherDecryptFile(algorithm, source, sink, key, second);
  EXPECT_EQ(second, "");
  return intact ? "intact: " + sink.text : "refused";
}

void ForEachCipher(const std::function<void(Kind, Algorithm)>& check) {
  for (const OfferedAlgorithm& offered : OfferedAlgorithms()) {
    for (const Kind kind : {Kind::String, Kind::File}) {
      SCOPED_TRACE(std::string(offered.name) + (kind == Kind::File ? ", a file" : ", a string"));
      check(kind, offered.algorithm);
    }
  }
}

TEST(Ciphers, BringBackEveryByteAroundEveryBorder) {
  ForEachCipher([](Kind kind, Algorithm algorithm) {
    for (const std::size_t border : {std::size_t{17}, std::size_t{64}, std::size_t{256}, kPiece, 2 * kPiece})
      for (std::size_t length = border - 16; length <= border + 17; length += border < kPiece ? 1 : 4) {
        const std::string plain = SampleText(length);
        const std::string sealed = Seal(kind, algorithm, plain);
        ASSERT_EQ(sealed.size(), length + kFileCipherOverhead);
        ASSERT_EQ(Open(kind, algorithm, sealed), "intact: " + plain) << length;
      }
  });
}

TEST(Ciphers, RefuseWhatWasAlteredCutOrWrittenUnderAnotherKey) {
  ForEachCipher([](Kind kind, Algorithm algorithm) {
    const std::string sealed = Seal(kind, algorithm, "a small text");
    for (std::size_t bit = 0; bit < sealed.size() * 8; ++bit)
      EXPECT_EQ(Open(kind, algorithm, WithFlippedBit(sealed, bit)), "refused") << bit;
    for (std::size_t length = 0; length < sealed.size(); ++length)
      EXPECT_EQ(Open(kind, algorithm, sealed.substr(0, length)), "refused") << length;
    EXPECT_EQ(Open(kind, algorithm, sealed + '\0'), "refused");
    EXPECT_EQ(Open(kind, algorithm, sealed + sealed), "refused");
    EXPECT_EQ(Open(kind, algorithm, sealed, kOtherKey), "refused");
    for (const OfferedAlgorithm& other : OfferedAlgorithms())
      EXPECT_EQ(Open(kind, other.algorithm, sealed) == "refused", other.algorithm != algorithm);
  });
}

TEST(Ciphers, ShareNoKeyStream) {
  ForEachCipher([](Kind kind, Algorithm algorithm) {
    const std::string plain(200, '\0');  // its cipher text is the key stream
    const std::string once = Seal(kind, algorithm, plain);
    const std::string again = Seal(kind, algorithm, plain);
    for (const auto& [from, length] : {std::pair{0U, 8U}, {8U, 8U}, {16U, 200U}, {216U, 16U}})
      EXPECT_NE(once.substr(from, length), again.substr(from, length)) << from;
    EXPECT_NE(once.substr(16, 32), once.substr(48, 32));
  });
}

TEST(EncryptedStrings, CutBehindTheFrontGiveTheirBeginningUnderTheirKeyOnly) {
  const std::string plain = SampleText(100);
  for (const OfferedAlgorithm& offered : OfferedAlgorithms()) {
    const std::string sealed = SealString(offered.algorithm, plain, TextForm::Raw);
    for (std::size_t length = 0; length < sealed.size(); ++length) {
      const std::string cut = sealed.substr(0, length);
      const std::string front = OpenString(offered.algorithm, cut, TextForm::Raw, Cut::Allowed);
      EXPECT_EQ(front.size(), length < kFront ? 0 : length - kFront);
      EXPECT_EQ(front.substr(0, 100), plain.substr(0, front.size()));
      EXPECT_EQ(OpenString(offered.algorithm, cut, TextForm::Raw, Cut::Allowed, kOtherKey), "");
    }
    for (std::size_t bit = 0; bit < sealed.size() * 8; ++bit)
      EXPECT_EQ(CipherKeyFits(offered.algorithm, WithFlippedBit(sealed, bit), TextForm::Raw, kKey),
                bit >= kFront * 8);
    EXPECT_FALSE(CipherKeyFits(offered.algorithm, sealed, TextForm::Raw, kOtherKey));
  }
}

TEST(WithoutACipher, StringsAndFilesAreEmptyAndThatIsNoFailure) {
  for (const Algorithm algorithm : kWithoutCipher) {
    EXPECT_EQ(Seal(Kind::String, algorithm, "text") + Seal(Kind::File, algorithm, "text"), "");
    EXPECT_EQ(OpenString(algorithm, std::string(60, 'A'), TextForm::Base64, Cut::Allowed), "");
    EXPECT_EQ(Open(Kind::File, algorithm, "text"), "intact: ");
    EXPECT_FALSE(CipherKeyFits(algorithm, std::string(60, 'A'), TextForm::Base64, kKey));
  }
  EXPECT_EQ(SealString(Algorithm::Blowfish, "", TextForm::Base64), "");
}

}  // namespace
}  // namespace tarnel
