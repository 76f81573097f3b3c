#pragma once

#include <cstddef>
#include <string>

#include "base/bytes.h"
#include "base/files.h"
#include "base/secret.h"

namespace tarnel {

/// The bytes of [from, from + length), fewer where the file ends. `length` may be any number that is not
/// negative. Position below 1: Error BadRecordNumber.
std::string ReadFileSlice(File& file, Position from, Length length);

/// The stretch [from, from + length) of a file, read from front to back. A stretch that can't be one (before
/// position 1, negative, beyond what numbers hold) is a BadRecordNumber at once, a file that ends inside it a
/// DeviceIo when that place is read. File and source are unbuffered: read in blocks.
class FileSource : public ByteSource {
 public:
  /// `path` is for messages. The file must outlive the source.
  FileSource(File& file, const Path& path, Position from, Length length);

  std::size_t Read(MutableBytes into) override;
  Length Left() const { return m_left; }

 private:
  File& m_file;
  Path m_path;
  Position m_next;
  Length m_left;
};

/// Writes on in a file from a position. Unbuffered: write in blocks. After a throw a part of the bytes may be
/// in the file, but none of them counts as written.
class FileSink : public ByteSink {
 public:
  /// The file must outlive the sink.
  FileSink(File& file, Position to) : m_file(file), m_start(to), m_next(to) {}

  void Write(Bytes bytes) override;
  /// Writes the stretch [from, from + length) of `source`; a source that ends inside it is a DeviceIo. `path`
  /// is for messages.
  void CopyFrom(File& source, const Path& path, Position from, Length length);
  Length Written() const { return m_next - m_start; }
  Position Next() const { return m_next; }

 private:
  File& m_file;
  Position m_start;
  Position m_next;
};

/// Compares what it is given with a file, from its beginning on.
class ComparingSink : public ByteSink {
 public:
  /// The file must outlive the sink.
  explicit ComparingSink(File& file) : m_file(file) {}

  void Write(Bytes bytes) override;
  /// Whether just these bytes were given, of a file of this size.
  bool WasWholeFile(Length size) const { return m_isSame && size == m_compared; }

 private:
  File& m_file;
  WipedBytes m_buffer;
  Length m_compared = 0;
  bool m_isSame = true;
};

/// Counts what it is given and drops it, for checks that need no output.
class NullSink : public ByteSink {
 public:
  void Write(Bytes bytes) override { m_written += static_cast<Length>(bytes.size()); }
  Length Written() const { return m_written; }

 private:
  Length m_written = 0;
};

}  // namespace tarnel
