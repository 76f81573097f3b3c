#include "crypto/rijndael_256.h"

#if defined(__x86_64__)

#include <cpuid.h>
#include <immintrin.h>

#include <array>

#define TARNEL_WITH_VAES [[gnu::target("vaes,avx2")]]
#define TARNEL_WITH_WIDE_VAES [[gnu::target("vaes,avx512f,avx512bw,avx512vbmi")]]

namespace tarnel {
namespace {

/// Two blocks side by side: their first four columns, and their last four.
struct TwoBlocks {
  __m256i low;
  __m256i high;
};

TARNEL_WITH_VAES inline __m256i Load(const std::uint8_t* from) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}

TARNEL_WITH_VAES inline __m256i LoadTwice(const std::uint8_t* from) {
  return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
}

TARNEL_WITH_VAES inline void Store(std::uint8_t* to, __m256i value) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), value);
}

TARNEL_WITH_VAES inline TwoBlocks KeyOf(const std::uint8_t* schedule, std::size_t round) {
  return {LoadTwice(schedule + 32 * round), LoadTwice(schedule + 32 * round + 16)};
}

/// Goes both ways: whole blocks to halves, and back.
TARNEL_WITH_VAES inline TwoBlocks Exchange(__m256i one, __m256i other) {
  return {_mm256_permute2x128_si256(one, other, 0x20), _mm256_permute2x128_si256(one, other, 0x31)};
}

/// As the path with plain AES instructions does it, twice at once.
TARNEL_WITH_VAES inline TwoBlocks PrepareShift(TwoBlocks blocks) {
  const __m256i changesHalf =
      _mm256_broadcastsi128_si256(_mm_setr_epi8(0, -1, -1, -1, 0, 0, -1, -1, 0, 0, -1, -1, 0, 0, 0, -1));
  const __m256i turn =
      _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 6, 7, 4, 5, 10, 11, 8, 9, 14, 15, 12, 13, 2, 3));
  return {_mm256_shuffle_epi8(_mm256_blendv_epi8(blocks.low, blocks.high, changesHalf), turn),
          _mm256_shuffle_epi8(_mm256_blendv_epi8(blocks.high, blocks.low, changesHalf), turn)};
}

/// kPairs times two blocks.
template <std::size_t kPairs>
TARNEL_WITH_VAES inline void EncryptPairs(const std::uint8_t* schedule, const std::uint8_t* in,
                                          std::uint8_t* out) {
  std::array<TwoBlocks, kPairs> pairs;
  TwoBlocks key = KeyOf(schedule, 0);
#pragma GCC unroll 4
  for (std::size_t i = 0; i < kPairs; ++i) {
    const TwoBlocks halves = Exchange(Load(in + 64 * i), Load(in + 64 * i + 32));
    pairs[i] = {_mm256_xor_si256(halves.low, key.low), _mm256_xor_si256(halves.high, key.high)};
  }
  for (std::size_t round = 1; round < kRijndaelRounds; ++round) {
    key = KeyOf(schedule, round);
#pragma GCC unroll 4
    for (std::size_t i = 0; i < kPairs; ++i) {
      const TwoBlocks pair = PrepareShift(pairs[i]);
      pairs[i] = {_mm256_aesenc_epi128(pair.low, key.low), _mm256_aesenc_epi128(pair.high, key.high)};
    }
  }
  key = KeyOf(schedule, kRijndaelRounds);
#pragma GCC unroll 4
  for (std::size_t i = 0; i < kPairs; ++i) {
    const TwoBlocks pair = PrepareShift(pairs[i]);
    const TwoBlocks whole =
        Exchange(_mm256_aesenclast_epi128(pair.low, key.low), _mm256_aesenclast_epi128(pair.high, key.high));
    Store(out + 64 * i, whole.low);
    Store(out + 64 * i + 32, whole.high);
  }
}

TARNEL_WITH_VAES void EncryptWithVaes(const std::uint8_t* schedule, const std::uint8_t* in, std::uint8_t* out,
                                      std::size_t blocks) {
  constexpr std::size_t kAtOnce = 8;
  for (; blocks >= kAtOnce; blocks -= kAtOnce, in += 32 * kAtOnce, out += 32 * kAtOnce)
    EncryptPairs<kAtOnce / 2>(schedule, in, out);
  for (; blocks >= 2; blocks -= 2, in += 64, out += 64)
    EncryptPairs<1>(schedule, in, out);
  if (blocks == 0) return;
  std::array<std::uint8_t, 64> pair{};
  Store(pair.data(), Load(in));
  EncryptPairs<1>(schedule, pair.data(), pair.data());
  Store(out, Load(pair.data()));
}

