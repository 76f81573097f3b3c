#include "crypto/rijndael_256.h"

#include <botan/block_cipher.h>
#include <botan/loadstor.h>

#include <algorithm>
#include <array>
#include <bit>
#include <stdexcept>

namespace tarnel {
namespace {

constexpr std::size_t kColumns = 8;
constexpr std::size_t kScheduleWords = kColumns * (kRijndaelRounds + 1);
constexpr std::array<std::size_t, 4> kShift = {0, 1, 3, 4};

using State = std::array<std::uint32_t, kColumns>;  // column c, row r in bits 8r to 8r+7
using Table = std::array<std::uint8_t, 256>;

constexpr std::uint8_t Double(std::uint8_t x) {
  return static_cast<std::uint8_t>(x << 1 ^ (x & 0x80 ? 0x1B : 0));
}

constexpr std::uint8_t Multiply(std::uint8_t x, std::uint8_t factor) {
  std::uint8_t product = 0;
  for (; factor != 0; factor = static_cast<std::uint8_t>(factor >> 1), x = Double(x))
    if (factor & 1) product ^= x;
  return product;
}

constexpr Table MakeSubstitution() {
  Table table{};
  std::uint8_t power = 1;    // of the generator 3
  std::uint8_t inverse = 1;  // of that power
  do {
    power = Multiply(power, 3);
    inverse = Multiply(inverse, 0xF6);
    table[power] = static_cast<std::uint8_t>(inverse ^ std::rotl(inverse, 1) ^ std::rotl(inverse, 2) ^
                                             std::rotl(inverse, 3) ^ std::rotl(inverse, 4) ^ 0x63);
  } while (power != 1);
  table[0] = 0x63;
  return table;
}

constexpr Table kSubstitution = MakeSubstitution();

constexpr Table MakeInverseSubstitution() {
  Table table{};
  for (std::size_t i = 0; i < table.size(); ++i)
    table[kSubstitution[i]] = static_cast<std::uint8_t>(i);
  return table;
}

constexpr Table kInverseSubstitution = MakeInverseSubstitution();

constexpr std::uint32_t Column(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d) {
  return std::uint32_t{a} | std::uint32_t{b} << 8 | std::uint32_t{c} << 16 | std::uint32_t{d} << 24;
}

constexpr std::uint8_t Row(std::uint32_t column, std::size_t row) {
  return static_cast<std::uint8_t>(column >> 8 * row);
}

/// Substitution and column mixing of a byte in row 0; rotated left by 8r it serves row r.
constexpr std::array<std::uint32_t, 256> MakeMixed() {
  std::array<std::uint32_t, 256> mixed{};
  for (std::size_t i = 0; i < mixed.size(); ++i) {
    const std::uint8_t s = kSubstitution[i];
    mixed[i] = Column(Double(s), s, s, Multiply(s, 3));
  }
  return mixed;
}

constexpr auto kMixed = MakeMixed();

constexpr std::uint32_t UnmixColumn(std::uint32_t column) {
  std::uint32_t result = 0;
  for (std::size_t row = 0; row < 4; ++row) {
    const std::uint8_t x = Row(column, row);
    result ^= std::rotl(Column(Multiply(x, 14), Multiply(x, 9), Multiply(x, 13), Multiply(x, 11)),
                        static_cast<int>(8 * row));
  }
  return result;
}

constexpr std::uint32_t SubstituteColumn(std::uint32_t w) {
  return Column(kSubstitution[Row(w, 0)], kSubstitution[Row(w, 1)], kSubstitution[Row(w, 2)],
                kSubstitution[Row(w, 3)]);
}

void AddRoundKey(State& state, const std::uint32_t* schedule, std::size_t round) {
  for (std::size_t c = 0; c < kColumns; ++c)
    state[c] ^= schedule[round * kColumns + c];
}

std::uint8_t Shifted(const State& state, std::size_t row, std::size_t column) {
  return Row(state[(column + kShift[row]) % kColumns], row);
}

void EncryptBlock(State& state, const std::uint32_t* schedule) {
  AddRoundKey(state, schedule, 0);
  for (std::size_t round = 1; round < kRijndaelRounds; ++round) {
    State next;
    for (std::size_t c = 0; c < kColumns; ++c)
      next[c] = kMixed[Shifted(state, 0, c)] ^ std::rotl(kMixed[Shifted(state, 1, c)], 8) ^
                std::rotl(kMixed[Shifted(state, 2, c)], 16) ^ std::rotl(kMixed[Shifted(state, 3, c)], 24);
    state = next;
    AddRoundKey(state, schedule, round);
  }
  State last;
  for (std::size_t c = 0; c < kColumns; ++c)
    last[c] = SubstituteColumn(
        Column(Shifted(state, 0, c), Shifted(state, 1, c), Shifted(state, 2, c), Shifted(state, 3, c)));
  state = last;
  AddRoundKey(state, schedule, kRijndaelRounds);
}

State UnshiftAndUnsubstitute(const State& state) {
  State result{};
  for (std::size_t c = 0; c < kColumns; ++c)
    for (std::size_t row = 0; row < 4; ++row)
      result[(c + kShift[row]) % kColumns] |= std::uint32_t{kInverseSubstitution[Row(state[c], row)]}
                                              << 8 * row;
  return result;
}

void DecryptBlock(State& state, const std::uint32_t* schedule) {
  AddRoundKey(state, schedule, kRijndaelRounds);
  for (std::size_t round = kRijndaelRounds - 1; round > 0; --round) {
    state = UnshiftAndUnsubstitute(state);
    AddRoundKey(state, schedule, round);
    std::ranges::transform(state, state.begin(), UnmixColumn);
  }
  state = UnshiftAndUnsubstitute(state);
  AddRoundKey(state, schedule, 0);
}

struct Path {
  RijndaelPath path;
  const char* provider;
  RijndaelBlocks* encrypt;  ///< null: the portable way, or none on this processor
};

/// From the slowest to the fastest.
const std::array<Path, 4>& Paths() {
  static const auto paths = std::to_array<Path>({
      {RijndaelPath::Portable, "base", nullptr},
      {RijndaelPath::Aes, "aesni", FindRijndael256WithAes()},
      {RijndaelPath::VectorAes, "vaes", FindRijndael256WithVaes()},
      {RijndaelPath::WideVectorAes, "vaes512", FindRijndael256WithWideVaes()},
  });
  return paths;
}

bool CanRun(const Path& path) {
  return path.path == RijndaelPath::Portable || path.encrypt != nullptr;
}

class Rijndael256 final : public Botan::Block_Cipher_Fixed_Params<kRijndaelBlock, 32> {
 public:
  explicit Rijndael256(const Path& path) : m_path(path) {}

