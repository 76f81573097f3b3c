#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarnel {

/// The number that travels through the session. A carrier stores neither number nor name.
/// Values other than these can occur; they have no name and no cipher.
enum class Algorithm : std::int32_t {
  Blowfish = 0,
  Idea = 1,  ///< a name without a cipher, like Dese and Rc4
  TripleDes = 2,
  Des = 3,
  Dese = 4,
  Cast5 = 5,
  Serpent256 = 8,
  Rijndael256 = 11,
  Rc4 = 12,
  Twofish = 13,
};

/// Upper-case name; empty for an unknown number.
std::string AlgorithmName(Algorithm algorithm);

/// Folds `name` to upper case in place. An unknown name means Blowfish.
Algorithm AlgorithmId(std::string& name);

/// One line of the list from which the user chooses.
struct OfferedAlgorithm {
  Algorithm algorithm;
  std::string_view name;       ///< as the list shows it, which for Triple DES is "TripleDES"
  std::string_view blockText;  ///< "- Block cipher: 64-bit block"
  std::string_view keyText;    ///< "- Key length: 448 bits"
};

/// In the order of the list; the preset is RIJNDAEL-256.
const std::vector<OfferedAlgorithm>& OfferedAlgorithms();

}  // namespace tarnel
