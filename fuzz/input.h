#pragma once

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "base/bytes.h"

namespace tarnel::fuzz {

/// A promise that did not hold. No Error, so that nothing under test catches it.
class Violation : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

inline void Require(bool holds, const char* promise) {
  if (!holds) throw Violation(std::string("broken: ") + promise);
}

/// Takes values from the front of the fuzzer's bytes. An input that has ended gives zeros and empty texts.
class Input {
 public:
  explicit Input(Bytes bytes) : m_bytes(bytes) {}

  bool IsEmpty() const { return m_bytes.empty(); }
  std::uint8_t Byte() { return static_cast<std::uint8_t>(Take(1)); }
  std::uint32_t Number() { return Take(4); }

  /// A text of at most 65,535 bytes that stands behind its length in two bytes.
  std::string Text() { return TextOf(Take(2)); }
  std::string Rest() { return TextOf(m_bytes.size()); }

  std::string TextOf(std::size_t length) {
    const Bytes front = m_bytes.first(std::min(length, m_bytes.size()));
    m_bytes = m_bytes.subspan(front.size());
    return std::string(AsText(front));
  }

 private:
  std::uint32_t Take(std::size_t bytes) {
    std::uint32_t number = 0;
    for (const char c : TextOf(bytes))
      number = number << 8 | static_cast<std::uint8_t>(c);
    return number;
  }

  Bytes m_bytes;
};

}  // namespace tarnel::fuzz
