#include "retrieval/block_source.h"

#include <algorithm>
#include <utility>

#include "base/attempt.h"
#include "carrier/format.h"

namespace tarnel {

BlockCount::BlockCount(Length length, CancelLook look, Dialogue& dialogue, Progress progress)
    : m_left(length), m_look(look), m_dialogue(dialogue), m_progress(std::move(progress)) {}

std::size_t BlockCount::Next(std::size_t most) {
  if (most == 0 || m_left == 0) return 0;
  if (m_blockLeft == 0) BeginBlock();
  return std::min(most, static_cast<std::size_t>(m_blockLeft));
}

void BlockCount::Passed(std::size_t bytes) {
  m_left -= static_cast<Length>(bytes);
  m_blockLeft -= static_cast<Length>(bytes);
  if (m_blockLeft == 0) EndBlock();
}

void BlockCount::PassAll(std::size_t bytes) {
  while (const std::size_t next = Next(bytes)) {
    Passed(next);
    bytes -= next;
  }
}

void BlockCount::BeginBlock() {
  m_block = m_blockLeft = std::min(m_left, static_cast<Length>(kCopyBlock));
  if (m_look == CancelLook::BeforeFullBlock && IsFullBlock() && m_dialogue.CancelRequested())
    throw Stop{StopReason::Cancelled};
  m_progress(m_block);
}

void BlockCount::EndBlock() {
  if (!IsFullBlock()) return;
  m_dialogue.Yield();
  if (m_look == CancelLook::BehindFullBlock && m_dialogue.CancelRequested())
    throw Stop{StopReason::Cancelled};
}

bool BlockCount::IsFullBlock() const {
  return m_block == static_cast<Length>(kCopyBlock);
}

std::size_t BlockSource::Read(MutableBytes into) {
  std::size_t filled = 0;
  while (!m_hasEnded) {
    const std::size_t wanted = m_count.Next(into.size() - filled);
    if (wanted == 0) break;
    const std::size_t got = m_inner.Read(into.subspan(filled, wanted));
    filled += got;
    m_hasEnded = got < wanted;
    m_count.Passed(got);
  }
  return filled;
}

}  // namespace tarnel
