#include "base/file_streams.h"

#include <algorithm>
#include <limits>
#include <string>

#include "base/printable.h"

namespace tarnel {

std::string ReadFileSlice(File& file, Position from, Length length) {
  const Length available = std::max<Length>(0, file.Size() - (from - Position{}));
  std::string bytes(static_cast<std::size_t>(std::min(length, available)), '\0');
  bytes.resize(file.ReadAt(from, {reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()}));
  return bytes;
}

namespace {

Error EndsEarly(const Path& path) {
  return {ErrorNumber::DeviceIo, "cannot read " + Printable(path.native()) + ": the file ends early", path};
}

}  // namespace

FileSource::FileSource(File& file, const Path& path, Position from, Length length)
    : m_file(file), m_path(path), m_next(from), m_left(length) {
  if (from.value >= 1 && length >= 0 && length <= std::numeric_limits<Length>::max() - from.value) return;
  throw Error(ErrorNumber::BadRecordNumber,
              "cannot read " + Printable(path.native()) + ": " + std::to_string(length) +
                  " bytes from position " + std::to_string(from.value) + " are no part of a file",
              path);
}

std::size_t FileSource::Read(MutableBytes into) {
  const std::size_t wanted =
      static_cast<std::size_t>(std::min(static_cast<std::uint64_t>(m_left), std::uint64_t{into.size()}));
  if (wanted == 0) return 0;
  const std::size_t got = m_file.ReadAt(m_next, into.first(wanted));
  if (got < wanted) throw EndsEarly(m_path);
  m_next = m_next + static_cast<Length>(got);
  m_left -= static_cast<Length>(got);
  return got;
}

void FileSink::Write(Bytes bytes) {
  m_file.WriteAt(m_next, bytes);
  m_next = m_next + static_cast<Length>(bytes.size());
}

void FileSink::CopyFrom(File& source, const Path& path, Position from, Length length) {
  if (m_file.CopyAt(m_next, source, from, length) < length) throw EndsEarly(path);
  m_next = m_next + length;
}

void ComparingSink::Write(Bytes bytes) {
  m_buffer.resize(bytes.size());
  const std::size_t got = m_file.ReadAt(Position{} + m_compared, m_buffer);
  m_isSame = m_isSame && got == bytes.size() && std::equal(bytes.begin(), bytes.end(), m_buffer.begin());
  m_compared += static_cast<Length>(bytes.size());
}

}  // namespace tarnel
