#pragma once

#include <algorithm>
#include <string>

#include "base/bytes.h"

namespace tarnel {

class MemorySource : public ByteSource {
 public:
  explicit MemorySource(std::string_view text) : m_text(text) {}

  std::size_t Read(MutableBytes into) override {
    const std::size_t count = m_text.copy(reinterpret_cast<char*>(into.data()), into.size(), m_next);
    m_next += count;
    return count;
  }

 private:
  std::string m_text;
  std::size_t m_next = 0;
};

class MemorySink : public ByteSink {
 public:
  void Write(Bytes bytes) override { text.append(AsText(bytes)); }

  std::string text;
};

/// Text that repeats nowhere soon and compresses a little.
inline std::string SampleText(std::size_t length) {
  std::string text;
  for (std::size_t i = 0; text.size() < length; ++i)
    text += std::to_string(i * i % 9973) + (i % 7 != 0 ? " " : "\n");
  text.resize(length);
  return text;
}

inline std::string WithFlippedBit(std::string text, std::size_t bit) {
  text[bit / 8] = static_cast<char>(text[bit / 8] ^ 1 << bit % 8);
  return text;
}

}  // namespace tarnel
