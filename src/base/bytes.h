#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace tarnel {

using Bytes = std::span<const std::uint8_t>;
using MutableBytes = std::span<std::uint8_t>;

inline Bytes AsBytes(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

inline std::string_view AsText(Bytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Where a stage takes its bytes from. Reading moves on; there is no way back.
class ByteSource {
 public:
  virtual ~ByteSource() = default;

  /// Fills `into` from the front and returns how many bytes it got: fewer than asked only at the end of the
  /// source, and 0 from then on. Throws Error.
  virtual std::size_t Read(MutableBytes into) = 0;
};

/// Where a stage puts its bytes. What was written before a throw stays written.
class ByteSink {
 public:
  virtual ~ByteSink() = default;

  /// Takes all of `bytes` or throws: Error, or whatever ends the operation that owns the sink.
  virtual void Write(Bytes bytes) = 0;
};

}  // namespace tarnel
