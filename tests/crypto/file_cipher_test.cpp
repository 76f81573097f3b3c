#include <gtest/gtest.h>

#include "base/error.h"
#include "crypto/cipher.h"
#include "tests/crypto/every_cipher.h"
#include "tests/crypto/memory_streams.h"

namespace tarnel {
namespace {

const Secret kKey(kTrailerPassPhrase);
const Secret kOtherKey("another pass phrase");
constexpr std::size_t kPiece = std::size_t{64} * 1024;

std::string Encrypt(Algorithm algorithm, std::string_view plain) {
  MemorySource source(plain);
  MemorySink sink;
  std::string second;
  EXPECT_TRUE(CipherEncryptFile(algorithm, source, sink, kKey, second));
  return sink.text;
}

/// The plain bytes, or "refused".
std::string Decrypt(Algorithm algorithm, std::string_view sealed, const Secret& key = kKey) {
  MemorySource source(sealed);
  MemorySink sink;
  std::string second;
  return CipherDecryptFile(algorithm, source, sink, key, second) ? sink.text : "refused";
}

class EncryptedFiles : public testing::TestWithParam<Algorithm> {
 protected:
  Algorithm algorithm = GetParam();
};

TEST_P(EncryptedFiles, ComeBackByteForByteAroundEveryBorder) {
  for (const std::size_t border : {std::size_t{16}, std::size_t{64}, kPiece, 2 * kPiece})
    for (std::size_t length = border - 16; length <= border + 17; ++length) {
      const std::string plain = SampleText(length);
      const std::string sealed = Encrypt(algorithm, plain);
      ASSERT_EQ(sealed.size(), length + kFileCipherOverhead);
      ASSERT_TRUE(Decrypt(algorithm, sealed) == plain) << length;
      if (length >= kPiece) length += 15;
    }
}

TEST_P(EncryptedFiles, WithAFlippedBitAreRefused) {
  const std::string sealed = Encrypt(algorithm, "a small file");
  for (std::size_t bit = 0; bit < sealed.size() * 8; ++bit)
    EXPECT_EQ(Decrypt(algorithm, WithFlippedBit(sealed, bit)), "refused") << bit;
}

TEST_P(EncryptedFiles, OfAnotherLengthAreRefused) {
  const std::string sealed = Encrypt(algorithm, "a small file");
  for (std::size_t length = 0; length < sealed.size(); ++length)
    EXPECT_EQ(Decrypt(algorithm, sealed.substr(0, length)), "refused") << length;
  EXPECT_EQ(Decrypt(algorithm, sealed + '\0'), "refused");
  EXPECT_EQ(Decrypt(algorithm, sealed + sealed), "refused");
}

TEST_P(EncryptedFiles, OfAnotherKeyOrAlgorithmAreRefused) {
  const std::string sealed = Encrypt(algorithm, "a small file");
  EXPECT_EQ(Decrypt(algorithm, sealed, kOtherKey), "refused");
  for (const Algorithm other : EveryCipher()) {
    if (other == algorithm) continue;
    EXPECT_EQ(Decrypt(other, sealed), "refused");
  }
}

TEST_P(EncryptedFiles, ShareNoKeyStream) {
  const std::string plain(200, '\0');  // its cipher text is the key stream
  const std::string once = Encrypt(algorithm, plain);
  const std::string again = Encrypt(algorithm, plain);
  EXPECT_NE(once.substr(0, 16), again.substr(0, 16));
  EXPECT_NE(once.substr(16, 200), again.substr(16, 200));
  EXPECT_NE(once.substr(16, 32), once.substr(48, 32));
}

INSTANTIATE_TEST_SUITE_P(Every, EncryptedFiles, testing::ValuesIn(EveryCipher()), TestNameOf);

TEST(EncryptedFilesAnyhow, WithoutACipherAreNotWrittenAndThatIsNoFailure) {
  for (const int number : {1, 4, 12, 7}) {
    EXPECT_EQ(Encrypt(Algorithm{number}, "text"), "");
    EXPECT_EQ(Decrypt(Algorithm{number}, "text"), "");
    MemorySink sealed;
    std::string second;
    EncryptingSink sink(Algorithm{number}, sealed, kKey, second);
    sink.Write(AsBytes("text"));
    sink.Finish();
    EXPECT_EQ(sealed.text, "");
  }
}

TEST(EncryptedFilesAnyhow, AlteredInALatePieceAreRefused) {
  const std::string sealed = Encrypt(Algorithm::Rijndael256, SampleText(3 * kPiece));
  for (std::size_t bit = 3; bit < sealed.size() * 8; bit += kPiece + 1)
    EXPECT_EQ(Decrypt(Algorithm::Rijndael256, WithFlippedBit(sealed, bit)), "refused") << bit;
}

TEST(EncryptedFilesAnyhow, MayComeFromAnotherStageInPiecesOfAnySize) {
  const std::string plain = SampleText(2 * kPiece + 3);
  for (const std::size_t step : {std::size_t{999}, kPiece - 1, plain.size()}) {
    MemorySink sealed;
    std::string second = "what it held";
    EncryptingSink sink(Algorithm::Rijndael256, sealed, kKey, second);
    for (std::size_t at = 0; at < plain.size(); at += step)
      sink.Write(AsBytes(plain).subspan(at, std::min(step, plain.size() - at)));
    EXPECT_EQ(Decrypt(Algorithm::Rijndael256, sealed.text), "refused");
    sink.Finish();
    EXPECT_TRUE(Decrypt(Algorithm::Rijndael256, sealed.text) == plain) << step;
    EXPECT_EQ(second, "");
  }
}

class FullSink : public ByteSink {
 public:
  void Write(Bytes) override { throw Error(ErrorNumber::DiskFull, "cannot write: full"); }
};

TEST(EncryptedFilesAnyhow, ErrorsOfTheSinkPassThrough) {
  FullSink full;
  std::string second;
  MemorySource plain("text");
  EXPECT_THROW(CipherEncryptFile(Algorithm::Des, plain, full, kKey, second), Error);
  MemorySource sealed(Encrypt(Algorithm::Des, "text"));
  EXPECT_THROW(CipherDecryptFile(Algorithm::Des, sealed, full, kKey, second), Error);
}

}  // namespace
}  // namespace tarnel
