#pragma once

#include <utility>

#include "base/files.h"

namespace tarnel {

/// The name of a file that is not complete yet. It goes with the scope, in silence, unless Keep was called.
class PartialFile {
 public:
  PartialFile(Files& files, Path path) : m_files(files), m_path(std::move(path)) {}
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;
  PartialFile(PartialFile&&) = delete;
  PartialFile& operator=(PartialFile&&) = delete;

  ~PartialFile() {
    if (m_isKept) return;
    try {
      m_files.Remove(m_path);
    } catch (const Error&) {  // the failure that brought us here is the one to report
    }
  }

  void Keep() { m_isKept = true; }

 private:
  Files& m_files;
  Path m_path;
  bool m_isKept = false;
};

}  // namespace tarnel
