#include "crypto/compression.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <optional>
#include <vector>

#include "base/error.h"
#include "crypto/random.h"
#include "tests/crypto/memory_streams.h"

namespace tarnel {
namespace {

using namespace std::string_literals;

constexpr std::size_t kPiece = std::size_t{64} * 1024;
constexpr std::size_t kStretch = 8 * kPiece;

std::string Compress(std::string_view plain, int level, std::optional<Length> size = {},
                     std::size_t workers = 2) {
  MemorySource source(plain);
  CompressingSource compressing(source, size.value_or(static_cast<Length>(plain.size())), level, nullptr,
                                workers);
  std::vector<std::uint8_t> block(999);
  std::string form;
  while (const std::size_t got = compressing.Read(block))
    form += AsText(Bytes(block).first(got));
  return form;
}

/// What comes out, and whether that counts as intact.
std::pair<std::string, bool> Decompress(std::string_view form) {
  MemorySink plain;
  DecompressingSink sink(plain);
  for (; !form.empty(); form.remove_prefix(std::min(form.size(), std::size_t{999})))
    sink.Write(AsBytes(form.substr(0, 999)));
  return {plain.text, sink.IsIntact()};
}

std::string Sized(std::uint32_t size, const std::string& stream) {
  std::string field;
  for (int i = 0; i < 4; ++i)
    field.push_back(static_cast<char>(size >> 8 * i & 0xFF));
  return field + stream;
}

TEST(Compression, EveryLevelAndSizeComesBackAndIsWhatTheOneShotCallReads) {
  for (int level = -1; level <= 9; ++level)
    for (const std::size_t size : {std::size_t{1}, kPiece - 1, kPiece, kPiece + 1, 5 * kPiece}) {
      const std::string plain = SampleText(size);
      const std::string form = Compress(plain, level);
      EXPECT_EQ(Decompress(form), std::pair(plain, true)) << level << " " << size;
      EXPECT_TRUE(form.starts_with(Sized(static_cast<std::uint32_t>(size), "")));
      std::string back(size, '\0');
      uLongf length = size;
      uncompress(reinterpret_cast<Bytef*>(back.data()), &length, AsBytes(form).data() + 4, form.size() - 4);
      EXPECT_TRUE(back == plain) << level << " " << size;
    }
  EXPECT_EQ(Compress("", 9), "");
  EXPECT_EQ(Decompress(""), std::pair(""s, true));
}

TEST(Compression, StretchesAreOneStreamAndTheSameWithAnyNumberOfWorkers) {
  std::string noise(900'000, '\0');
  FillRandom({reinterpret_cast<std::uint8_t*>(noise.data()), noise.size()});
  const std::string mixed = SampleText(700'000) + noise + std::string(500'000, 'x');
  for (const int level : {0, 1, 6, 9})
    for (const std::size_t size : {kStretch, kStretch + 1, 4 * kStretch - 1}) {
      const std::string plain = mixed.substr(0, size);
      const std::string form = Compress(plain, level, {}, 0);
      std::string back(size, '\0');
      uLongf length = size;
      ASSERT_EQ(uncompress(reinterpret_cast<Bytef*>(back.data()), &length, AsBytes(form).data() + 4,
                           form.size() - 4),
                Z_OK);
      EXPECT_TRUE(length == size && back == plain) << level << " " << size;
      EXPECT_TRUE(Decompress(form) == std::pair(plain, true)) << level << " " << size;
      for (const std::size_t workers : {1U, 8U})
        EXPECT_TRUE(Compress(plain, level, {}, workers) == form) << level << " " << size;
    }
}

TEST(Compression, AFaultOfTheSourceComesBehindAllStretchesThatWereReadBeforeIt) {
  const std::string plain = SampleText(5 * kStretch);
  const std::string whole = Compress(plain, 6);
  for (const std::size_t missing : {1U, 7U, 700'000U}) {
    std::vector<std::string> fronts;
    for (const std::size_t workers : {0U, 2U, 8U}) {
      MemorySource source(plain.substr(missing));
      CompressingSource compressing(source, static_cast<Length>(plain.size()), 6, nullptr, workers);
      std::string& front = fronts.emplace_back();
      std::vector<std::uint8_t> byte(1);
      EXPECT_THROW(
          for (;;) {
            compressing.Read(byte);
            front += AsText(byte);
          },
          Error);
    }
    EXPECT_TRUE(fronts[0] == fronts[1] && fronts[1] == fronts[2]) << missing;
    EXPECT_GT(fronts[0].size(), whole.size() / 2);
  }
}

TEST(Compression, AFormCutOrAlteredAnywhereGivesNoWrongTextThatCountsAsIntact) {
  const std::string plain = SampleText(100);
  const std::string form = Compress(plain, 6);
  for (std::size_t length = 1; length < form.size(); ++length) {
    const auto [front, isIntact] = Decompress(form.substr(0, length));
    EXPECT_TRUE(!isIntact && plain.starts_with(front)) << length;
  }
  for (std::size_t bit = 0; bit < form.size() * 8; ++bit) {
    const auto [text, isIntact] = Decompress(WithFlippedBit(form, bit));
    EXPECT_TRUE(!isIntact || text == plain) << bit;
  }
}

TEST(Compression, NeverMoreThanTheDeclaredSizeIsHandedOnAndLessIsNotIntact) {
  const std::string bomb = Compress(std::string(5'000'000, 'x'), 9).substr(4);
  const std::string hello = Compress("hello", 6).substr(4);
  for (const std::uint32_t size : {0U, 1U, 65535U, 65536U, 65537U})
    EXPECT_EQ(Decompress(Sized(size, bomb)), std::pair(std::string(size, 'x'), false)) << size;
  EXPECT_EQ(Decompress(Sized(5, hello)), std::pair("hello"s, true));
  for (const std::uint32_t size : {6U, 0x7FFFFFFFU})
    EXPECT_EQ(Decompress(Sized(size, hello)), std::pair("hello"s, false)) << size;
  for (const std::uint32_t negative : {0xFFFFFFFFU, 0x80000000U})
    EXPECT_EQ(Decompress(Sized(negative, hello)), std::pair(""s, false));
  for (const std::string& noStream : {std::string(100, '\0'), "\x78\xBB\x12\x34\x56\x78" + SampleText(50)})
    EXPECT_EQ(Decompress(Sized(100, noStream)), std::pair(""s, false))
        << "no stream, or one with a dictionary";
}

ErrorNumber ErrorOf(std::string_view plain, Length size, int level) {
  try {
    Compress(plain, level, size);
  } catch (const Error& error) {
    return error.Number();
  }
  return ErrorNumber{};
}

TEST(Compression, AFileThatChangedMeanwhileOrIsTooLargeAndALevelThatIsNoneAreErrors) {
  const std::string plain = SampleText(1000);
  EXPECT_EQ(ErrorOf(plain, 1000, 6), ErrorNumber{});
  for (const Length size : {0, 1, 999, 1001, 2000})
    EXPECT_EQ(ErrorOf(plain, size, 6), ErrorNumber::DeviceIo) << size;
  for (const Length size : {Length{-1}, Length{0x80000000}, Length{INT64_MAX}})
    EXPECT_EQ(ErrorOf(plain, size, 6), ErrorNumber::InvalidPropertyValue) << size;
  for (const int level : {-2, 10, 1000})
    EXPECT_EQ(ErrorOf(plain, 1000, level), ErrorNumber::InvalidPropertyValue) << level;
}

}  // namespace
}  // namespace tarnel
