#include "base/secret.h"

#include <string.h>

namespace tarnel {

void Wipe(void* memory, std::size_t length) noexcept {
  if (length != 0) ::explicit_bzero(memory, length);
}

void Secret::Clear() {
  Wipe(m_text.data(), m_text.size());
  m_text.clear();
}

bool Secret::operator==(const Secret& other) const {
  if (m_text.size() != other.m_text.size()) return false;
  unsigned char difference = 0;
  for (std::size_t i = 0; i < m_text.size(); ++i)
    difference = static_cast<unsigned char>(difference | (m_text[i] ^ other.m_text[i]));
  return difference == 0;
}

}  // namespace tarnel
