#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"

namespace tarnel::test {

/// A new folder under the system's temporary folder, removed with all it holds when the test ends.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const Path& Where() const { return m_where; }
  Path operator/(std::string_view name) const { return m_where / name; }

  /// Writes a file below the folder, making the folders on the way, and gives its path.
  Path Put(std::string_view name, std::string_view bytes, mode_t mode = 0644) const;

  /// Every file, folder and link below the folder, as sorted relative paths.
  std::vector<std::string> Names() const;

 private:
  Path m_where;
};

/// The whole file. Throws std::runtime_error if it can't be read.
std::string ReadAll(const Path& path);

/// Makes or replaces the file, write-protected or not, with exactly this mode.
void WriteAll(const Path& path, std::string_view bytes, mode_t mode = 0644);

/// `size` bytes that repeat with no short period, the same for the same `seed`.
std::string Pattern(std::size_t size, unsigned seed = 1);

}  // namespace tarnel::test
