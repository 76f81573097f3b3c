#include "crypto/compression.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <limits>

#include "base/error.h"
#include "crypto/random.h"
#include "tests/crypto/memory_streams.h"

namespace tarnel {
namespace {

constexpr std::size_t kPiece = std::size_t{64} * 1024;

std::string Drain(ByteSource& source, std::size_t step) {
  std::string all;
  std::string block(step, '\0');
  std::size_t got = step;
  while (got == step) {
    got = source.Read({reinterpret_cast<std::uint8_t*>(block.data()), step});
    all.append(block, 0, got);
  }
  return all;
}

std::string Compress(std::string_view plain, int level, std::size_t step = kPiece) {
  MemorySource source(plain);
  CompressingSource compressing(source, static_cast<Length>(plain.size()), level);
  return Drain(compressing, step);
}

struct Decompressed {
  std::string plain;
  bool isIntact;
  bool operator==(const Decompressed&) const = default;
};

Decompressed Decompress(std::string_view form, std::size_t step = kPiece) {
  MemorySink plain;
  DecompressingSink sink(plain);
  for (std::size_t at = 0; at < form.size(); at += step)
    sink.Write(AsBytes(form.substr(at, step)));
  return {plain.text, sink.IsIntact()};
}

std::string SizeField(std::uint32_t size) {
  std::string field;
  for (int i = 0; i < 4; ++i)
    field.push_back(static_cast<char>(size >> 8 * i & 0xFF));
  return field;
}

std::string OneShotStream(std::string_view plain, int level) {
  uLongf length = compressBound(static_cast<uLong>(plain.size()));
  std::string stream(length, '\0');
  EXPECT_EQ(compress2(reinterpret_cast<Bytef*>(stream.data()), &length, AsBytes(plain).data(),
                      static_cast<uLong>(plain.size()), level),
            Z_OK);
  stream.resize(length);
  return stream;
}

std::string RandomText(std::size_t length) {
  std::string text(length, '\0');
  FillRandom({reinterpret_cast<std::uint8_t*>(text.data()), length});
  return text;
}

TEST(Compression, EveryLevelAndSizeComesBack) {
  for (int level = -1; level <= 9; ++level)
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, kPiece - 1, kPiece, kPiece + 1, 5 * kPiece}) {
      const std::string plain = SampleText(size);
      EXPECT_EQ(Decompress(Compress(plain, level)), (Decompressed{plain, true})) << level << " " << size;
    }
}

TEST(Compression, TheFormIsTheSizeAndAStreamThatTheOneShotCallReads) {
  const std::string plain = SampleText(3 * kPiece + 5);
  for (int level = 0; level <= 9; ++level) {
    const std::string form = Compress(plain, level);
    EXPECT_EQ(form.substr(0, 4), SizeField(3 * 0x10000 + 5));
    std::string back(plain.size(), '\0');
    uLongf length = back.size();
    EXPECT_EQ(
        uncompress(reinterpret_cast<Bytef*>(back.data()), &length, AsBytes(form).data() + 4, form.size() - 4),
        Z_OK);
    EXPECT_TRUE(back == plain) << level;
  }
}

TEST(Compression, ReadsWhatTheOneShotCallWrote) {
  const std::string plain = SampleText(200000);
  for (int level = 0; level <= 9; ++level)
    EXPECT_EQ(Decompress(SizeField(200000) + OneShotStream(plain, level)), (Decompressed{plain, true}));
}

TEST(Compression, TheSizeOfThePiecesChangesNothing) {
  const std::string plain = SampleText(3000);
  const std::string form = Compress(plain, 6);
  for (const std::size_t step : {1U, 2U, 3U, 5U, 1000U}) {
    EXPECT_EQ(Compress(plain, 6, step), form) << step;
    EXPECT_EQ(Decompress(form, step), (Decompressed{plain, true})) << step;
  }
}

TEST(Compression, TheEmptyFileHasTheEmptyForm) {
  EXPECT_EQ(Compress("", 9), "");
  EXPECT_EQ(Decompress(""), (Decompressed{"", true}));
}

TEST(Compression, RandomBytesGrowByLittle) {
  const std::string plain = RandomText(300000);
  const std::string form = Compress(plain, 9);
  EXPECT_LT(form.size(), plain.size() + 4 + 200);
  EXPECT_EQ(Decompress(form), (Decompressed{plain, true}));
}

