#pragma once

#include <cstdint>
#include <memory>

#include "base/bytes.h"
#include "base/dialogue.h"
#include "base/files.h"
#include "crypto/work_line.h"

namespace tarnel {

/// The zlib level where nobody has chosen another.
inline constexpr int kPresetCompressionLevel = 6;

/// The compressed form of a file: its size as four bytes, little-endian, signed, then a zlib stream (RFC
/// 1950). An empty file has an empty compressed form. Works in pieces; memory doesn't grow with the file.

/// A source that delivers the compressed form of `plain`, which has `size` bytes. Level 0 to 9, or -1 for 6.
/// The stream is made of stretches of half a mebibyte, which up to `workers` threads compress side by side
/// while it reads ahead; the bytes are the same with any number. A stretch of some texts takes half a second,
/// so `waiting` gets a yield at least every 100 ms; for its sake more than 64 KiB have one thread at least.
/// Throws Error: InvalidPropertyValue from the constructor for any other level and for a size of 2 GiB or
/// more; DeviceIo from Read when `plain` ends before `size` bytes or has more, for then the file changed.
class CompressingSource : public ByteSource {
 public:
  CompressingSource(ByteSource& plain, Length size, int level, Dialogue* waiting = nullptr,
                    std::size_t workers = WorkerLimit());
  ~CompressingSource() override;
  std::size_t Read(MutableBytes into) override;

 private:
  struct State;
  bool m_isEmpty;
  std::unique_ptr<State> m_state;
};

/// A sink that takes the compressed form and hands the plain bytes on. It never hands on more than the size
/// that the form declares, and nothing behind the first fault, so that a hostile stream can't fill a disk.
/// Bytes behind the end of the zlib stream are passed over, as `uncompress` does.
class DecompressingSink : public ByteSink {
 public:
  explicit DecompressingSink(ByteSink& plain);
  ~DecompressingSink() override;
  void Write(Bytes bytes) override;

  /// True if what came was one whole compressed form: no fault in the stream, the declared size reached, its
  /// checksum right. Ask after the last Write.
  bool IsIntact() const;

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace tarnel
