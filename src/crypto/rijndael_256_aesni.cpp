#include "crypto/rijndael_256.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <array>

#define TARNEL_WITH_AES [[gnu::target("aes,ssse3,sse4.1")]]

namespace tarnel {
namespace {

/// A block in two registers of four columns each.
struct Halves {
  __m128i low;
  __m128i high;
};

TARNEL_WITH_AES inline __m128i Load(const std::uint8_t* from) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

TARNEL_WITH_AES inline void Store(std::uint8_t* to, __m128i value) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), value);
}

/// The AES instructions shift rows by 1, 2 and 3 within four columns. Bytes are moved beforehand so that
/// those shifts complete the ones by 1, 3 and 4 within eight columns: first the bytes that change halves are
/// exchanged, then rows 2 and 3 turn by one column.
TARNEL_WITH_AES inline Halves PrepareShift(Halves block) {
  const __m128i changesHalf = _mm_setr_epi8(0, -1, -1, -1, 0, 0, -1, -1, 0, 0, -1, -1, 0, 0, 0, -1);
  const __m128i turn = _mm_setr_epi8(0, 1, 6, 7, 4, 5, 10, 11, 8, 9, 14, 15, 12, 13, 2, 3);
  return {_mm_shuffle_epi8(_mm_blendv_epi8(block.low, block.high, changesHalf), turn),
          _mm_shuffle_epi8(_mm_blendv_epi8(block.high, block.low, changesHalf), turn)};
}

/// Several blocks at once, since one round has to wait for the one before it.
template <std::size_t kCount>
TARNEL_WITH_AES inline void EncryptBlocks(const std::uint8_t* schedule, const std::uint8_t* in,
                                          std::uint8_t* out) {
  std::array<Halves, kCount> blocks;
  Halves key = {Load(schedule), Load(schedule + 16)};
#pragma GCC unroll 4
  for (std::size_t i = 0; i < kCount; ++i)
    blocks[i] = {_mm_xor_si128(Load(in + 32 * i), key.low), _mm_xor_si128(Load(in + 32 * i + 16), key.high)};
  for (std::size_t round = 1; round < kRijndaelRounds; ++round) {
    key = {Load(schedule + 32 * round), Load(schedule + 32 * round + 16)};
#pragma GCC unroll 4
    for (std::size_t i = 0; i < kCount; ++i) {
      const Halves block = PrepareShift(blocks[i]);
      blocks[i] = {_mm_aesenc_si128(block.low, key.low), _mm_aesenc_si128(block.high, key.high)};
    }
  }
  key = {Load(schedule + 32 * kRijndaelRounds), Load(schedule + 32 * kRijndaelRounds + 16)};
#pragma GCC unroll 4
  for (std::size_t i = 0; i < kCount; ++i) {
    const Halves block = PrepareShift(blocks[i]);
    Store(out + 32 * i, _mm_aesenclast_si128(block.low, key.low));
    Store(out + 32 * i + 16, _mm_aesenclast_si128(block.high, key.high));
  }
}

TARNEL_WITH_AES void EncryptWithAes(const std::uint8_t* schedule, const std::uint8_t* in, std::uint8_t* out,
                                    std::size_t blocks) {
  constexpr std::size_t kAtOnce = 4;
  for (; blocks >= kAtOnce; blocks -= kAtOnce, in += 32 * kAtOnce, out += 32 * kAtOnce)
    EncryptBlocks<kAtOnce>(schedule, in, out);
  for (; blocks != 0; --blocks, in += 32, out += 32)
    EncryptBlocks<1>(schedule, in, out);
}

}  // namespace

RijndaelBlocks* FindRijndael256WithAes() {
  const bool known =
      __builtin_cpu_supports("aes") && __builtin_cpu_supports("ssse3") && __builtin_cpu_supports("sse4.1");
  return known ? EncryptWithAes : nullptr;
}

}  // namespace tarnel

#else

namespace tarnel {

RijndaelBlocks* FindRijndael256WithAes() {
  return nullptr;
}

}  // namespace tarnel

#endif
