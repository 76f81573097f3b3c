#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarnel {

/// Overwrites memory in a way that the compiler doesn't remove.
void Wipe(void* memory, std::size_t length) noexcept;

/// Wipes every block before it goes back to the heap.
template <class T>
class WipingAllocator {
 public:
  using value_type = T;

  WipingAllocator() = default;
  template <class U>
  WipingAllocator(const WipingAllocator<U>&) noexcept {}

  T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
  void deallocate(T* block, std::size_t count) noexcept {
    Wipe(block, count * sizeof(T));
    std::allocator<T>().deallocate(block, count);
  }

  template <class U>
  bool operator==(const WipingAllocator<U>&) const noexcept {
    return true;
  }
};

/// Text that holds what the user hid, such as a plain record. Long texts (over 15 bytes) lie in wiped memory.
using WipedText = std::basic_string<char, std::char_traits<char>, WipingAllocator<char>>;

using WipedBytes = std::vector<unsigned char, WipingAllocator<unsigned char>>;

/// A pass phrase: bytes that are wiped wherever a copy of them dies. Compares in constant time for equal
/// lengths. Never print one.
class Secret {
 public:
  Secret() = default;
  explicit Secret(std::string_view text) : m_text(text.begin(), text.end()) {}

  std::string_view View() const { return {m_text.data(), m_text.size()}; }
  bool IsEmpty() const { return m_text.empty(); }
  void Append(char c) { m_text.push_back(c); }
  void RemoveLast() { m_text.pop_back(); }
  void Clear();

  bool operator==(const Secret& other) const;

 private:
  std::vector<char, WipingAllocator<char>> m_text;
};

}  // namespace tarnel