TEST(Compression, AFormCutAnywhereIsNotIntact) {
  const std::string plain = SampleText(500);
  const std::string form = Compress(plain, 6);
  for (std::size_t length = 1; length < form.size(); ++length) {
    const Decompressed result = Decompress(form.substr(0, length));
    EXPECT_FALSE(result.isIntact) << length;
    EXPECT_TRUE(plain.starts_with(result.plain)) << length;
  }
}

TEST(Compression, AFlippedBitGivesNoWrongTextThatCountsAsIntact) {
  const std::string plain = SampleText(100);
  const std::string form = Compress(plain, 6);
  for (std::size_t bit = 0; bit < form.size() * 8; ++bit) {
    const Decompressed result = Decompress(WithFlippedBit(form, bit));
    EXPECT_TRUE(!result.isIntact || result.plain == plain) << bit;
  }
}

TEST(Compression, NeverMoreThanTheDeclaredSizeIsHandedOn) {
  const std::string bomb = OneShotStream(std::string(5'000'000, 'x'), 9);
  for (const std::uint32_t size : {0U, 1U, 65535U, 65536U, 65537U})
    EXPECT_EQ(Decompress(SizeField(size) + bomb), (Decompressed{std::string(size, 'x'), false})) << size;
}

TEST(Compression, AStreamShorterThanDeclaredIsNotIntact) {
  const std::string stream = OneShotStream("hello", 6);
  EXPECT_EQ(Decompress(SizeField(5) + stream), (Decompressed{"hello", true}));
  EXPECT_EQ(Decompress(SizeField(6) + stream), (Decompressed{"hello", false}));
  EXPECT_EQ(Decompress(SizeField(0x7FFFFFFF) + stream), (Decompressed{"hello", false}));
}

TEST(Compression, ANegativeSizeGivesNothing) {
  for (const std::uint32_t size : {0xFFFFFFFFU, 0x80000000U})
    EXPECT_EQ(Decompress(SizeField(size) + OneShotStream("hello", 6)), (Decompressed{"", false}));
}

TEST(Compression, BytesBehindTheStreamArePassedOver) {
  const std::string form = Compress("hello", 6);
  for (const std::size_t step : {std::size_t{1}, kPiece})
    EXPECT_EQ(Decompress(form + std::string(4, '\0') + SampleText(100), step), (Decompressed{"hello", true}));
}

TEST(Compression, BytesThatAreNoStreamGiveNothing) {
  EXPECT_EQ(Decompress(SizeField(100) + std::string(100, '\0')), (Decompressed{"", false}));
  const std::string wantsDictionary = "\x78\xBB\x12\x34\x56\x78";
  EXPECT_EQ(Decompress(SizeField(100) + wantsDictionary + SampleText(50)), (Decompressed{"", false}));
}

ErrorNumber ErrorOf(std::string_view plain, Length size, int level) {
  try {
    MemorySource source(plain);
    CompressingSource compressing(source, size, level);
    Drain(compressing, kPiece);
  } catch (const Error& error) {
    return error.Number();
  }
  return ErrorNumber{};
}

TEST(Compression, AFileThatChangedMeanwhileIsAnError) {
  const std::string plain = SampleText(2 * kPiece);
  const auto size = static_cast<Length>(plain.size());
  EXPECT_EQ(ErrorOf(plain, size, 6), ErrorNumber{});
  for (const Length other : {Length{0}, Length{1}, size - 1, size + 1, size * 2})
    EXPECT_EQ(ErrorOf(plain, other, 6), ErrorNumber::DeviceIo) << other;
}

TEST(Compression, SizesAndLevelsBeyondTheFormAreErrors) {
  for (const Length size : {Length{-1}, Length{0x80000000}, std::numeric_limits<Length>::max()})
    EXPECT_EQ(ErrorOf("", size, 6), ErrorNumber::InvalidPropertyValue) << size;
  for (const int level : {-2, 10, 1000})
    EXPECT_EQ(ErrorOf("x", 1, level), ErrorNumber::InvalidPropertyValue) << level;
}

}  // namespace
}  // namespace tarnel
