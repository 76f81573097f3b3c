#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tarnel {

/// Names from a file, which may be a pipe; "-" is standard input. One on each line; where there is a zero
/// byte in it, one before each of these. Empty ones don't count. Throws CliFailure: Failed for what can't be
/// read, Usage for more than 64 MiB, Cancelled.
std::vector<std::string> ReadNameList(const std::string& file);

/// What comes through standard input, held in memory as a file that has no name on any disk.
class HeldInput {
 public:
  /// Reads to the end. Throws CliFailure: NoSpace for more than the limit, Failed, Cancelled.
  HeldInput();
  ~HeldInput();
  HeldInput(const HeldInput&) = delete;
  HeldInput& operator=(const HeldInput&) = delete;

  static constexpr std::size_t kLimit = std::size_t{512} * 1024 * 1024;

  /// Under which it can be opened for reading as long as this lives.
  std::string Path() const;

 private:
  int m_number;
};

}  // namespace tarnel
