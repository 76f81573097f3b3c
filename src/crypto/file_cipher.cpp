#include "crypto/file_cipher.h"

#include <botan/mem_ops.h>

#include <algorithm>

namespace tarnel {
namespace {

/// How many bytes came, and whether that was all there was room for.
struct Portion {
  std::size_t length;
  bool isFull;
};

Portion Take(ByteSource& source, FileLine& line) {
  const MutableBytes room = line.Room();
  std::size_t length = 0;
  try {
    length = source.Read(room);
  } catch (...) {
    line.Drain();
    throw;
  }
  line.Add(length);
  return {length, length == room.size()};
}

}  // namespace

FileSealer::FileSealer(const CipherSuite& suite, const WipedBytes& masterKey, const FileNonce& nonce,
                       ByteSink& destination, std::size_t workers)
    : m_destination(destination), m_line(FileWay::Seal, suite, masterKey, nonce, destination, workers) {
  destination.Write(nonce);
}

void FileSealer::Seal(ByteSource& source) {
  while (Take(source, m_line).length != 0)
    continue;
}

void FileSealer::Seal(Bytes piece) {
  while (!piece.empty()) {
    const MutableBytes room = m_line.Room();
    const std::size_t length = std::min(piece.size(), room.size());
    std::copy_n(piece.begin(), length, room.begin());
    m_line.Add(length);
    piece = piece.subspan(length);
  }
}

void FileSealer::Finish(FileEnd end) {
  m_line.Drain();
  auto bytes = m_line.MakeTag();
  if (end == FileEnd::Damaged) {
    for (std::uint8_t& byte : bytes)
      byte ^= 0xFF;
  }
  m_destination.Write(bytes);
}

void SealFile(const CipherSuite& suite, const WipedBytes& masterKey, const FileNonce& nonce,
              ByteSource& source, ByteSink& destination, std::size_t workers) {
  FileSealer sealer(suite, masterKey, nonce, destination, workers);
  sealer.Seal(source);
  sealer.Finish();
}

bool OpenFile(const CipherSuite& suite, const WipedBytes& masterKey, ByteSource& source,
              ByteSink& destination, std::size_t workers) {
  FileNonce nonce;
  if (source.Read(nonce) < nonce.size()) return false;
  FileLine line(FileWay::Open, suite, masterKey, nonce, destination, workers);
  while (Take(source, line).isFull)
    continue;
  line.Drain();
  const Bytes tag = line.HeldBack();
  if (tag.size() < kFileTagBytes) return false;
  return Botan::constant_time_compare(line.MakeTag().data(), tag.data(), kFileTagBytes);
}

}  // namespace tarnel
