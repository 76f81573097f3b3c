#include "crypto/file_line.h"

#include <botan/mac.h>
#include <botan/stream_cipher.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "crypto/work_line.h"

namespace tarnel {
namespace {

constexpr std::size_t kPiece = std::size_t{64} * 1024;
constexpr std::size_t kPiecesOfBlock = 4;
constexpr std::size_t kBytesAlone = 8 * kPiece;  // a thread takes as long to start as they take
constexpr std::size_t kMacKeyBytes = 32;
constexpr std::array<std::uint8_t, 12> kMacIv{};

/// Lets one block after the other to the tag, in the order of their numbers.
class Turns {
 public:
  void Await(std::size_t number) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] { return m_next == number; });
  }

  void Pass() {
    const std::scoped_lock lock(m_mutex);
    ++m_next;
    m_changed.notify_all();
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::size_t m_next = 0;
};

/// The turn of one block, which is passed on at the end at the latest, however that comes.
class Turn {
 public:
  Turn(Turns& turns, std::size_t number) : m_turns(turns), m_number(number) {}
  ~Turn() {
    if (m_isPassed) return;
    m_turns.Await(m_number);
    m_turns.Pass();
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

  template <class Statement>
  void Take(Statement statement) {
    m_turns.Await(m_number);
    statement();
    m_turns.Pass();
    m_isPassed = true;
  }

 private:
  Turns& m_turns;
  std::size_t m_number;
  bool m_isPassed = false;
};

/// What was held back of the block before, then pieces.
struct Block {
  WipedBytes bytes;
  std::size_t held = 0;
  std::size_t length = 0;  ///< how many of them go through the cipher
  std::uint64_t offset = 0;
  std::size_t number = 0;

  MutableBytes Text() { return MutableBytes(bytes).first(length); }
};

}  // namespace

struct FileLine::State {
  State(FileWay theWay, const CipherSuite& theSuite, const WipedBytes& masterKey, const FileNonce& nonce,
        ByteSink& sink, std::size_t workerCount);

  bool IsAlone() const { return workers == 0 || offset < kBytesAlone; }
  std::size_t FullBlock() const { return tail + (IsAlone() ? 1 : kPiecesOfBlock) * kPiece; }
  Block& Current() { return blocks[put % blocks.size()]; }

  void Submit();
  void HoldBack(Block& block);
  void PutBeside();
  void ArriveOldest();
  void Arrive(Block& block);
  void Process(std::size_t worker, Block& block);
  void Crypt(std::size_t worker, Block& block);
  Botan::StreamCipher& CipherOf(std::size_t worker);

  const FileWay way;
  const CipherSuite& suite;
  ByteSink& destination;
  const std::size_t workers;
  const std::size_t tail;
  WipedBytes cipherKey;
  std::unique_ptr<Botan::MessageAuthenticationCode> mac;
  std::vector<std::unique_ptr<Botan::StreamCipher>> ciphers;  ///< of each worker, and of the caller
  Turns turns;
  std::vector<Block> blocks;
  std::array<std::uint8_t, kFileTagBytes> heldBack{};
  std::size_t heldBackBytes = 0;
  std::uint64_t offset = 0;        ///< of the current block
  std::size_t number = 0;          ///< of the current block
  std::size_t put = 0;             ///< blocks that went into the line
  std::size_t arrived = 0;         ///< of those
  std::unique_ptr<WorkLine> line;  ///< at the end, as it has to go first
};

FileLine::State::State(FileWay theWay, const CipherSuite& theSuite, const WipedBytes& masterKey,
                       const FileNonce& nonce, ByteSink& sink, std::size_t workerCount)
    : way(theWay),
      suite(theSuite),
      destination(sink),
      workers(workerCount),
      tail(way == FileWay::Open ? kFileTagBytes : 0),
      mac(Botan::MessageAuthenticationCode::create_or_throw("GMAC(AES-256)")),
      ciphers(workers + 1),
      blocks(2 * workers + 1) {
  const WipedBytes keys = DeriveKeys(masterKey, nonce, "tarnel file " + std::to_string(suite.fileCode),
                                     suite.keyBytes + kMacKeyBytes);
  cipherKey.assign(keys.begin(), keys.end() - kMacKeyBytes);
  mac->set_key(keys.data() + suite.keyBytes, kMacKeyBytes);
  mac->start(kMacIv.data(), kMacIv.size());
  mac->update(nonce.data(), nonce.size());
}

