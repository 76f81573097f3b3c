#include "crypto/keys.h"

#include <botan/hash.h>
#include <botan/pwdhash.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

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
  explicit Keys(Secret text) : phrase(std::move(text)) {}
  explicit Keys(WipedBytes master) : masterKey(std::move(master)) {}

  const WipedBytes& Master() {
    const std::scoped_lock lock(mutex);
    if (masterKey.empty()) masterKey = DeriveMasterKey(phrase);
    isDerived = true;
    return masterKey;
  }

  /// One derivation for all who ask meanwhile. Its thread is joined before anything of this goes.
  std::shared_future<void> Derivation() {
    const std::scoped_lock lock(starting);
    // The default policy derives in get() if there is no thread to be had.
    if (!derivation.valid()) derivation = std::async([this] { Master(); });
    return derivation;
  }

  /// So that the next who asks tries again.
  void ForgetDerivation() {
    const std::scoped_lock lock(starting);
    derivation = {};
  }

  Secret phrase;
  std::mutex mutex;
  WipedBytes masterKey;  ///< empty until it is derived
  std::atomic<bool> isDerived = false;
  std::map<Algorithm, std::shared_ptr<StringCipher>> strings;
  std::mutex starting;
  std::shared_future<void> derivation;
};

/// Those that some handle holds.
class LivingKeys {
 public:
  static LivingKeys& Get() {
    static LivingKeys keys;
    return keys;
  }

  std::shared_ptr<Key::Keys> Of(const Secret& passPhrase) {
    const std::scoped_lock lock(m_mutex);
    std::erase_if(m_keys, [](const auto& keys) { return keys.expired(); });
    for (const std::weak_ptr<Key::Keys>& known : m_keys) {
      std::shared_ptr<Key::Keys> keys = known.lock();
      if (keys && keys->phrase == passPhrase) return keys;
    }
    auto keys = std::make_shared<Key::Keys>(passPhrase);
    m_keys.push_back(keys);
    return keys;
  }

  void Wipe() {
    const std::scoped_lock lock(m_mutex);
    for (const std::weak_ptr<Key::Keys>& known : m_keys) {
      if (const std::shared_ptr<Key::Keys> keys = known.lock()) {
        keys->phrase.Clear();
        tarnel::Wipe(keys->masterKey.data(), keys->masterKey.size());
        keys->strings.clear();
      }
    }
  }

 private:
  std::mutex m_mutex;
  std::vector<std::weak_ptr<Key::Keys>> m_keys;
};

Key::Key(const Secret& passPhrase) : m_keys(LivingKeys::Get().Of(passPhrase)) {}

const Key& Key::OfLengthFields() {
  static const Key key(
      std::make_shared<Keys>(Sha256(*Botan::HashFunction::create_or_throw("SHA-256"), kLengthFieldPhrase)));
  return key;
}

void Key::Start() const {
  if (!m_keys->isDerived) m_keys->Derivation();
}

void Key::Prepare(const std::function<void()>& yield) const {
  using namespace std::chrono_literals;
  if (m_keys->isDerived) return;
  const std::shared_ptr<Keys> keys = m_keys;  // a yield may take this handle away
  const std::shared_future<void> derived = keys->Derivation();
  while (derived.wait_for(20ms) == std::future_status::timeout)
    yield();
  try {
    derived.get();
  } catch (...) {
    keys->ForgetDerivation();
    throw;
  }
}

bool Key::IsOf(const Secret& passPhrase) const {
  return m_keys->phrase == passPhrase;
}

bool Key::operator==(const Key& other) const {
  return m_keys == other.m_keys || m_keys->phrase == other.m_keys->phrase;
}

const WipedBytes& Key::Master() const {
  return m_keys->Master();
}

std::shared_ptr<StringCipher> Key::Strings(const CipherSuite& suite) const {
  const WipedBytes& master = m_keys->Master();
  const std::scoped_lock lock(m_keys->mutex);
  std::shared_ptr<StringCipher>& cipher = m_keys->strings[suite.algorithm];
  if (cipher == nullptr) cipher = std::make_shared<StringCipher>(suite, master);
  return cipher;
}

void WipeAllKeys() {
  LivingKeys::Get().Wipe();
}

}  // namespace tarnel
