#include "hiding/source_file.h"

#include "base/printable.h"

namespace tarnel {

SourceFile::SourceFile(Files& files, const Path& path, Dialogue& dialogue)
    : m_file(files.OpenToRead(path)), m_path(path), m_size(m_file->Size()), m_pace(dialogue) {}

std::size_t SourceFile::Read(MutableBytes into) {
  const std::size_t got = m_file->ReadAt(Position{} + m_read, into);
  m_read += static_cast<Length>(got);
  if (m_read > m_size || (got < into.size() && m_read < m_size)) throw Changed();
  m_pace.Step();
  return got;
}

FileStat SourceFile::StatAfterReading() {
  const FileStat stat = m_file->Stat();
  if (stat.size != m_size) throw Changed();
  return stat;
}

Error SourceFile::Changed() const {
  return Error(ErrorNumber::DeviceIo,
               "cannot hide " + Printable(m_path.native()) + ": it changed while it was being hidden",
               m_path);
}

}  // namespace tarnel
