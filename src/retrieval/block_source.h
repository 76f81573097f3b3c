#pragma once

#include <cstddef>
#include <functional>
#include <utility>

#include "base/bytes.h"
#include "base/dialogue.h"
#include "base/files.h"

namespace tarnel {

/// Where a copy looks whether the person wants to stop. The last part of a copy, which is shorter than a
/// block, is never tested.
enum class CancelLook { BeforeFullBlock, BehindFullBlock };

/// Stays in touch with the person while `length` bytes are copied: one yield behind each full block of
/// kCopyBlock bytes, and a look for a cancel, which throws Stop(Cancelled). Blocks count from the first byte,
/// however large the pieces are in which the copy is made.
class BlockCount {
 public:
  /// Called once for each block and once for the last part, with its length, as it begins.
  using Progress = std::function<void(Length)>;

  BlockCount(Length length, CancelLook look, Dialogue& dialogue, Progress progress);

  /// How many of the next `most` bytes can be copied before a block ends; begins one where it has to.
  std::size_t Next(std::size_t most);
  /// So many were copied, not more than Next said.
  void Passed(std::size_t bytes);
  /// Passes `bytes` in one go.
  void PassAll(std::size_t bytes);

 private:
  void BeginBlock();
  void EndBlock();
  bool IsFullBlock() const;

  Length m_left;
  CancelLook m_look;
  Dialogue& m_dialogue;
  Progress m_progress;
  Length m_block = 0;      ///< length of the current block
  Length m_blockLeft = 0;  ///< bytes of it still to come
};

/// Hands on the bytes of another source and counts their blocks.
class BlockSource : public ByteSource {
 public:
  BlockSource(ByteSource& inner, BlockCount count) : m_inner(inner), m_count(std::move(count)) {}

  /// A source that ends before the count does ends this one too.
  std::size_t Read(MutableBytes into) override;

 private:
  ByteSource& m_inner;
  BlockCount m_count;
  bool m_hasEnded = false;
};

}  // namespace tarnel
