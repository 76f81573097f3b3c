#include "crypto/string_cipher.h"

#include <botan/mac.h>
#include <botan/mem_ops.h>
#include <botan/stream_cipher.h>

#include <algorithm>

namespace tarnel {
namespace {

constexpr std::size_t kMacKeyBytes = 32;

template <std::size_t kBytes>
std::array<std::uint8_t, kBytes> MacOf(Botan::MessageAuthenticationCode& mac, Bytes bytes) {
  std::array<std::uint8_t, 32> whole;
  mac.update(bytes.data(), bytes.size());
  mac.final(whole.data());
  std::array<std::uint8_t, kBytes> front;
  std::copy_n(whole.begin(), kBytes, front.begin());
  return front;
}

std::unique_ptr<Botan::MessageAuthenticationCode> MakeMac(const unsigned char* key) {
  auto mac = Botan::MessageAuthenticationCode::create_or_throw("HMAC(SHA-256)");
  mac->set_key(key, kMacKeyBytes);
  return mac;
}

}  // namespace

StringCipher::StringCipher(const CipherSuite& suite, const WipedBytes& masterKey)
    : m_cipher(MakeCounterMode(suite)) {
  const WipedBytes keys = DeriveKeys(masterKey, {}, "tarnel string " + std::to_string(suite.stringCode),
                                     suite.keyBytes + 2 * kMacKeyBytes);
  m_cipher->set_key(keys.data(), suite.keyBytes);
  m_keyCheck = MakeMac(keys.data() + suite.keyBytes);
  m_tag = MakeMac(keys.data() + suite.keyBytes + kMacKeyBytes);
}

StringCipher::~StringCipher() = default;

std::string StringCipher::Seal(const Iv& iv, std::string_view plain) {
  const std::scoped_lock lock(m_mutex);
  std::string sealed(AsText(iv));
  sealed.append(AsText(CheckOf(iv)));
  sealed.resize(kFrontBytes + plain.size());
  Crypt(iv, AsBytes(plain), reinterpret_cast<std::uint8_t*>(sealed.data()) + kFrontBytes);
  return sealed.append(AsText(TagOf(AsBytes(sealed))));
}

bool StringCipher::KeyFits(Bytes sealed) {
  if (sealed.size() < kFrontBytes) return false;
  const std::scoped_lock lock(m_mutex);
  const KeyCheck expected = CheckOf(sealed.first(kIvBytes));
  return Botan::constant_time_compare(expected.data(), sealed.data() + kIvBytes, expected.size());
}

bool StringCipher::IsWhole(Bytes sealed) {
  if (sealed.size() < kFrontBytes + kTagBytes) return false;
  const std::scoped_lock lock(m_mutex);
  const Tag expected = TagOf(sealed.first(sealed.size() - kTagBytes));
  return Botan::constant_time_compare(expected.data(), sealed.last(kTagBytes).data(), expected.size());
}

WipedText StringCipher::Decrypt(Bytes sealed) {
  if (sealed.size() <= kFrontBytes) return {};
  const std::scoped_lock lock(m_mutex);
  const Bytes text = sealed.subspan(kFrontBytes);
  WipedText plain(text.size(), '\0');
  Crypt(sealed.first(kIvBytes), text, reinterpret_cast<std::uint8_t*>(plain.data()));
  return plain;
}

StringCipher::KeyCheck StringCipher::CheckOf(Bytes iv) {
  return MacOf<std::tuple_size_v<KeyCheck>>(*m_keyCheck, iv);
}

StringCipher::Tag StringCipher::TagOf(Bytes sealed) {
  return MacOf<kTagBytes>(*m_tag, sealed);
}

void StringCipher::Crypt(Bytes iv, Bytes from, std::uint8_t* to) {
  m_cipher->set_iv(iv.data(), iv.size());
  m_cipher->cipher(from.data(), to, from.size());
}

}  // namespace tarnel
