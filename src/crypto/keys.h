#pragma once

#include <functional>
#include <memory>

#include "base/secret.h"

namespace tarnel {

struct CipherSuite;
class StringCipher;

/// A handle to a master key and to the key schedules made from it. Copies share them; the last one wipes
/// them. May be used by several threads.
class Key {
 public:
  /// The key of a pass phrase, which is derived at its first use and then known until ForgetKeys.
  Key(const Secret& passPhrase);  // NOLINT(google-explicit-constructor)

  /// The public key of the length fields: the same in every carrier, whatever pass phrases read like its
  /// text.
  static const Key& OfLengthFields();

  const WipedBytes& Master() const;
  std::shared_ptr<StringCipher> Strings(const CipherSuite& suite) const;

 private:
  friend class KeyRing;
  struct Keys;
  explicit Key(std::shared_ptr<Keys> keys) : m_keys(std::move(keys)) {}

  std::shared_ptr<Keys> m_keys;
};

/// Derives and keeps the master key of `passPhrase`, so that later cipher calls find it. While the derivation
/// runs on a helper thread, `yield` is called at least every 50 ms on the caller's thread. A no-op for a
/// known phrase.
void PrepareKey(const Secret& passPhrase, const std::function<void()>& yield);

/// Lets go of all master keys, and of all key schedules made from them. Those that a Key still holds are
/// wiped with it.
void ForgetKeys();

}  // namespace tarnel
