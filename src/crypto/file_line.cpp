#include "crypto/file_line.h"

#include <botan/stream_cipher.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "crypto/work_line.h"

namespace tarnel {
namespace {

constexpr std::size_t kPiece = std::size_t{64} * 1024;
constexpr std::size_t kFirstPiece = std::size_t{4} * 1024;  ///< so that a small file takes little memory
constexpr std::size_t kPiecesOfBlock = FileMac::kBlockBytes / kPiece;

/// What was held back of the block before, then pieces.
struct Block {
  WipedBytes bytes;
  std::size_t held = 0;
  std::size_t length = 0;  ///< how many of them go through the cipher
  std::uint64_t offset = 0;
  FileMac::Sum sum{};  ///< of the cipher text

  MutableBytes Text() { return MutableBytes(bytes).first(length); }
};

/// What each thread has of its own.
struct Worker {
  std::unique_ptr<Botan::StreamCipher> cipher;
  std::uint64_t at = 0;  ///< of the file, where the cipher stands
  std::optional<FileMac::Summing> summing;
};

}  // namespace

struct FileLine::State {
  State(FileWay theWay, const CipherSuite& theSuite, const WipedBytes& masterKey, const FileNonce& nonce,
        ByteSink& sink, std::size_t workerCount);

  bool IsAlone() const {
    return workers == 0 || offset < suite.bytesAlone || offset % FileMac::kWordBytes != 0;
  }
  std::size_t Piece() const { return offset == 0 ? kFirstPiece : kPiece; }
  std::size_t FullBlock() const { return tail + (IsAlone() ? Piece() : kPiecesOfBlock * kPiece); }
  Block& Current() { return blocks[put % blocks.size()]; }

  void Submit();
  void HoldBack(Block& block);
  void PassAlone(Block& block);
  void PutBeside();
  void ArriveAll();
  void ArriveOldest();
  void Arrive(Block& block);
  void Process(Worker& worker, Block& block);
  void Crypt(Worker& worker, Block& block);

  const FileWay way;
  const CipherSuite& suite;
  ByteSink& destination;
  const std::size_t workers;
  const std::size_t tail;
  const WipedBytes keys;  ///< of cipher and tag
  FileMac mac;
  std::vector<Worker> own;  ///< of each worker, and at the end of the caller
  std::vector<Block> blocks;
  std::array<std::uint8_t, kFileTagBytes> heldBack{};
  std::size_t heldBackBytes = 0;
  std::uint64_t offset = 0;        ///< of the current block
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
      keys(DeriveKeys(masterKey, nonce, "tarnel file " + std::to_string(suite.fileCode),
                      suite.keyBytes + FileMac::kKeyBytes)),
      mac(Bytes(keys).subspan(suite.keyBytes)),
      own(workers + 1),
      blocks(2 * workers + 1) {
  mac.Update(nonce);
}

void FileLine::State::Submit() {
  Block& block = Current();
  if (block.held <= tail) return;
  const bool isBeside = !IsAlone() && block.held == FullBlock();
  HoldBack(block);
  block.offset = offset;
  offset += block.length;
  if (isBeside)
    PutBeside();
  else
    PassAlone(block);
}

void FileLine::State::HoldBack(Block& block) {
  block.length = block.held - tail;
  block.held = 0;
  std::copy_n(block.bytes.begin() + static_cast<std::ptrdiff_t>(block.length), tail, heldBack.begin());
  heldBackBytes = tail;
}

void FileLine::State::PassAlone(Block& block) {
  ArriveAll();
  if (way == FileWay::Open) mac.Update(block.Text());
  Crypt(own.back(), block);
  if (way == FileWay::Seal) mac.Update(block.Text());
  Arrive(block);
}

void FileLine::State::PutBeside() {
  if (!line)
    line = std::make_unique<WorkLine>(workers, blocks.size(), [this](std::size_t worker, std::size_t item) {
      Process(own[worker], blocks[item % blocks.size()]);
    });
  line->Put();
  ++put;
  if (put - arrived == blocks.size()) ArriveOldest();
}

void FileLine::State::ArriveAll() {
  while (arrived < put)
    ArriveOldest();
}

void FileLine::State::ArriveOldest() {
  line->Take();
  Block& block = blocks[arrived++ % blocks.size()];
  mac.Append(block.sum);
  Arrive(block);
}

void FileLine::State::Arrive(Block& block) {
  for (Bytes left = block.Text(); !left.empty(); left = left.subspan(std::min(left.size(), kPiece)))
    destination.Write(left.first(std::min(left.size(), kPiece)));
}

void FileLine::State::Process(Worker& worker, Block& block) {
  if (!worker.summing) worker.summing.emplace(mac.MakeSumming());
  if (way == FileWay::Open) block.sum = worker.summing->Of(block.Text());
  Crypt(worker, block);
  if (way == FileWay::Seal) block.sum = worker.summing->Of(block.Text());
}

void FileLine::State::Crypt(Worker& worker, Block& block) {
  if (!worker.cipher) {
    worker.cipher = MakeCounterMode(suite);
    worker.cipher->set_key(keys.data(), suite.keyBytes);
    worker.cipher->set_iv(nullptr, 0);
  }
  if (worker.at != block.offset) worker.cipher->seek(block.offset);
  worker.cipher->cipher1(block.bytes.data(), block.length);
  worker.at = block.offset + block.length;
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
  const std::size_t end = m_state->Piece() + (block.held == 0 ? m_state->tail : block.held);
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
  m_state->ArriveAll();
}

Bytes FileLine::HeldBack() const {
  if (m_state->heldBackBytes != 0) return Bytes(m_state->heldBack).first(m_state->heldBackBytes);
  const Block& block = m_state->Current();
  return Bytes(block.bytes).first(block.held);
}

FileTag FileLine::MakeTag() {
  return m_state->mac.Finish();
}

}  // namespace tarnel
