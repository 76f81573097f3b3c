#include "tests/support/faulty_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace tarnel::test {

class FaultyFile : public File {
 public:
  FaultyFile(FaultyFiles& files, std::unique_ptr<File> inner, Path path)
      : m_files(files), m_inner(std::move(inner)), m_path(std::move(path)) {}

  ~FaultyFile() override { m_files.Unlock(*this, m_path); }

  std::size_t ReadAt(Position from, MutableBytes into) override {
    m_files.RefuseIfLocked(*this, m_path);
    return Enter("File.ReadAt").ReadAt(from, into);
  }
  void WriteAt(Position to, Bytes bytes) override {
    m_files.RefuseIfLocked(*this, m_path);
    m_files.Write(*m_inner, m_path, to, bytes);
  }
  FileStat Stat() override { return Enter("File.Stat").Stat(); }
  void Truncate(Length length) override {
    File& file = Enter("File.Truncate");
    const Length oldSize = file.Size();
    file.Truncate(length);
    m_files.GiveBack(oldSize - length);
  }
  void SetMode(mode_t mode) override { Enter("File.SetMode").SetMode(mode); }
  void SetModified(std::int64_t seconds) override { Enter("File.SetModified").SetModified(seconds); }
  void SetOwner(uid_t owner, gid_t group) override { Enter("File.SetOwner").SetOwner(owner, group); }
  std::string AccessList() override { return Enter("File.AccessList").AccessList(); }
  void SetAccessList(const std::string& list) override { Enter("File.SetAccessList").SetAccessList(list); }
  // Like the platform's: once it has failed it fails again.
  void Sync() override {
    if (std::optional<Error> fault = m_files.Count("File.Sync", m_path)) m_syncFault = std::move(fault);
    if (m_syncFault) throw Error(*m_syncFault);
    m_inner->Sync();
  }
  void ForgetFailedSync() override { m_syncFault.reset(); }
  void Lock() override {
    File& file = Enter("File.Lock");
    file.Lock();
    if (m_files.locksAreMandatory) m_files.m_locked[m_path] = this;
  }
  // Like the platform's: closed whether it fails or not.
  void Close() override {
    m_files.Unlock(*this, m_path);
    const std::optional<Error> fault = m_files.Count("File.Close", m_path);
    m_inner->Close();
    if (fault) throw Error(*fault);
  }

 private:
  File& Enter(const char* name) {
    m_files.Enter(name, m_path);
    return *m_inner;
  }

  FaultyFiles& m_files;
  std::unique_ptr<File> m_inner;
  Path m_path;
  std::optional<Error> m_syncFault;
};

class FaultyFolder : public Folder {
 public:
  FaultyFolder(FaultyFiles& files, std::unique_ptr<Folder> inner)
      : m_files(files), m_inner(std::move(inner)) {}

  const Path& Where() const override { return m_inner->Where(); }
  std::unique_ptr<Folder> Enter(std::string_view name, IfMissing ifMissing) override {
    return std::make_unique<FaultyFolder>(m_files, Do("Folder.Enter", name).Enter(name, ifMissing));
  }
  std::optional<FileStat> Stat(std::string_view name) override { return Do("Folder.Stat", name).Stat(name); }
  std::unique_ptr<File> CreateNew(std::string_view name, mode_t mode) override {
    return std::make_unique<FaultyFile>(m_files, Do("Folder.CreateNew", name).CreateNew(name, mode),
                                        Where() / name);
  }
  void Rename(std::string_view from, std::string_view to) override {
    Folder& folder = Do("Folder.Rename", from);
    const std::int64_t replaced = from == to ? 0 : m_files.SizeOf(Where() / to);
    folder.Rename(from, to);
    m_files.GiveBack(replaced);
  }
  void Remove(std::string_view name) override {
    Folder& folder = Do("Folder.Remove", name);
    const std::int64_t size = m_files.SizeOf(Where() / name);
    folder.Remove(name);
    m_files.GiveBack(size);
  }
  void RemoveFolder(std::string_view name) override { Do("Folder.RemoveFolder", name).RemoveFolder(name); }
  std::vector<FolderEntry> List() override { return Do("Folder.List").List(); }
  void SetMode(mode_t mode) override { Do("Folder.SetMode").SetMode(mode); }
  void Lock() override { Do("Folder.Lock").Lock(); }

 private:
  Folder& Do(const char* operation, std::string_view name = {}) {
    m_files.Enter(operation, name.empty() ? Where() : Where() / name);
    return *m_inner;
  }

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
               "cannot do " + operation.name + " on " + path.native() + ": as the test wanted", path,
               m_fault->code);
}

void FaultyFiles::RefuseIfLocked(const File& file, const Path& path) {
  const auto holder = m_locked.find(path);
  if (holder == m_locked.end() || holder->second == &file) return;
  ADD_FAILURE() << path << " is locked by another open file";
  throw Error(ErrorNumber::PermissionDenied, path.native() + " is locked by another open file", path);
}

void FaultyFiles::Unlock(const File& file, const Path& path) {
  const auto holder = m_locked.find(path);
  if (holder != m_locked.end() && holder->second == &file) m_locked.erase(holder);
}

Files& FaultyFiles::Enter(const char* name, const Path& path) {
  const std::optional<Error> fault = Count(name, path);
  if (fault) throw Error(*fault);
  return m_inner;
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

std::unique_ptr<File> FaultyFiles::OpenToRead(const Path& path) {
  return std::make_unique<FaultyFile>(*this, Enter("Files.OpenToRead", path).OpenToRead(path), path);
}

std::unique_ptr<File> FaultyFiles::OpenToChange(const Path& path) {
  return std::make_unique<FaultyFile>(*this, Enter("Files.OpenToChange", path).OpenToChange(path), path);
}

std::unique_ptr<File> FaultyFiles::CreateNew(const Path& path, mode_t mode) {
  return std::make_unique<FaultyFile>(*this, Enter("Files.CreateNew", path).CreateNew(path, mode), path);
}

std::unique_ptr<Folder> FaultyFiles::OpenFolder(const Path& path) {
  return std::make_unique<FaultyFolder>(*this, Enter("Files.OpenFolder", path).OpenFolder(path));
}

void FaultyFiles::Remove(const Path& path) {
  Enter("Files.Remove", path);
  const std::int64_t size = SizeOf(path);
  m_inner.Remove(path);
  GiveBack(size);
}

void FaultyFiles::Rename(const Path& from, const Path& to) {
  Enter("Files.Rename", from);
  const std::int64_t replaced = from == to ? 0 : SizeOf(to);
  m_inner.Rename(from, to);
  m_locked.erase(to);
  if (auto moved = m_locked.extract(from)) {
    moved.key() = to;
    m_locked.insert(std::move(moved));
  }
  GiveBack(replaced);
}

std::int64_t FaultyFiles::FreeSpace(const Path& path) {
  Files& inner = Enter("Files.FreeSpace", path);
  return m_space ? *m_space : inner.FreeSpace(path);
}

}  // namespace tarnel::test