  std::string name() const override { return "Rijndael-256"; }
  std::string provider() const override { return m_path.provider; }
  std::size_t parallelism() const override { return 8; }
  BlockCipher* clone() const override { return new Rijndael256(m_path); }
  void clear() override {
    Botan::zap(m_schedule);
    Botan::zap(m_scheduleBytes);
  }

  void encrypt_n(const std::uint8_t in[], std::uint8_t out[], std::size_t blocks) const override {
    verify_key_set(!m_schedule.empty());
    if (m_path.encrypt != nullptr)
      m_path.encrypt(m_scheduleBytes.data(), in, out, blocks);
    else
      ForEachBlock(in, out, blocks, EncryptBlock);
  }

  void decrypt_n(const std::uint8_t in[], std::uint8_t out[], std::size_t blocks) const override {
    verify_key_set(!m_schedule.empty());
    ForEachBlock(in, out, blocks, DecryptBlock);
  }

 private:
  void key_schedule(const std::uint8_t key[], std::size_t length) override;

  template <class Transform>
  void ForEachBlock(const std::uint8_t* in, std::uint8_t* out, std::size_t blocks,
                    Transform transform) const {
    for (; blocks != 0; --blocks, in += kRijndaelBlock, out += kRijndaelBlock) {
      State state;
      Botan::load_le(state.data(), in, kColumns);
      transform(state, m_schedule.data());
      Botan::copy_out_le(out, kRijndaelBlock, state.data());
    }
  }

  const Path& m_path;
  Botan::secure_vector<std::uint32_t> m_schedule;
  Botan::secure_vector<std::uint8_t> m_scheduleBytes;
};

void Rijndael256::key_schedule(const std::uint8_t key[], std::size_t length) {
  const std::size_t keyWords = length / 4;
  m_schedule.resize(kScheduleWords);
  Botan::load_le(m_schedule.data(), key, keyWords);
  std::uint8_t constant = 1;
  for (std::size_t i = keyWords; i < kScheduleWords; ++i) {
    std::uint32_t word = m_schedule[i - 1];
    if (i % keyWords == 0) {
      word = SubstituteColumn(std::rotr(word, 8)) ^ constant;
      constant = Double(constant);
    } else if (i % keyWords == 4) {
      word = SubstituteColumn(word);
    }
    m_schedule[i] = m_schedule[i - keyWords] ^ word;
  }
  m_scheduleBytes.resize(kRijndaelScheduleBytes);
  Botan::copy_out_le(m_scheduleBytes.data(), m_scheduleBytes.size(), m_schedule.data());
}

}  // namespace

std::vector<RijndaelPath> RijndaelPaths() {
  std::vector<RijndaelPath> paths;
  for (const Path& path : Paths())
    if (CanRun(path)) paths.push_back(path.path);
  return paths;
}

std::unique_ptr<Botan::BlockCipher> MakeRijndael256(RijndaelPath path) {
  const auto found = std::ranges::find(Paths(), path, &Path::path);
  if (found == Paths().end() || !CanRun(*found))
    throw std::invalid_argument("no such path of Rijndael on this processor");
  return std::make_unique<Rijndael256>(*found);
}

}  // namespace tarnel
