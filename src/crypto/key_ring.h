#pragma once

#include <memory>

#include "base/secret.h"
#include "crypto/cipher_suite.h"
#include "crypto/string_cipher.h"

namespace tarnel {

/// The process-wide store of master keys and of the string ciphers made from them. Thread safe. PrepareKey
/// and ForgetKeys act on it too.

/// The master key of `passPhrase`, which is derived at its first use.
WipedBytes MasterKeyOf(const Secret& passPhrase);

/// Stays usable for its holder when ForgetKeys runs.
std::shared_ptr<StringCipher> StringCipherOf(const CipherSuite& suite, const Secret& passPhrase);

}  // namespace tarnel
