#include "crypto/file_cipher.h"

#include <botan/mac.h>
#include <botan/mem_ops.h>
#include <botan/stream_cipher.h>

#include <algorithm>
#include <memory>
#include <string>

namespace tarnel {
namespace {

constexpr std::size_t kPiece = std::size_t{64} * 1024;
constexpr std::size_t kMacKeyBytes = 32;
constexpr std::array<std::uint8_t, 12> kMacIv{};

using Tag = std::array<std::uint8_t, kFileTagBytes>;

/// Cipher and authentication of one file.
class FileKeys {
 public:
  FileKeys(const CipherSuite& suite, const WipedBytes& masterKey, const FileNonce& nonce)
      : m_cipher(MakeCounterMode(suite)),
        m_mac(Botan::MessageAuthenticationCode::create_or_throw("GMAC(AES-256)")) {
    const WipedBytes keys = DeriveKeys(masterKey, nonce, "tarnel file " + std::to_string(suite.fileCode),
                                       suite.keyBytes + kMacKeyBytes);
    m_cipher->set_key(keys.data(), suite.keyBytes);
    m_cipher->set_iv(nullptr, 0);
    m_mac->set_key(keys.data() + suite.keyBytes, kMacKeyBytes);
    m_mac->start(kMacIv.data(), kMacIv.size());
    m_mac->update(nonce.data(), nonce.size());
  }

  void Encrypt(MutableBytes piece) {
    m_cipher->cipher1(piece.data(), piece.size());
    m_mac->update(piece.data(), piece.size());
  }

  void Decrypt(MutableBytes piece) {
    m_mac->update(piece.data(), piece.size());
    m_cipher->cipher1(piece.data(), piece.size());
  }

  Tag MakeTag() {
    Tag tag;
    m_mac->final(tag.data());
    return tag;
  }

 private:
  std::unique_ptr<Botan::StreamCipher> m_cipher;
  std::unique_ptr<Botan::MessageAuthenticationCode> m_mac;
};

}  // namespace

struct FileSealer::State {
  FileKeys keys;
  ByteSink& destination;
};

FileSealer::FileSealer(const CipherSuite& suite, const WipedBytes& masterKey, const FileNonce& nonce,
                       ByteSink& destination)
    : m_state(std::make_unique<State>(State{FileKeys(suite, masterKey, nonce), destination})) {
  destination.Write(nonce);
}

FileSealer::~FileSealer() = default;

void FileSealer::Seal(MutableBytes piece) {
  m_state->keys.Encrypt(piece);
  m_state->destination.Write(piece);
}

void FileSealer::Finish(FileTag tag) {
  Tag bytes = m_state->keys.MakeTag();
  if (tag == FileTag::Wrong) {
    for (std::uint8_t& byte : bytes)
      byte ^= 0xFF;
  }
  m_state->destination.Write(bytes);
}

void SealFile(const CipherSuite& suite, const WipedBytes& masterKey, const FileNonce& nonce,
              ByteSource& source, ByteSink& destination) {
  FileSealer sealer(suite, masterKey, nonce, destination);
  WipedBytes buffer(kPiece);
  while (const std::size_t length = source.Read(buffer))
    sealer.Seal(MutableBytes(buffer).first(length));
  sealer.Finish();
}

bool OpenFile(const CipherSuite& suite, const WipedBytes& masterKey, ByteSource& source,
              ByteSink& destination) {
  FileNonce nonce;
  if (source.Read(nonce) < nonce.size()) return false;
  FileKeys keys(suite, masterKey, nonce);
  const auto decrypt = [&](MutableBytes piece) {
    keys.Decrypt(piece);
    if (!piece.empty()) destination.Write(piece);
  };

  WipedBytes buffer(kPiece + kFileTagBytes);  // its last bytes may be the tag and wait for what follows
  std::size_t held = source.Read(buffer);
  while (held == buffer.size()) {
    decrypt(MutableBytes(buffer).first(kPiece));
    std::copy_n(buffer.end() - kFileTagBytes, kFileTagBytes, buffer.begin());
    held = kFileTagBytes + source.Read(MutableBytes(buffer).subspan(kFileTagBytes));
  }
  if (held < kFileTagBytes) return false;
  const std::size_t rest = held - kFileTagBytes;
  decrypt(MutableBytes(buffer).first(rest));
  return Botan::constant_time_compare(keys.MakeTag().data(), buffer.data() + rest, kFileTagBytes);
}

}  // namespace tarnel
