#pragma once

#include "base/dialogue.h"
#include "base/files.h"

namespace tarnel {

/// The files of `inner` for who reads many that may be slow to answer, as on a network: looking, listing,
/// opening to read and what is read then run on a helper thread, and the dialogue yields every 20 ms until
/// they have returned. Results and errors are those of `inner`. So each of these calls is a place where
/// events run; what they do must not reach these files. All other calls go straight to `inner`. Must outlive
/// the files that it opens.
class PatientFiles : public Files {
 public:
  PatientFiles(Files& inner, Dialogue& dialogue);
  ~PatientFiles() override;

  std::optional<FileStat> Stat(const Path& path, Links links = Links::Follow) override;
  Path Canonical(const Path& path) override;
  std::unique_ptr<File> OpenToRead(const Path& path) override;
  std::vector<FolderEntry> List(const Path& folder) override;

  std::unique_ptr<File> OpenToChange(const Path& path) override { return m_inner.OpenToChange(path); }
  std::unique_ptr<File> CreateNew(const Path& path, mode_t mode) override {
    return m_inner.CreateNew(path, mode);
  }
  void Remove(const Path& path) override { m_inner.Remove(path); }
  void RemoveFolder(const Path& path) override { m_inner.RemoveFolder(path); }
  void CreateFolder(const Path& path, mode_t mode) override { m_inner.CreateFolder(path, mode); }
  void Rename(const Path& from, const Path& to) override { m_inner.Rename(from, to); }
  void RenameNoReplace(const Path& from, const Path& to) override { m_inner.RenameNoReplace(from, to); }
  void SetMode(const Path& path, mode_t mode) override { m_inner.SetMode(path, mode); }
  void SyncFolder(const Path& folder) override { m_inner.SyncFolder(folder); }
  void SyncFileSystem(const Path& folder) override { m_inner.SyncFileSystem(folder); }
  std::int64_t FreeSpace(const Path& path) override { return m_inner.FreeSpace(path); }
  std::unique_ptr<Folder> OpenFolder(const Path& path) override { return m_inner.OpenFolder(path); }

 private:
  class Helper;
  class PatientFile;

  Files& m_inner;
  std::unique_ptr<Helper> m_helper;
};

}  // namespace tarnel