void FileLine::State::Submit() {
  Block& block = Current();
  if (block.held <= tail) return;
  const bool isAlone = IsAlone();
  HoldBack(block);
  block.offset = offset;
  block.number = number++;
  offset += block.length;
  if (!isAlone) return PutBeside();
  Process(workers, block);
  Arrive(block);
}

void FileLine::State::HoldBack(Block& block) {
  block.length = block.held - tail;
  block.held = 0;
  std::copy_n(block.bytes.begin() + static_cast<std::ptrdiff_t>(block.length), tail, heldBack.begin());
  heldBackBytes = tail;
}

void FileLine::State::PutBeside() {
  if (!line)
    line = std::make_unique<WorkLine>(workers, blocks.size(), [this](std::size_t worker, std::size_t item) {
      Process(worker, blocks[item % blocks.size()]);
    });
  line->Put();
  ++put;
  if (put - arrived == blocks.size()) ArriveOldest();
}

void FileLine::State::ArriveOldest() {
  line->Take();
  Arrive(blocks[arrived++ % blocks.size()]);
}

void FileLine::State::Arrive(Block& block) {
  for (Bytes left = block.Text(); !left.empty(); left = left.subspan(std::min(left.size(), kPiece)))
    destination.Write(left.first(std::min(left.size(), kPiece)));
}

/// The tag is over the cipher text, so it comes behind or before.
void FileLine::State::Process(std::size_t worker, Block& block) {
  Turn turn(turns, block.number);
  if (way == FileWay::Seal) Crypt(worker, block);
  turn.Take([&] { mac->update(block.bytes.data(), block.length); });
  if (way == FileWay::Open) Crypt(worker, block);
}

void FileLine::State::Crypt(std::size_t worker, Block& block) {
  Botan::StreamCipher& cipher = CipherOf(worker);
  cipher.seek(block.offset);
  cipher.cipher1(block.bytes.data(), block.length);
}

Botan::StreamCipher& FileLine::State::CipherOf(std::size_t worker) {
  std::unique_ptr<Botan::StreamCipher>& cipher = ciphers[worker];
  if (!cipher) {
    cipher = MakeCounterMode(suite);
    cipher->set_key(cipherKey.data(), cipherKey.size());
    cipher->set_iv(nullptr, 0);
  }
  return *cipher;
}

FileLine::FileLine(FileWay way, const CipherSuite& suite, const WipedBytes& masterKey, const FileNonce& nonce,
                   ByteSink& destination, std::size_t workers)
    : m_state(std::make_unique<State>(way, suite, masterKey, nonce, destination, workers)) {}

FileLine::~FileLine() = default;

MutableBytes FileLine::Room() {
  Block& block = m_state->Current();
  const std::size_t full = m_state->FullBlock();
  if (block.bytes.size() < full) block.bytes = WipedBytes(full);
  if (block.held == 0) {
    std::copy_n(m_state->heldBack.begin(), m_state->heldBackBytes, block.bytes.begin());
    block.held = m_state->heldBackBytes;
  }
  const std::size_t end = block.held == 0 ? kPiece + m_state->tail : block.held + kPiece;
  return MutableBytes(block.bytes).first(end).subspan(block.held);
}

void FileLine::Add(std::size_t length) {
  Block& block = m_state->Current();
  const std::size_t room = Room().size();
  block.held += length;
  if (length < room || block.held == m_state->FullBlock()) m_state->Submit();
}

void FileLine::Drain() {
  m_state->Submit();
  while (m_state->arrived < m_state->put)
    m_state->ArriveOldest();
}

Bytes FileLine::HeldBack() const {
  if (m_state->heldBackBytes != 0) return Bytes(m_state->heldBack).first(m_state->heldBackBytes);
  const Block& block = m_state->Current();
  return Bytes(block.bytes).first(block.held);
}

FileTag FileLine::MakeTag() {
  FileTag tag;
  m_state->mac->final(tag.data());
  return tag;
}

}  // namespace tarnel
