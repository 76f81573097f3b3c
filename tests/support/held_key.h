#pragma once

#include <map>
#include <string>
#include <string_view>

#include "crypto/keys.h"

namespace tarnel::test {

/// The key of `phrase`, held until the program ends: it is derived once, for everybody who asks for it
/// meanwhile. Never destroyed, for the cipher library's own memory may go before it.
inline const Key& HeldKey(std::string_view phrase) {
  static auto& keys = *new std::map<std::string, Key, std::less<>>;
  const auto known = keys.find(phrase);
  return known != keys.end() ? known->second : keys.emplace(phrase, Key(Secret(phrase))).first->second;
}

}  // namespace tarnel::test
