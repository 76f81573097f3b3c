#pragma once

#include <string>
#include <utility>

#include "base/files.h"

namespace tarnel::fuzz {

/// The bytes of a carrier: a body of its own, which takes no memory and can be as long as a carrier gets,
/// and a tail.
struct MemoryCarrier {
  Length body = 0;
  std::string tail = {};

  Length Size() const { return body + static_cast<Length>(tail.size()); }
};

/// Throws Violation.
[[noreturn]] void Refuse();

/// A Files that holds one carrier, whatever the path, and can only read it. Anything else that is done to it
/// is a Violation, and so is a read of more than `readLimit` bytes.
class MemoryFiles : public Files {
 public:
  MemoryFiles(MemoryCarrier carrier, std::size_t readLimit)
      : m_carrier(std::move(carrier)), m_readLimit(readLimit) {}

  std::unique_ptr<File> OpenToRead(const Path& path) override;
  std::optional<FileStat> Stat(const Path&, Links) override { Refuse(); }
  Path Canonical(const Path&) override { Refuse(); }
  std::unique_ptr<File> OpenToChange(const Path&) override { Refuse(); }
  std::unique_ptr<File> CreateNew(const Path&, mode_t) override { Refuse(); }
  void Remove(const Path&) override { Refuse(); }
  void RemoveFolder(const Path&) override { Refuse(); }
  void CreateFolder(const Path&, mode_t) override { Refuse(); }
  void Rename(const Path&, const Path&) override { Refuse(); }
  void RenameNoReplace(const Path&, const Path&) override { Refuse(); }
  void SetMode(const Path&, mode_t) override { Refuse(); }
  void SyncFolder(const Path&) override { Refuse(); }
  void SyncFileSystem(const Path&) override { Refuse(); }
  std::vector<FolderEntry> List(const Path&) override { Refuse(); }
  std::int64_t FreeSpace(const Path&) override { Refuse(); }
  std::unique_ptr<Folder> OpenFolder(const Path&) override { Refuse(); }

 private:
  MemoryCarrier m_carrier;
  std::size_t m_readLimit;
};

}  // namespace tarnel::fuzz
