#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "base/posix_calls.h"
#include "base/printable.h"

namespace tarnel::posix {

namespace {

constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

std::string Component(std::string_view name) {
  const bool isSpecial = name.empty() || name == "." || name == "..";
  if (!isSpecial && name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos)
    return std::string(name);
  throw Error(ErrorNumber::BadFileName,
              "cannot use \"" + Printable(name) + "\": it is not the name of one file", Path(name));
}

class PosixFolder : public Folder {
 public:
  PosixFolder(Descriptor descriptor, Path path)
      : m_descriptor(std::move(descriptor)), m_path(std::move(path)) {}

  const Path& Where() const override { return m_path; }
  std::unique_ptr<Folder> Enter(std::string_view name, IfMissing ifMissing) override;
  std::optional<FileStat> Stat(std::string_view name) override;
  std::unique_ptr<File> CreateNew(std::string_view name, mode_t mode) override;
  void Rename(std::string_view from, std::string_view to) override;
  void Remove(std::string_view name) override;
  void RemoveFolder(std::string_view name) override;
  std::vector<FolderEntry> List() override;
  void SetMode(mode_t mode) override;
  void Lock() override;

 private:
  int Number() const { return m_descriptor.Get(); }
  Error CannotEnter(int code, const Path& path, const std::optional<FileStat>& found) const;

  Descriptor m_descriptor;
  std::unique_ptr<Descriptor> m_lock;  ///< what only names a place takes no lock
  Path m_path;
};

std::unique_ptr<Folder> PosixFolder::Enter(std::string_view name, IfMissing ifMissing) {
  const std::string component = Component(name);
  const Path path = m_path / component;
  const auto open = [&] { return ::openat(Number(), component.c_str(), kFolderFlags); };
  int descriptor = Uninterrupted(open);
  if (descriptor < 0 && errno == ENOENT && ifMissing == IfMissing::Create) {
    if (::mkdirat(Number(), component.c_str(), 0777) != 0 && errno != EEXIST)
      throw ErrnoError(errno, "create", path);
    descriptor = Uninterrupted(open);
  }
  if (descriptor < 0) throw CannotEnter(errno, path, Stat(name));
  return MakeFolder(Descriptor(descriptor), path);
}

Error PosixFolder::CannotEnter(int code, const Path& path, const std::optional<FileStat>& found) const {
  const std::string start = "cannot enter " + Printable(path.native()) + ": ";
  if (code == ENOENT) return Error(ErrorNumber::PathNotFound, start + "no such folder", path);
  if (code != ENOTDIR && code != ELOOP) return ErrnoError(code, "enter", path);
  const bool isLink = found && found->kind == FileKind::SymbolicLink;
  return Error(ErrorNumber::BadFileName, start + (isLink ? "it is a symbolic link" : "it is not a folder"),
               path);
}

std::optional<FileStat> PosixFolder::Stat(std::string_view name) {
  const std::string component = Component(name);
  FileStat stat;
  if (StatAt(Number(), component.c_str(), AT_SYMLINK_NOFOLLOW, stat) == 0) return stat;
  if (errno == ENOENT) return std::nullopt;
  throw ErrnoError(errno, "look at", m_path / component);
}

std::unique_ptr<File> PosixFolder::CreateNew(std::string_view name, mode_t mode) {
  const std::string component = Component(name);
  return CreateFileIn(Number(), component.c_str(), mode, m_path / component);
}

void PosixFolder::Rename(std::string_view from, std::string_view to) {
  const std::string source = Component(from);
  const std::string target = Component(to);
  Checked(::renameat(Number(), source.c_str(), Number(), target.c_str()), "rename", m_path / source);
}

void PosixFolder::Remove(std::string_view name) {
  const std::string component = Component(name);
  Checked(::unlinkat(Number(), component.c_str(), 0), "delete", m_path / component);
}

void PosixFolder::RemoveFolder(std::string_view name) {
  const std::string component = Component(name);
  Checked(::unlinkat(Number(), component.c_str(), AT_REMOVEDIR), "delete", m_path / component);
}

std::vector<FolderEntry> PosixFolder::List() {
  return ListFolder(Number(), ".", m_path);
}

void PosixFolder::SetMode(mode_t mode) {
  // Nothing but its own name leads to a folder that may not be entered, and fchmod takes no O_PATH.
  const std::string self = "/proc/self/fd/" + std::to_string(Number());
  if (::chmod(self.c_str(), mode) == 0) return;
  Checked(::fchmodat(Number(), ".", mode, 0), "change the permissions of", m_path);
}

void PosixFolder::Lock() {
  const auto open = [this] { return ::openat(Number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC); };
  auto lock = std::make_unique<Descriptor>(Checked(Uninterrupted(open), "lock", m_path));
  TakeLock(lock->Get(), m_path);
  m_lock = std::move(lock);
}

FileKind KindOfEntry(DIR* folder, const dirent& entry) {
  switch (entry.d_type) {
    case DT_REG:
      return FileKind::Regular;
    case DT_DIR:
      return FileKind::Folder;
    case DT_LNK:
      return FileKind::SymbolicLink;
    case DT_UNKNOWN:
      break;
    default:
      return FileKind::Other;
  }
  struct stat data {};
  if (::fstatat(::dirfd(folder), entry.d_name, &data, AT_SYMLINK_NOFOLLOW) != 0) return FileKind::Other;
  return KindOf(data.st_mode);
}

std::vector<FolderEntry> ReadEntries(DIR* folder, const Path& path) {
  std::vector<FolderEntry> entries;
  for (;;) {
    errno = 0;
    const dirent* entry = ::readdir(folder);
    if (entry == nullptr) break;
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") entries.push_back({std::string(name), KindOfEntry(folder, *entry)});
  }
  if (errno != 0) throw ErrnoError(errno, "read the folder", path);
  return entries;
}

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

}  // namespace

std::unique_ptr<Folder> MakeFolder(Descriptor descriptor, const Path& path) {
  return std::make_unique<PosixFolder>(std::move(descriptor), path);
}

std::vector<FolderEntry> ListFolder(int folder, const char* name, const Path& path) {
  Descriptor descriptor(
      Checked(Uninterrupted([&] { return ::openat(folder, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC); }),
              "read the folder", path));
  const std::unique_ptr<DIR, CloseFolder> stream(::fdopendir(descriptor.Get()));
  if (!stream) throw ErrnoError(errno, "read the folder", path);
  descriptor.Release();
  std::vector<FolderEntry> entries = ReadEntries(stream.get(), path);
  std::sort(entries.begin(), entries.end(),
            [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
  return entries;
}

}  // namespace tarnel::posix
