#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Botan {
class BlockCipher;
}

namespace tarnel {

enum class RijndaelPath {
  Portable,       ///< tables in plain C++
  Aes,            ///< AES instructions, half a block at once
  VectorAes,      ///< the same on 256 bits: VAES with AVX2
  WideVectorAes,  ///< the same on 512 bits: VAES with AVX-512 and its byte permutations (VBMI)
};

/// The paths that this processor can take, the fastest at the end.
std::vector<RijndaelPath> RijndaelPaths();

/// Rijndael with 256-bit blocks and a 256-bit key: 14 rounds, rows shifted by 1, 3 and 4. That is the cipher
/// of the AES proposal (Daemen and Rijmen, "AES Proposal: Rijndael", version 2, 1999) in the size that became
/// no standard. Throws std::invalid_argument for a path that this processor can't take. The portable path
/// looks up tables by secret bytes, as the table ciphers of the library do; whoever shares the processor's
/// cache could learn from that. Decryption is always portable: counter mode doesn't need it.
std::unique_ptr<Botan::BlockCipher> MakeRijndael256(RijndaelPath path);

inline constexpr std::size_t kRijndaelBlock = 32;
inline constexpr std::size_t kRijndaelRounds = 14;
inline constexpr std::size_t kRijndaelScheduleBytes = kRijndaelBlock * (kRijndaelRounds + 1);

/// Encrypts `blocks` blocks from `in` to `out`, which may be the same. The schedule has
/// kRijndaelScheduleBytes.
using RijndaelBlocks = void(const std::uint8_t* schedule, const std::uint8_t* in, std::uint8_t* out,
                            std::size_t blocks);

/// The function of each path that needs certain instructions; null where the processor has none of them.
RijndaelBlocks* FindRijndael256WithAes();
RijndaelBlocks* FindRijndael256WithVaes();
RijndaelBlocks* FindRijndael256WithWideVaes();

}  // namespace tarnel
