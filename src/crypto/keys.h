#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "base/secret.h"

namespace tarnel {

struct CipherSuite;
class StringCipher;

/// A handle to what a pass phrase opens: the phrase, its master key and the key schedules made from it. This
/// is what travels; the phrase itself stands in one place. Copies share it, and so do handles of one phrase
/// that live at one time; the last one wipes it. May be used by several threads.
class Key {
 public:
  /// The key of the empty phrase.
  Key() : Key(Secret()) {}

  /// Derives nothing yet: the master key is made at its first use, which takes a fifth of a second, or by
  /// Prepare.
  explicit Key(const Secret& passPhrase);

  /// The public key of the length fields: the same in every carrier, whatever pass phrases read like its
  /// text.
  static const Key& OfLengthFields();

  /// Begins to derive the master key on a helper thread, if none is at it, and doesn't wait. What goes wrong
  /// there is thrown by whoever needs the key.
  void Start() const;

  /// Waits for that, or begins it, and calls `yield` at least every 50 ms meanwhile. A no-op for a key that
  /// has one.
  void Prepare(const std::function<void()>& yield) const;

  /// Whether this is the phrase's key.
  bool IsOf(const Secret& passPhrase) const;
  bool operator==(const Key& other) const;

  const WipedBytes& Master() const;
  std::shared_ptr<StringCipher> Strings(const CipherSuite& suite) const;

 private:
  friend class LivingKeys;
  struct Keys;
  explicit Key(std::shared_ptr<Keys> keys) : m_keys(std::move(keys)) {}

  std::shared_ptr<Keys> m_keys;
};

/// Wipes all phrases and keys for the end of a process that unwinds nothing. No Key may be used afterwards.
void WipeAllKeys();

}  // namespace tarnel
