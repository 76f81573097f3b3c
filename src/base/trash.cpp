#include "base/trash.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <ctime>
#include <utility>

#include "base/closing_separator.h"
#include "base/home_folder.h"
#include "base/partial_file.h"
#include "base/printable.h"
#include "base/temp_names.h"

namespace tarnel {

namespace {

constexpr std::size_t kLongestName = 220;  // leaves room for ".", a random name and ".trashinfo" in 255 bytes

Error CannotTrash(ErrorNumber number, const Path& path, std::string_view reason) {
  return Error(number, "cannot move " + Printable(path.native()) + " to the trash: " + std::string(reason),
               path);
}

// The path with no symbolic link on the way; the last component stays what it is.
Path Resolved(const Path& path, Files& files) {
  const Path plain = WithoutClosingSeparator(path);
  return files.Canonical(plain.has_parent_path() ? plain.parent_path() : ".") / plain.filename();
}

// RFC 2396, section 2, with the slashes kept.
std::string PercentEncoded(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  constexpr std::string_view kept = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (kept.find(c) != std::string_view::npos)
      text += c;
    else
      text += {'%', digits[byte >> 4], digits[byte & 15]};
  }
  return text;
}

std::string InfoText(const Path& original) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  std::array<char, 40> date{};
  const std::size_t length = std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &local);
  return "[Trash Info]\nPath=" + PercentEncoded(original.native()) +
         "\nDeletionDate=" + std::string(date.data(), length) + "\n";
}

std::unique_ptr<File> CreateIfFree(Files& files, const Path& path) {
  try {
    return files.CreateNew(path, 0600);
  } catch (const Error& error) {
    if (error.Number() != ErrorNumber::FileExists) throw;
    return nullptr;
  }
}

}  // namespace

Path HomeTrash() {
  const Path data = AbsoluteFromEnvironment("XDG_DATA_HOME");
  if (!data.empty()) return data / "Trash";
  const Path home = HomeFolder();
  return home.empty() ? Path() : home / ".local/share/Trash";
}

Trash::Trash(Files& files, Path home) : m_files(files), m_home(std::move(home)) {}

void Trash::Put(const Path& path) {
  const Path resolved = Resolved(path, m_files);
  if (!m_files.Stat(resolved, Files::Links::DontFollow))
    throw CannotTrash(ErrorNumber::FileNotFound, path, "there is no such file");
  const Place place = PlaceFor(resolved);
  MakeFolders(place.folder / "files");
  MakeFolders(place.folder / "info");
  const std::string base = resolved.filename().native().substr(0, kLongestName);
  for (std::string name = base; !TryMove(resolved, place, name);)
    name = RandomName(base + ".");
}

Trash::Place Trash::PlaceFor(const Path& path) {
  const std::uint64_t device = m_files.Stat(path.parent_path()).value_or(FileStat{}).device;
  if (!m_home.empty() && IsOnDeviceOf(m_home, device)) return {m_home, path};
  Path top = path.parent_path();
  while (top.has_relative_path() && IsOnDeviceOf(top.parent_path(), device))
    top = top.parent_path();
  const std::optional<Path> folder = TrashOnTop(top);
  if (folder) return {*folder, path.lexically_relative(top)};
  throw CannotTrash(ErrorNumber::PathFileAccess, path, "its file system has no trash that can be used");
}

std::optional<Path> Trash::TrashOnTop(const Path& top) {
  const std::string user = std::to_string(::geteuid());
  const std::optional<FileStat> shared = m_files.Stat(top / ".Trash", Files::Links::DontFollow);
  const bool isSharedUsable = shared && shared->kind == FileKind::Folder && (shared->mode & S_ISVTX) != 0;
  if (isSharedUsable && IsOwnFolder(top / ".Trash" / user)) return top / ".Trash" / user;
  if (IsOwnFolder(top / (".Trash-" + user))) return top / (".Trash-" + user);
  return std::nullopt;
}

// Of a path that isn't there its nearest ancestor that is decides.
bool Trash::IsOnDeviceOf(const Path& path, std::uint64_t device) {
  const std::optional<FileStat> stat = m_files.Stat(path);
  if (stat) return stat->device == device;
  return path.has_relative_path() && IsOnDeviceOf(path.parent_path(), device);
}

bool Trash::IsOwnFolder(const Path& folder) {
  try {
    if (!m_files.Stat(folder, Files::Links::DontFollow)) m_files.CreateFolder(folder, 0700);
    const std::optional<FileStat> stat = m_files.Stat(folder, Files::Links::DontFollow);
    return stat && stat->kind == FileKind::Folder && stat->owner == ::geteuid();
  } catch (const Error&) {  // not usable, whatever the reason
    return false;
  }
}

void Trash::MakeFolders(const Path& folder) {
  if (m_files.Stat(folder)) return;
  MakeFolders(folder.parent_path());
  m_files.CreateFolder(folder, 0700);
}

// The info file is made first: whoever makes it owns the name.
bool Trash::TryMove(const Path& path, const Place& place, const std::string& name) {
  const Path infoPath = place.folder / "info" / (name + ".trashinfo");
  const Path target = place.folder / "files" / name;
  const std::unique_ptr<File> info = CreateIfFree(m_files, infoPath);
  if (!info) return false;
  PartialFile reserved(m_files, infoPath);
  if (m_files.Stat(target, Files::Links::DontFollow)) return false;
  const std::string text = InfoText(place.relative);
  info->WriteAt(Position{}, AsBytes(text));
  info->Close();
  m_files.Rename(path, target);
  reserved.Keep();
  return true;
}

}  // namespace tarnel
