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

#include "crypto/cipher_suite.h"
#include "crypto/string_cipher.h"

namespace tarnel {
namespace {

// There is no place in a carrier for parameters or a salt, so these are for ever. They are the second
// recommended set of RFC 9106, section 4.
constexpr std::string_view kSalt = "Tarnel key salt1";
constexpr std::size_t kMemoryKib = std::size_t{64} * 1024;
constexpr std::size_t kPasses = 3;
constexpr std::size_t kLanes = 4;

constexpr std::string_view kLengthFieldPhrase = "TarnKey";

WipedBytes Sha256(Botan::HashFunction& function, std::string_view text) {
  WipedBytes digest(kMasterKeyBytes);
  function.update(AsBytes(text).data(), text.size());
  function.final(digest.data());
  return digest;
}

WipedBytes DeriveMasterKey(const Secret& passPhrase) {
  const std::string_view text = passPhrase.View();
  const auto function = Botan::PasswordHashFamily::create_or_throw("Argon2id");
  WipedBytes key(kMasterKeyBytes);
  function->from_params(kMemoryKib, kPasses, kLanes)
      ->derive_key(key.data(), key.size(), text.data(), text.size(), AsBytes(kSalt).data(), kSalt.size());
  return key;
}

}  // namespace

struct Key::Keys {
  explicit Keys(WipedBytes master) : masterKey(std::move(master)) {}

  const WipedBytes masterKey;
  std::mutex mutex;
  std::map<Algorithm, std::shared_ptr<StringCipher>> strings;
};

/// The keys of all pass phrases that were used since ForgetKeys.
class KeyRing {
 public:
  static KeyRing& Get() {
    static KeyRing ring;
    return ring;
  }

  bool Knows(const Secret& passPhrase) {
    const std::scoped_lock lock(m_mutex);
    return m_keys.contains(IdOf(passPhrase));
  }

  void Keep(const Secret& passPhrase, WipedBytes masterKey) {
    const std::scoped_lock lock(m_mutex);
    m_keys.try_emplace(IdOf(passPhrase), std::make_shared<Key::Keys>(std::move(masterKey)));
  }

  /// Unlocks for the derivation, so that nobody waits for another pass phrase's key.
  std::shared_ptr<Key::Keys> KeysOf(const Secret& passPhrase) {
    std::unique_lock lock(m_mutex);
    const Id id = IdOf(passPhrase);
    auto found = m_keys.find(id);
    if (found == m_keys.end()) {
      lock.unlock();
      auto keys = std::make_shared<Key::Keys>(DeriveMasterKey(passPhrase));
      lock.lock();
      found = m_keys.try_emplace(id, std::move(keys)).first;
    }
    return found->second;
  }

  void Forget() {
    const std::scoped_lock lock(m_mutex);
    m_keys.clear();
  }

 private:
  /// Of a fixed size, for its comparison is quicker than that of vectors.
  using Id = std::array<unsigned char, kMasterKeyBytes>;
  using Kept = std::shared_ptr<Key::Keys>;

  Id IdOf(const Secret& passPhrase) {
    const WipedBytes digest = Sha256(*m_hash, passPhrase.View());
    Id id;
    std::copy_n(digest.begin(), id.size(), id.begin());
    return id;
  }

  std::mutex m_mutex;
  std::unique_ptr<Botan::HashFunction> m_hash = Botan::HashFunction::create_or_throw("SHA-256");
  std::map<Id, Kept, std::less<>, WipingAllocator<std::pair<const Id, Kept>>> m_keys;
};

Key::Key(const Secret& passPhrase) : m_keys(KeyRing::Get().KeysOf(passPhrase)) {}

const Key& Key::OfLengthFields() {
  static const Key key(
      std::make_shared<Keys>(Sha256(*Botan::HashFunction::create_or_throw("SHA-256"), kLengthFieldPhrase)));
  return key;
}

const WipedBytes& Key::Master() const {
  return m_keys->masterKey;
}

std::shared_ptr<StringCipher> Key::Strings(const CipherSuite& suite) const {
  const std::scoped_lock lock(m_keys->mutex);
  std::shared_ptr<StringCipher>& cipher = m_keys->strings[suite.algorithm];
  if (cipher == nullptr) cipher = std::make_shared<StringCipher>(suite, m_keys->masterKey);
  return cipher;
}

void PrepareKey(const Secret& passPhrase, const std::function<void()>& yield) {
  if (KeyRing::Get().Knows(passPhrase)) return;
  using namespace std::chrono_literals;
  // The default policy derives in get() if there is no thread to be had.
  auto derived = std::async(DeriveMasterKey, passPhrase);
  while (derived.wait_for(20ms) == std::future_status::timeout)
    yield();
  KeyRing::Get().Keep(passPhrase, derived.get());
}

void ForgetKeys() {
  KeyRing::Get().Forget();
}

}  // namespace tarnel
