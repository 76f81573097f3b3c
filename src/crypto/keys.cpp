#include "crypto/keys.h"

#include <botan/hash.h>
#include <botan/pwdhash.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <future>
#include <map>
#include <mutex>
#include <utility>

#include "crypto/cipher.h"
#include "crypto/key_ring.h"

namespace tarnel {
namespace {

// There is no place in a carrier for parameters or a salt, so these are for ever.
constexpr std::string_view kSalt = "Tarnel key salt1";
constexpr std::size_t kMemoryKib = std::size_t{64} * 1024;
constexpr std::size_t kPasses = 2;
constexpr std::size_t kLanes = 1;

WipedBytes Sha256(Botan::HashFunction& function, std::string_view text) {
  WipedBytes digest(kMasterKeyBytes);
  function.update(AsBytes(text).data(), text.size());
  function.final(digest.data());
  return digest;
}

WipedBytes DeriveMasterKey(const Secret& passPhrase) {
  const std::string_view text = passPhrase.View();
  if (text == kTrailerPassPhrase) return Sha256(*Botan::HashFunction::create_or_throw("SHA-256"), text);
  const auto function = Botan::PasswordHashFamily::create_or_throw("Argon2id");
  WipedBytes key(kMasterKeyBytes);
  function->from_params(kMemoryKib, kPasses, kLanes)
      ->derive_key(key.data(), key.size(), text.data(), text.size(), AsBytes(kSalt).data(), kSalt.size());
  return key;
}

class KeyRing {
 public:
  bool Knows(const Secret& passPhrase) {
    const std::scoped_lock lock(m_mutex);
    return m_keys.contains(IdOf(passPhrase));
  }

  void Keep(const Secret& passPhrase, WipedBytes masterKey) {
    const std::scoped_lock lock(m_mutex);
    m_keys.try_emplace(IdOf(passPhrase), KeySet{std::move(masterKey), {}});
  }

  WipedBytes MasterKey(const Secret& passPhrase) {
    std::unique_lock lock(m_mutex);
    return KeysOf(passPhrase, lock).masterKey;
  }

  std::shared_ptr<StringCipher> Strings(const CipherSuite& suite, const Secret& passPhrase) {
    std::unique_lock lock(m_mutex);
    KeySet& keys = KeysOf(passPhrase, lock);
    std::shared_ptr<StringCipher>& cipher = keys.strings[suite.algorithm];
    if (cipher == nullptr) cipher = std::make_shared<StringCipher>(suite, keys.masterKey);
    return cipher;
  }

  void Forget() {
    const std::scoped_lock lock(m_mutex);
    m_keys.clear();
  }

 private:
  struct KeySet {
    WipedBytes masterKey;
    std::map<Algorithm, std::shared_ptr<StringCipher>> strings;
  };

  /// Of a fixed size, for its comparison is quicker than that of vectors.
  using Id = std::array<unsigned char, kMasterKeyBytes>;

  Id IdOf(const Secret& passPhrase) {
    const WipedBytes digest = Sha256(*m_hash, passPhrase.View());
    Id id;
    std::copy_n(digest.begin(), id.size(), id.begin());
    return id;
  }

  /// Unlocks for the derivation, so that nobody waits for another pass phrase's key.
  KeySet& KeysOf(const Secret& passPhrase, std::unique_lock<std::mutex>& lock) {
    const Id id = IdOf(passPhrase);
    auto found = m_keys.find(id);
    if (found == m_keys.end()) {
      lock.unlock();
      WipedBytes masterKey = DeriveMasterKey(passPhrase);
      lock.lock();
      found = m_keys.try_emplace(id, KeySet{std::move(masterKey), {}}).first;
    }
    return found->second;
  }

  std::mutex m_mutex;
  std::unique_ptr<Botan::HashFunction> m_hash = Botan::HashFunction::create_or_throw("SHA-256");
  std::map<Id, KeySet, std::less<>, WipingAllocator<std::pair<const Id, KeySet>>> m_keys;
};

KeyRing& TheKeyRing() {
  static KeyRing ring;
  return ring;
}

}  // namespace

void PrepareKey(const Secret& passPhrase, const std::function<void()>& yield) {
  if (TheKeyRing().Knows(passPhrase)) return;
  using namespace std::chrono_literals;
  // The default policy derives in get() if there is no thread to be had.
  auto derived = std::async(DeriveMasterKey, passPhrase);
  while (derived.wait_for(20ms) == std::future_status::timeout)
    yield();
  TheKeyRing().Keep(passPhrase, derived.get());
}

void ForgetKeys() {
  TheKeyRing().Forget();
}

WipedBytes MasterKeyOf(const Secret& passPhrase) {
  return TheKeyRing().MasterKey(passPhrase);
}

std::shared_ptr<StringCipher> StringCipherOf(const CipherSuite& suite, const Secret& passPhrase) {
  return TheKeyRing().Strings(suite, passPhrase);
}

}  // namespace tarnel
