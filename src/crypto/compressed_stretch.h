#pragma once

#include <memory>

#include "base/bytes.h"
#include "base/secret.h"

namespace tarnel {

/// Where a stretch stands in its stream.
enum class Stretch { Inner, Last };

/// Makes the parts of a deflate stream (RFC 1951) that can be made independently of each other: no part
/// refers to another's text, and each ends at a byte. One for each thread.
class StretchCompressor {
 public:
  /// Level 0 to 9.
  explicit StretchCompressor(int level);
  ~StretchCompressor();

  /// The compressed form of `plain`, which isn't empty. It has been decompressed and compared.
  WipedBytes Compress(Bytes plain, Stretch stretch);

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace tarnel
