#pragma once

#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/files.h"

namespace tarnel::test {

/// One call on a port object: "File.WriteAt", "Files.Rename", "Folder.Enter" and the path that it works on.
struct Operation {
  std::string name;
  Path path;
};

/// For Fault::counts.
inline auto Calls(std::string name) {
  return [name = std::move(name)](const Operation& operation) { return operation.name == name; };
}

enum class Times { Once, FromThenOn };
enum class Writes { Nothing, FirstHalf };

struct Fault {
  std::size_t at = 1;  ///< the k-th operation that counts, from 1
  ErrorNumber number = ErrorNumber::DeviceIo;
  int code = 0;  ///< errno value
  Times times = Times::Once;
  Writes writes = Writes::Nothing;                    ///< what a failing WriteAt has written before it throws
  std::function<bool(const Operation&)> counts = {};  ///< which operations count; all if empty
};

/// The files of `inner`, failing on command. It counts every call on itself and on the File and Folder
/// objects that it hands out, reads and looks too; destructors don't count. It must outlive those objects.
///
///   FaultyFiles quiet(posix);  Run(quiet);
///   for (std::size_t k = 1; k <= quiet.Count(); ++k) {
///     FaultyFiles files(posix);
///     files.Fail({.at = k, .number = ErrorNumber::DiskFull});
///     Run(files);  // then: old state or new state
///   }
class FaultyFiles : public Files {
 public:
  explicit FaultyFiles(Files& inner) : m_inner(inner) {}

  void Fail(Fault fault);

  /// From now on files can grow by this many bytes altogether; a write beyond it writes what fits and is
  /// DiskFull. Removing and cutting files gives space back. FreeSpace tells what is left.
  void LimitSpace(std::int64_t bytes) { m_space = bytes; }

  /// As on SMB: while one open file has a path locked, the test fails where another reads or writes it.
  bool locksAreMandatory = false;

  std::size_t Count() const { return m_record.size(); }
  const std::vector<Operation>& Record() const { return m_record; }
  bool HasFailed() const { return m_hasFailed; }

  /// Called before each operation, already recorded: to end the process there, or to check what must hold
  /// always.
  std::function<void(const Operation&)> before;

  std::optional<FileStat> Stat(const Path& path, Links links = Links::Follow) override {
    return Enter("Files.Stat", path).Stat(path, links);
  }
  Path Canonical(const Path& path) override { return Enter("Files.Canonical", path).Canonical(path); }
  std::unique_ptr<File> OpenToRead(const Path& path) override;
  std::unique_ptr<File> OpenToChange(const Path& path) override;
  std::unique_ptr<File> CreateNew(const Path& path, mode_t mode) override;
  void Remove(const Path& path) override;
  void RemoveFolder(const Path& path) override { Enter("Files.RemoveFolder", path).RemoveFolder(path); }
  void CreateFolder(const Path& path, mode_t mode) override {
    Enter("Files.CreateFolder", path).CreateFolder(path, mode);
  }
  void Rename(const Path& from, const Path& to) override;
  void RenameNoReplace(const Path& from, const Path& to) override {
    Enter("Files.RenameNoReplace", from).RenameNoReplace(from, to);
  }
  void SetMode(const Path& path, mode_t mode) override { Enter("Files.SetMode", path).SetMode(path, mode); }
  void SyncFileSystem(const Path& folder) override {
    Enter("Files.SyncFileSystem", folder).SyncFileSystem(folder);
  }
  void SyncFolder(const Path& folder) override { Enter("Files.SyncFolder", folder).SyncFolder(folder); }
  std::vector<FolderEntry> List(const Path& folder) override {
    return Enter("Files.List", folder).List(folder);
  }
  std::int64_t FreeSpace(const Path& path) override;
  std::unique_ptr<Folder> OpenFolder(const Path& path) override;

 private:
  friend class FaultyFile;
  friend class FaultyFolder;

  Files& Enter(const char* name, const Path& path);
  std::optional<Error> Count(const char* name, const Path& path);
  void Write(File& file, const Path& path, Position to, Bytes bytes);
  std::size_t Fitting(File& file, Position to, std::size_t length) const;
  void GiveBack(std::int64_t bytes);
  std::int64_t SizeOf(const Path& path);
  void RefuseIfLocked(const File& file, const Path& path);
  void Unlock(const File& file, const Path& path);

  Files& m_inner;
  std::vector<Operation> m_record;
  std::optional<Fault> m_fault;
  std::size_t m_counted = 0;
  bool m_hasFailed = false;
  std::optional<std::int64_t> m_space;
  std::map<Path, const File*> m_locked;
};

}  // namespace tarnel::test