/// Where each byte of two blocks comes from so that the shift by 1, 2 and 3 within four columns, which the
/// AES instructions do, completes the one by 1, 3 and 4 within eight.
constexpr std::array<std::uint8_t, 64> MakeShiftOfTwo() {
  constexpr std::array<std::size_t, 4> kShift = {0, 1, 3, 4};
  std::array<std::uint8_t, 64> from{};
  for (std::size_t i = 0; i < from.size(); ++i) {
    const std::size_t row = i % 4;
    const std::size_t column = i / 4 % 8;
    const std::size_t target = column / 4 * 4 + (column + 4 - row) % 4;
    from[i] = static_cast<std::uint8_t>(i / 32 * 32 + (target + kShift[row]) % 8 * 4 + row);
  }
  return from;
}

constexpr std::array<std::uint8_t, 64> kShiftOfTwo = MakeShiftOfTwo();

struct WideBlocks {
  __m512i both;
};

/// Which of the eight words of two blocks are there.
enum Presence : std::uint8_t { kOneBlock = 0x0F, kBothBlocks = 0xFF };

// The masks that leave nothing out are there for g++ 12, which takes the plain forms for uses of something
// uninitialised (its bug 105593).

TARNEL_WITH_WIDE_VAES inline __m512i WideKeyOf(const std::uint8_t* schedule, std::size_t round) {
  const auto* key = reinterpret_cast<const __m256i*>(schedule + 32 * round);
  return _mm512_maskz_broadcast_i64x4(kBothBlocks, _mm256_loadu_si256(key));
}

TARNEL_WITH_WIDE_VAES inline __m512i PrepareWideShift(WideBlocks blocks) {
  return _mm512_maskz_permutexvar_epi8(~__mmask64{}, _mm512_loadu_si512(kShiftOfTwo.data()), blocks.both);
}

/// kPairs times two blocks; with kOneBlock, one.
template <std::size_t kPairs, Presence kPresent>
TARNEL_WITH_WIDE_VAES inline void EncryptWidePairs(const std::uint8_t* schedule, const std::uint8_t* in,
                                                   std::uint8_t* out) {
  std::array<WideBlocks, kPairs> pairs;
  __m512i key = WideKeyOf(schedule, 0);
#pragma GCC unroll 8
  for (std::size_t i = 0; i < kPairs; ++i)
    pairs[i].both = _mm512_xor_si512(_mm512_maskz_loadu_epi64(kPresent, in + 64 * i), key);
  for (std::size_t round = 1; round < kRijndaelRounds; ++round) {
    key = WideKeyOf(schedule, round);
#pragma GCC unroll 8
    for (std::size_t i = 0; i < kPairs; ++i)
      pairs[i].both = _mm512_aesenc_epi128(PrepareWideShift(pairs[i]), key);
  }
  key = WideKeyOf(schedule, kRijndaelRounds);
#pragma GCC unroll 8
  for (std::size_t i = 0; i < kPairs; ++i)
    _mm512_mask_storeu_epi64(out + 64 * i, kPresent,
                             _mm512_aesenclast_epi128(PrepareWideShift(pairs[i]), key));
}

TARNEL_WITH_WIDE_VAES void EncryptWithWideVaes(const std::uint8_t* schedule, const std::uint8_t* in,
                                               std::uint8_t* out, std::size_t blocks) {
  constexpr std::size_t kAtOnce = 16;
  for (; blocks >= kAtOnce; blocks -= kAtOnce, in += 32 * kAtOnce, out += 32 * kAtOnce)
    EncryptWidePairs<kAtOnce / 2, kBothBlocks>(schedule, in, out);
  for (; blocks >= 2; blocks -= 2, in += 64, out += 64)
    EncryptWidePairs<1, kBothBlocks>(schedule, in, out);
  if (blocks != 0) EncryptWidePairs<1, kOneBlock>(schedule, in, out);
}

/// Not every compiler's __builtin_cpu_supports knows it. What the system has to save of the registers is part
/// of the answers about AVX.
bool HasVaes() {
  unsigned a = 0, b = 0, c = 0, d = 0;
  return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (c & bit_VAES) != 0;
}

}  // namespace

RijndaelBlocks* FindRijndael256WithVaes() {
  return HasVaes() && __builtin_cpu_supports("avx2") ? EncryptWithVaes : nullptr;
}

RijndaelBlocks* FindRijndael256WithWideVaes() {
  const bool hasWide = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                       __builtin_cpu_supports("avx512vbmi");
  return HasVaes() && hasWide ? EncryptWithWideVaes : nullptr;
}

}  // namespace tarnel

#else

namespace tarnel {

RijndaelBlocks* FindRijndael256WithVaes() {
  return nullptr;
}

RijndaelBlocks* FindRijndael256WithWideVaes() {
  return nullptr;
}

}  // namespace tarnel

#endif
