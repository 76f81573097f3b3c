#include "retrieval/block_source.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/attempt.h"
#include "carrier/format.h"

namespace tarnel {

namespace {

/// Writes of a few blocks that end in the middle of a page cost the platform three times as much.
constexpr std::size_t kPoured = std::size_t{256} * 1024;

}  // namespace

BlockSource::BlockSource(ByteSource& inner, Length length, CancelLook look, Dialogue& dialogue,
                         Progress progress)
    : m_inner(inner), m_left(length), m_look(look), m_dialogue(dialogue), m_progress(std::move(progress)) {}

std::size_t BlockSource::Read(MutableBytes into) {
  std::size_t filled = 0;
  while (filled < into.size() && m_left > 0) {
    if (m_blockLeft == 0) BeginBlock();
    const std::size_t wanted = std::min(into.size() - filled, static_cast<std::size_t>(m_blockLeft));
    const std::size_t got = m_inner.Read(into.subspan(filled, wanted));
    filled += got;
    m_left -= static_cast<Length>(got);
    m_blockLeft -= static_cast<Length>(got);
    if (got < wanted) m_left = 0;
    if (m_blockLeft == 0) EndBlock();
  }
  return filled;
}

void BlockSource::BeginBlock() {
  m_block = m_blockLeft = std::min(m_left, static_cast<Length>(kCopyBlock));
  if (m_look == CancelLook::BeforeFullBlock && IsFullBlock() && m_dialogue.CancelRequested())
    throw Stop{StopReason::Cancelled};
  m_progress(m_block);
}

void BlockSource::EndBlock() {
  if (!IsFullBlock()) return;
  m_dialogue.Yield();
  if (m_look == CancelLook::BehindFullBlock && m_dialogue.CancelRequested())
    throw Stop{StopReason::Cancelled};
}

bool BlockSource::IsFullBlock() const {
  return m_block == static_cast<Length>(kCopyBlock);
}

void Pour(ByteSource& source, ByteSink& sink) {
  std::vector<std::uint8_t> buffer(kPoured);
  while (const std::size_t length = source.Read(buffer))
    sink.Write(Bytes(buffer).first(length));
}

}  // namespace tarnel
