#include "crypto/cipher.h"

#include "crypto/base64.h"
#include "crypto/cipher_suite.h"
#include "crypto/file_cipher.h"
#include "crypto/random.h"
#include "crypto/string_cipher.h"

namespace tarnel {
namespace {

static_assert(kFileCipherOverhead == kFileNonceBytes + kFileTagBytes);

/// Enough of `text` for the front of an encrypted string, so that foreign strings are refused without
/// decoding all of it. Characters that carry nothing can make it too short; then all is decoded.
std::string DecodeFront(std::string_view text) {
  constexpr std::size_t kCharacters = 24;
  std::string_view front = text.substr(0, kCharacters);
  if (front.ends_with('\r')) front.remove_suffix(1);
  const std::string bytes = Base64Decode(front);
  return bytes.size() < StringCipher::kFrontBytes ? Base64Decode(text) : bytes;
}

bool KeyFits(StringCipher& cipher, std::string_view cipherText, TextForm form) {
  return form == TextForm::Base64 ? cipher.KeyFits(AsBytes(DecodeFront(cipherText)))
                                  : cipher.KeyFits(AsBytes(cipherText));
}

WipedText Open(StringCipher& cipher, Bytes sealed, Cut cut) {
  if (cut == Cut::Allowed) return cipher.Decrypt(sealed);
  if (!cipher.IsWhole(sealed)) return {};
  return cipher.Decrypt(sealed.first(sealed.size() - StringCipher::kTagBytes));
}

}  // namespace

bool HasCipher(Algorithm algorithm) {
  return FindCipherSuite(algorithm) != nullptr;
}

std::string CipherEncryptString(Algorithm algorithm, std::string_view plain, TextForm form, const Key& key,
                                std::string& secondKey) {
  secondKey.clear();
  const CipherSuite* suite = FindCipherSuite(algorithm);
  if (plain.empty() || suite == nullptr) return {};
  StringCipher::Iv iv;
  FillRandom(iv);
  const std::string sealed = key.Strings(*suite)->Seal(iv, plain);
  return form == TextForm::Base64 ? Base64Encode(AsBytes(sealed)) : sealed;
}

WipedText CipherDecryptString(Algorithm algorithm, std::string_view cipherText, TextForm form, const Key& key,
                              std::string& secondKey, Cut cut) {
  secondKey.clear();
  const CipherSuite* suite = FindCipherSuite(algorithm);
  if (cipherText.empty() || suite == nullptr) return {};
  const auto cipher = key.Strings(*suite);
  if (!KeyFits(*cipher, cipherText, form)) return {};
  return form == TextForm::Base64 ? Open(*cipher, AsBytes(Base64Decode(cipherText)), cut)
                                  : Open(*cipher, AsBytes(cipherText), cut);
}

bool CipherKeyFits(Algorithm algorithm, std::string_view cipherText, TextForm form, const Key& key) {
  const CipherSuite* suite = FindCipherSuite(algorithm);
  return !cipherText.empty() && suite != nullptr && KeyFits(*key.Strings(*suite), cipherText, form);
}

bool CipherEncryptFile(Algorithm algorithm, ByteSource& source, ByteSink& destination, const Key& key,
                       std::string& secondKey) {
  secondKey.clear();
  const CipherSuite* suite = FindCipherSuite(algorithm);
  if (suite == nullptr) return true;
  FileNonce nonce;
  FillRandom(nonce);
  SealFile(*suite, key.Master(), nonce, source, destination);
  return true;
}

struct EncryptingSink::State {
  State(const CipherSuite& suite, const Key& key, const FileNonce& nonce, ByteSink& destination)
      : sealer(suite, key.Master(), nonce, destination) {}
  FileSealer sealer;
};

EncryptingSink::EncryptingSink(Algorithm algorithm, ByteSink& destination, const Key& key,
                               std::string& secondKey) {
  secondKey.clear();
  const CipherSuite* suite = FindCipherSuite(algorithm);
  if (suite == nullptr) return;
  FileNonce nonce;
  FillRandom(nonce);
  m_state = std::make_unique<State>(*suite, key, nonce, destination);
}

EncryptingSink::~EncryptingSink() = default;

void EncryptingSink::Write(Bytes plain) {
  if (m_state) m_state->sealer.Seal(plain);
}

void EncryptingSink::Finish(FileEnd end) {
  if (m_state) m_state->sealer.Finish(end);
}

bool CipherDecryptFile(Algorithm algorithm, ByteSource& source, ByteSink& destination, const Key& key,
                       std::string& secondKey) {
  secondKey.clear();
  const CipherSuite* suite = FindCipherSuite(algorithm);
  return suite == nullptr || OpenFile(*suite, key.Master(), source, destination);
}

}  // namespace tarnel
