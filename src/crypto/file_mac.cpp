#include "crypto/file_mac.h"

#include <botan/aes.h>
#include <botan/ghash.h>

#include <algorithm>
#include <bit>

namespace tarnel {
namespace {

constexpr std::size_t kWord = FileMac::kWordBytes;

using Word = Botan::secure_vector<std::uint8_t>;

/// One word times the hash key.
Word Times(const Word& word, Botan::GHASH& hash) {
  Word product(kWord);
  hash.ghash_update(product, word.data(), word.size());
  return product;
}

/// The power of the key that a sum is multiplied by when a block comes behind it.
Word KeyToTheBlock(Word power) {
  constexpr std::size_t kWordsOfBlock = FileMac::kBlockBytes / kWord;
  static_assert(std::has_single_bit(kWordsOfBlock));
  for (std::size_t i = 1; i < kWordsOfBlock; i *= 2) {
    Botan::GHASH hash;
    hash.set_key(power);
    power = Times(power, hash);
  }
  return power;
}

}  // namespace

struct FileMac::State {
  Word key = Word(kWord);   ///< of the hash
  Word mask = Word(kWord);  ///< of the tag
  Word sum = Word(kWord);
  Botan::GHASH hash;
  std::unique_ptr<Botan::GHASH> shift;  ///< multiplies by the key to the block
  std::array<std::uint8_t, kWord> rest{};
  std::size_t restBytes = 0;
  std::size_t length = 0;

  void Fill(Bytes& text);
};

FileMac::FileMac(Bytes key) : m_state(std::make_unique<State>()) {
  Botan::AES_256 cipher;
  cipher.set_key(key.data(), key.size());
  cipher.encrypt(m_state->key);
  m_state->mask.back() = 1;
  cipher.encrypt(m_state->mask);
  m_state->hash.set_key(m_state->key);
}

FileMac::~FileMac() = default;

/// Completes the word that was begun.
void FileMac::State::Fill(Bytes& text) {
  const std::size_t count = std::min(text.size(), kWord - restBytes);
  std::copy_n(text.begin(), count, rest.begin() + static_cast<std::ptrdiff_t>(restBytes));
  restBytes += count;
  text = text.subspan(count);
  if (restBytes < kWord) return;
  hash.ghash_update(sum, rest.data(), rest.size());
  restBytes = 0;
}

void FileMac::Update(Bytes text) {
  m_state->length += text.size();
  if (m_state->restBytes != 0) m_state->Fill(text);
  const std::size_t whole = text.size() - text.size() % kWord;
  if (whole != 0) m_state->hash.ghash_update(m_state->sum, text.data(), whole);
  text = text.subspan(whole);
  if (!text.empty()) m_state->Fill(text);
}

void FileMac::Append(const Sum& block) {
  if (!m_state->shift) {
    m_state->shift = std::make_unique<Botan::GHASH>();
    m_state->shift->set_key(KeyToTheBlock(m_state->key));
  }
  m_state->sum = Times(m_state->sum, *m_state->shift);
  Botan::xor_buf(m_state->sum.data(), block.data(), kWord);
  m_state->length += kBlockBytes;
}

FileTag FileMac::Finish() {
  Word& sum = m_state->sum;
  if (m_state->restBytes != 0) m_state->hash.ghash_update(sum, m_state->rest.data(), m_state->restBytes);
  m_state->hash.add_final_block(sum, m_state->length, 0);
  Botan::xor_buf(sum.data(), m_state->mask.data(), kWord);
  FileTag tag;
  std::copy(sum.begin(), sum.end(), tag.begin());
  return tag;
}

struct FileMac::Summing::State {
  Botan::GHASH hash;
  Word sum = Word(kWord);
};

FileMac::Summing::Summing(std::unique_ptr<State> state) : m_state(std::move(state)) {}

FileMac::Summing::Summing(Summing&&) noexcept = default;

FileMac::Summing::~Summing() = default;

FileMac::Sum FileMac::Summing::Of(Bytes block) {
  std::ranges::fill(m_state->sum, std::uint8_t{});
  m_state->hash.ghash_update(m_state->sum, block.data(), block.size());
  Sum sum;
  std::copy(m_state->sum.begin(), m_state->sum.end(), sum.begin());
  return sum;
}

FileMac::Summing FileMac::MakeSumming() const {
  auto state = std::make_unique<Summing::State>();
  state->hash.set_key(m_state->key);
  return Summing(std::move(state));
}

}  // namespace tarnel
