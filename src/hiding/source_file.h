#pragma once

#include <memory>

#include "base/files.h"
#include "base/pace.h"

namespace tarnel {

/// A file to be hidden, open. It must stay as long as it was when it was opened; where reading shows that it
/// didn't, that is a DeviceIo. Reading yields at least every 100 ms.
class SourceFile : public ByteSource {
 public:
  SourceFile(Files& files, const Path& path, Dialogue& dialogue);

  /// When it was opened.
  Length Size() const { return m_size; }

  /// The next Read begins at the front again.
  void Rewind() { m_read = 0; }

  std::size_t Read(MutableBytes into) override;

  /// The file as it is now. To be asked for when it has been read.
  FileStat StatAfterReading();

 private:
  Error Changed() const;

  std::unique_ptr<File> m_file;
  Path m_path;
  Length m_size;
  Length m_read = 0;
  Pace m_pace;
};

}  // namespace tarnel
