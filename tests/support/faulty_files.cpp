#include "tests/support/faulty_files.h"

#include <algorithm>
#include <utility>

namespace tarnel::test {

class FaultyFile : public File {
 public:
  FaultyFile(FaultyFiles& files, std::unique_ptr<File> inner, Path path)
      : m_files(files), m_inner(std::move(inner)), m_path(std::move(path)) {}

  std::size_t ReadAt(Position from, MutableBytes into) override {
    m_files.Enter("File.ReadAt", m_path);
    return m_inner->ReadAt(from, into);
  }
  void WriteAt(Position to, Bytes bytes) override { m_files.Write(*m_inner, m_path, to, bytes); }
  FileStat Stat() override {
    m_files.Enter("File.Stat", m_path);
    return m_inner->Stat();
  }
  void Truncate(Length length) override {
    m_files.Enter("File.Truncate", m_path);
    const Length oldSize = m_inner->Size();
    m_inner->Truncate(length);
    m_files.GiveBack(oldSize - length);
  }
  void SetMode(mode_t mode) override {
    m_files.Enter("File.SetMode", m_path);
    m_inner->SetMode(mode);
  }
  void Sync() override {
    m_files.Enter("File.Sync", m_path);
    m_inner->Sync();
  }
  void Lock() override {
    m_files.Enter("File.Lock", m_path);
    m_inner->Lock();
  }
  // Like the platform's: closed whether it fails or not.
  void Close() override {
    const std::optional<Error> fault = m_files.Count("File.Close", m_path);
    m_inner->Close();
    if (fault) throw Error(*fault);
  }

 private:
  FaultyFiles& m_files;
  std::unique_ptr<File> m_inner;
  Path m_path;
};

class FaultyFolder : public Folder {
 public:
  FaultyFolder(FaultyFiles& files, std::unique_ptr<Folder> inner)
      : m_files(files), m_inner(std::move(inner)) {}

  const Path& Where() const override { return m_inner->Where(); }
  std::unique_ptr<Folder> Enter(std::string_view name, IfMissing ifMissing) override {
    m_files.Enter("Folder.Enter", Where() / name);
    return std::make_unique<FaultyFolder>(m_files, m_inner->Enter(name, ifMissing));
  }
  std::optional<FileStat> Stat(std::string_view name) override {
    m_files.Enter("Folder.Stat", Where() / name);
    return m_inner->Stat(name);
  }
  std::unique_ptr<File> CreateNew(std::string_view name, mode_t mode) override {
    m_files.Enter("Folder.CreateNew", Where() / name);
    return std::make_unique<FaultyFile>(m_files, m_inner->CreateNew(name, mode), Where() / name);
  }
  void Rename(std::string_view from, std::string_view to) override {
    m_files.Enter("Folder.Rename", Where() / from);
    const std::int64_t replaced = from == to ? 0 : m_files.SizeOf(Where() / to);
    m_inner->Rename(from, to);
    m_files.GiveBack(replaced);
  }
  void Remove(std::string_view name) override {
    m_files.Enter("Folder.Remove", Where() / name);
    const std::int64_t size = m_files.SizeOf(Where() / name);
    m_inner->Remove(name);
    m_files.GiveBack(size);
  }
  void RemoveFolder(std::string_view name) override {
    m_files.Enter("Folder.RemoveFolder", Where() / name);
    m_inner->RemoveFolder(name);
  }
  std::vector<FolderEntry> List() override {
    m_files.Enter("Folder.List", Where());
    return m_inner->List();
  }
  void SetMode(mode_t mode) override {
    m_files.Enter("Folder.SetMode", Where());
    m_inner->SetMode(mode);
  }

