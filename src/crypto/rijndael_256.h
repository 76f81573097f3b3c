#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Botan {
class BlockCipher;
}

namespace tarnel {

enum class RijndaelPath {
  Fastest,   ///< AES instructions where the processor has them
  Portable,  ///< tables in plain C++
};

/// Rijndael with 256-bit blocks and a 256-bit key: 14 rounds, rows shifted by 1, 3 and 4. That is the cipher
/// of the AES proposal (Daemen and Rijmen, "AES Proposal: Rijndael", version 2, 1999) in the size that became
/// no standard. The portable path looks up tables by secret bytes, as the table ciphers of the library do;
/// whoever shares the processor's cache could learn from that. Decryption is always portable: counter mode
/// doesn't need it.
std::unique_ptr<Botan::BlockCipher> MakeRijndael256(RijndaelPath path);

inline constexpr std::size_t kRijndaelBlock = 32;
inline constexpr std::size_t kRijndaelRounds = 14;
inline constexpr std::size_t kRijndaelScheduleBytes = kRijndaelBlock * (kRijndaelRounds + 1);

/// Encrypts `blocks` blocks from `in` to `out`, which may be the same. The schedule has
/// kRijndaelScheduleBytes.
using RijndaelBlocks = void(const std::uint8_t* schedule, const std::uint8_t* in, std::uint8_t* out,
                            std::size_t blocks);

/// The function that uses AES instructions; null where the processor has none.
RijndaelBlocks* FindRijndael256WithAes();

}  // namespace tarnel
