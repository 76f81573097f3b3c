#include "crypto/random.h"

#include <botan/exceptn.h>
#include <botan/system_rng.h>

#include <array>
#include <cstring>
#include <limits>

#include "base/error.h"

namespace tarnel {
namespace {

/// Random words from a stock, so that a padded field costs no system call for each of its characters.
class WordStock {
 public:
  std::uint32_t Next() {
    if (m_next + sizeof(std::uint32_t) > m_stock.size()) {
      FillRandom(m_stock);
      m_next = 0;
    }
    std::uint32_t word = 0;
    std::memcpy(&word, m_stock.data() + m_next, sizeof(word));
    m_next += sizeof(word);
    return word;
  }

 private:
  std::array<std::uint8_t, 1024> m_stock{};
  std::size_t m_next = m_stock.size();
};

}  // namespace

void FillRandom(MutableBytes bytes) {
  try {
    Botan::system_rng().randomize(bytes.data(), bytes.size());
  } catch (const Botan::Exception& failure) {
    throw Error(ErrorNumber::DeviceIo, std::string("cannot get random numbers: ") + failure.what());
  }
}

int RandomBetween(int low, int high) {
  thread_local WordStock stock;
  const std::uint64_t count = static_cast<std::uint64_t>(std::int64_t{high} - low) + 1;
  constexpr std::uint64_t kWords = std::uint64_t{std::numeric_limits<std::uint32_t>::max()} + 1;
  const std::uint64_t fair = kWords - kWords % count;
  std::uint64_t word = stock.Next();
  while (word >= fair)
    word = stock.Next();
  return static_cast<int>(low + static_cast<std::int64_t>(word % count));
}

}  // namespace tarnel