 private:
  FaultyFiles& m_files;
  std::unique_ptr<Folder> m_inner;
};

void FaultyFiles::Fail(Fault fault) {
  m_fault = std::move(fault);
  m_counted = 0;
}

std::optional<Error> FaultyFiles::Count(const char* name, const Path& path) {
  const Operation operation = m_record.emplace_back(Operation{name, path});
  if (before) before(operation);
  if (!m_fault || (m_fault->counts && !m_fault->counts(operation))) return std::nullopt;
  ++m_counted;
  const bool fails = m_fault->times == Times::Once ? m_counted == m_fault->at : m_counted >= m_fault->at;
  if (!fails) return std::nullopt;
  m_hasFailed = true;
  return Error(m_fault->number,
               "cannot do " + operation.name + " on " + path.native() + ": as the test wanted", path);
}

void FaultyFiles::Enter(const char* name, const Path& path) {
  const std::optional<Error> fault = Count(name, path);
  if (fault) throw Error(*fault);
}

void FaultyFiles::Write(File& file, const Path& path, Position to, Bytes bytes) {
  const std::optional<Error> fault = Count("File.WriteAt", path);
  const bool half = fault && m_fault->writes == Writes::FirstHalf;
  const std::size_t wanted = !fault ? bytes.size() : half ? bytes.size() / 2 : 0;
  const Length oldSize = m_space ? file.Size() : 0;
  const std::size_t fitting = Fitting(file, to, wanted);
  file.WriteAt(to, bytes.first(fitting));
  if (m_space) GiveBack(oldSize - file.Size());
  if (fault) throw Error(*fault);
  if (fitting < wanted)
    throw Error(ErrorNumber::DiskFull, "cannot write " + path.native() + ": no space left on device", path);
}

std::size_t FaultyFiles::Fitting(File& file, Position to, std::size_t length) const {
  if (!m_space) return length;
  const Length room = std::max<Length>(file.Size(), to.value - 1) - (to.value - 1) + *m_space;
  const Length gap = std::max<Length>(to.value - 1 - file.Size(), 0);
  return std::min(length, static_cast<std::size_t>(std::max<Length>(room - gap, 0)));
}

void FaultyFiles::GiveBack(std::int64_t bytes) {
  if (m_space) *m_space += bytes;
}

std::int64_t FaultyFiles::SizeOf(const Path& path) {
  if (!m_space) return 0;
  const std::optional<FileStat> stat = m_inner.Stat(path, Links::DontFollow);
  return stat && stat->kind == FileKind::Regular ? stat->size : 0;
}

std::optional<FileStat> FaultyFiles::Stat(const Path& path, Links links) {
  Enter("Files.Stat", path);
  return m_inner.Stat(path, links);
}

std::unique_ptr<File> FaultyFiles::OpenToRead(const Path& path) {
  Enter("Files.OpenToRead", path);
  return std::make_unique<FaultyFile>(*this, m_inner.OpenToRead(path), path);
}

std::unique_ptr<File> FaultyFiles::OpenToChange(const Path& path) {
  Enter("Files.OpenToChange", path);
  return std::make_unique<FaultyFile>(*this, m_inner.OpenToChange(path), path);
}

std::unique_ptr<File> FaultyFiles::CreateNew(const Path& path, mode_t mode) {
  Enter("Files.CreateNew", path);
  return std::make_unique<FaultyFile>(*this, m_inner.CreateNew(path, mode), path);
}

void FaultyFiles::Remove(const Path& path) {
  Enter("Files.Remove", path);
  const std::int64_t size = SizeOf(path);
  m_inner.Remove(path);
  GiveBack(size);
}

void FaultyFiles::RemoveFolder(const Path& path) {
  Enter("Files.RemoveFolder", path);
  m_inner.RemoveFolder(path);
}

void FaultyFiles::CreateFolder(const Path& path, mode_t mode) {
  Enter("Files.CreateFolder", path);
  m_inner.CreateFolder(path, mode);
}

void FaultyFiles::Rename(const Path& from, const Path& to) {
  Enter("Files.Rename", from);
  const std::int64_t replaced = from == to ? 0 : SizeOf(to);
  m_inner.Rename(from, to);
  GiveBack(replaced);
}

void FaultyFiles::SetMode(const Path& path, mode_t mode) {
  Enter("Files.SetMode", path);
  m_inner.SetMode(path, mode);
}

void FaultyFiles::SyncFolder(const Path& folder) {
  Enter("Files.SyncFolder", folder);
  m_inner.SyncFolder(folder);
}

std::vector<FolderEntry> FaultyFiles::List(const Path& folder) {
  Enter("Files.List", folder);
  return m_inner.List(folder);
}

std::int64_t FaultyFiles::FreeSpace(const Path& path) {
  Enter("Files.FreeSpace", path);
  return m_space ? *m_space : m_inner.FreeSpace(path);
}

std::unique_ptr<Folder> FaultyFiles::OpenFolder(const Path& path) {
  Enter("Files.OpenFolder", path);
  return std::make_unique<FaultyFolder>(*this, m_inner.OpenFolder(path));
}

}  // namespace tarnel::test
