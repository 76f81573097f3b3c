#include "crypto/algorithm.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tarnel {
namespace {

constexpr std::array kNames = std::to_array<std::pair<Algorithm, std::string_view>>({
    {Algorithm::Blowfish, "BLOWFISH"},
    {Algorithm::Idea, "IDEA"},
    {Algorithm::TripleDes, "TRIPLEDES"},
    {Algorithm::Des, "DES"},
    {Algorithm::Dese, "DESE"},
    {Algorithm::Cast5, "CAST5"},
    {Algorithm::Serpent256, "SERPENT-256"},
    {Algorithm::Rijndael256, "RIJNDAEL-256"},
    {Algorithm::Rc4, "RC4"},
    {Algorithm::Twofish, "TWOFISH"},
});

constexpr char ToUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

std::string AlgorithmName(Algorithm algorithm) {
  const auto found = std::ranges::find(kNames, algorithm, &decltype(kNames)::value_type::first);
  return found == kNames.end() ? std::string() : std::string(found->second);
}

Algorithm AlgorithmId(std::string& name) {
  std::ranges::transform(name, name.begin(), ToUpper);
  const auto found = std::ranges::find(kNames, name, &decltype(kNames)::value_type::second);
  return found == kNames.end() ? Algorithm::Blowfish : found->first;
}

const std::vector<OfferedAlgorithm>& OfferedAlgorithms() {
  static const std::vector<OfferedAlgorithm> offered = {
      {Algorithm::Blowfish, "BLOWFISH", "- Block cipher: 64-bit block", "- Key length: 448 bits"},
      {Algorithm::Cast5, "CAST5", "- Block cipher: 64-bit block", "- Key length: 128 bits"},
      {Algorithm::Des, "DES", "- Block cipher: 64-bit block", "- Key length: 56 bits"},
      {Algorithm::Serpent256, "SERPENT-256", "- Block cipher: 128-bit block", "- Key length: 256 bits"},
      {Algorithm::Rijndael256, "RIJNDAEL-256", "- Block cipher: 256-bit block", "- Key length: 256 bits"},
      {Algorithm::TripleDes, "TripleDES", "- Block cipher: 64-bit block", "- Key length: 192 bits"},
      {Algorithm::Twofish, "TWOFISH", "- Block cipher: 128-bit block", "- Key length: 256 bits"},
  };
  return offered;
}

}  // namespace tarnel
