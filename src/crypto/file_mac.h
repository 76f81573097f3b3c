#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/bytes.h"
#include "base/secret.h"

namespace tarnel {

inline constexpr std::size_t kFileTagBytes = 16;
using FileTag = std::array<std::uint8_t, kFileTagBytes>;

/// GMAC with AES-256 (NIST SP 800-38D) under an initial vector of 12 zero bytes.
///
/// Its hash is a polynomial: each 16 bytes of text times a power of the hash key. So the sum over a block can
/// be made anywhere, by several threads at a time, and takes its place by one multiplication.
class FileMac {
 public:
  static constexpr std::size_t kKeyBytes = 32;
  static constexpr std::size_t kWordBytes = 16;
  /// The length of blocks that are summed by themselves.
  static constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;

  using Sum = std::array<std::uint8_t, 16>;

  /// Sums blocks; one for each thread.
  class Summing {
   public:
    Summing(Summing&& other) noexcept;
    ~Summing();
    /// Of a block of kBlockBytes.
    Sum Of(Bytes block);

   private:
    friend class FileMac;
    struct State;
    explicit Summing(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
  };

  explicit FileMac(Bytes key);
  ~FileMac();

  /// The next bytes of the text.
  void Update(Bytes text);
  /// The next block of the text. What came before must be a multiple of 16 bytes.
  void Append(const Sum& block);
  /// Ends it.
  FileTag Finish();

  /// May be called by several threads at a time.
  Summing MakeSumming() const;

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace tarnel
