#pragma once

#include <functional>

#include "base/secret.h"

namespace tarnel {

/// Derives and keeps the master key of `passPhrase`, so that later cipher calls find it. While the derivation
/// runs on a helper thread, `yield` is called at least every 50 ms on the caller's thread. A no-op for a
/// known phrase.
void PrepareKey(const Secret& passPhrase, const std::function<void()>& yield);

/// Wipes all master keys, and all key schedules made from them.
void ForgetKeys();

}  // namespace tarnel
