#include "hiding/entry_writer.h"

#include <algorithm>

#include "base/attempt.h"
#include "base/printable.h"

namespace tarnel {

EntryWriter::EntryWriter(File& carrier, const Path& path, Length end, HideScreen& screen,
                         HideProgress& progress)
    : m_carrier(carrier),
      m_path(path),
      m_screen(screen),
      m_progress(progress),
      m_end(end),
      m_valueAtEnd(progress.value) {
  m_gathered.reserve(kGathered);
}

void EntryWriter::Rewind() {
  m_gathered.clear();
  m_inBlock = 0;
  m_written = 0;
  m_progress.value = m_valueAtEnd;
  const Length size = m_carrier.Size();
  if (size != m_end && !m_mayHavePart)
    throw Error(ErrorNumber::DeviceIo,
                "cannot hide in " + Printable(m_path.native()) + ": another program has changed its length",
                m_path);
  if (size != m_end) m_carrier.Truncate(m_end);
  m_mayHavePart = false;
}

void EntryWriter::Write(Bytes bytes) {
  while (!bytes.empty()) {
    const std::size_t taken = std::min(bytes.size(), kCopyBlock - m_inBlock);
    m_gathered.insert(m_gathered.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(taken));
    bytes = bytes.subspan(taken);
    m_inBlock += taken;
    if (m_inBlock == kCopyBlock) EndBlock();
  }
}

void EntryWriter::EndBlock() {
  if (m_screen.CancelRequested()) throw Stop{StopReason::Cancelled};
  m_inBlock = 0;
  if (m_gathered.size() == kGathered) Flush();
  Advance(kCopyBlock);
  m_screen.Yield();
}

void EntryWriter::Flush() {
  WriteThrough(m_gathered);
  m_gathered.clear();
}

Length EntryWriter::FinishPayload() {
  Flush();
  Advance(m_inBlock);
  m_inBlock = 0;
  return m_written;
}

void EntryWriter::FinishEntry(std::string_view tail) {
  WriteThrough(AsBytes(tail));
  m_end += m_written;
  m_mayHavePart = false;
  m_written = 0;
  m_valueAtEnd = m_progress.value;
}

void EntryWriter::Advance(std::size_t bytes) {
  m_progress.value += static_cast<Length>(bytes);
  m_screen.ShowProgress(m_progress.value, m_progress.maximum);
}

void EntryWriter::WriteThrough(Bytes bytes) {
  const Length length = static_cast<Length>(bytes.size());
  if (length > kCarrierLimit - m_end - m_written) throw Stop{StopReason::TooLarge};
  m_hasBegun = m_mayHavePart = true;
  if (length != 0) m_carrier.WriteAt(Position{} + m_end + m_written, bytes);
  m_written += length;
}

}  // namespace tarnel
