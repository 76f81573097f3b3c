#pragma once

#include <cstddef>
#include <functional>

#include "base/bytes.h"
#include "base/dialogue.h"
#include "base/files.h"

namespace tarnel {

/// Where a copy looks whether the person wants to stop. The last part of a copy, which is shorter than a
/// block, is never tested.
enum class CancelLook { BeforeFullBlock, BehindFullBlock };

/// Hands on `length` bytes of another source and stays in touch with the person meanwhile: one yield behind
/// each full block of kCopyBlock bytes, and a look for a cancel, which throws Stop(Cancelled). Blocks count
/// from the first byte, however large the pieces are in which the reader takes them.
class BlockSource : public ByteSource {
 public:
  /// Called once for each block and once for the last part, with its length, before it is read.
  using Progress = std::function<void(Length)>;

  BlockSource(ByteSource& inner, Length length, CancelLook look, Dialogue& dialogue, Progress progress);

  /// A source that ends before `length` bytes ends this one too.
  std::size_t Read(MutableBytes into) override;

 private:
  void BeginBlock();
  void EndBlock();
  bool IsFullBlock() const;

  ByteSource& m_inner;
  Length m_left;
  CancelLook m_look;
  Dialogue& m_dialogue;
  Progress m_progress;
  Length m_block = 0;      ///< length of the current block
  Length m_blockLeft = 0;  ///< bytes of it still to come
};

/// Puts all that `source` still has into `sink`.
void Pour(ByteSource& source, ByteSink& sink);

}  // namespace tarnel
