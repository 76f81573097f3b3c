#include "shellint/places.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "base/home_folder.h"

namespace tarnel {

namespace {

constexpr Length kLongestConfiguration = 1 << 20;

std::string TextOf(Files& files, const Path& path) {
  try {
    const std::unique_ptr<File> file = files.OpenToRead(path);
    std::string text(static_cast<std::size_t>(std::min(file->Size(), kLongestConfiguration)), '\0');
    text.resize(file->ReadAt({}, MutableBytes(reinterpret_cast<std::uint8_t*>(text.data()), text.size())));
    return text;
  } catch (const Error&) {
    return {};
  }
}

/// The text between double quotes, where a backslash makes the next character an ordinary one.
std::string Quoted(std::string_view line) {
  std::string text;
  for (std::size_t i = line.find('"') + 1; i < line.size() && line[i] != '"'; ++i) {
    if (line[i] == '\\' && i + 1 < line.size()) ++i;
    text.push_back(line[i]);
  }
  return text;
}

/// The value of `key` in a user-dirs.dirs: absolute, or below $HOME. Empty if there is none.
Path ValueIn(const std::string& text, const std::string& key, const Path& home) {
  std::istringstream lines(text);
  Path value;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t start = line.find_first_not_of(" \t");
    if (start == std::string::npos || !std::string_view(line).substr(start).starts_with(key + "=\""))
      continue;
    const std::string quoted = Quoted(line);
    constexpr std::string_view below = "$HOME/";
    if (quoted == "$HOME")
      value = home;
    else if (quoted.starts_with(below))
      value = home / quoted.substr(below.size());
    else if (quoted.starts_with('/'))
      value = quoted;
  }
  return value.lexically_normal();
}

bool IsFolder(Files& files, const Path& path) {
  try {
    const std::optional<FileStat> stat = path.empty() ? std::nullopt : files.Stat(path);
    return stat && stat->kind == FileKind::Folder;
  } catch (const Error&) {
    return false;
  }
}

}  // namespace

MachinePlaces::MachinePlaces(Files& files)
    : m_files(files), m_drives(files), m_mounts(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)) {}

MachinePlaces::~MachinePlaces() {
  if (m_mounts >= 0) ::close(m_mounts);
}

Path MachinePlaces::Desktop() {
  return UserFolder("XDG_DESKTOP_DIR", "Desktop");
}

Path MachinePlaces::Documents() {
  const Path documents = UserFolder("XDG_DOCUMENTS_DIR", "Documents");
  const Path desktop = Desktop();
  return documents / "" == desktop / "" ? Path() : documents;
}

Path MachinePlaces::UserFolder(const std::string& key, const char* usual) {
  const Path home = HomeFolder();
  if (home.empty()) return {};
  Path configuration = AbsoluteFromEnvironment("XDG_CONFIG_HOME");
  if (configuration.empty()) configuration = home / ".config";
  const Path chosen = ValueIn(TextOf(m_files, configuration / "user-dirs.dirs"), key, home);
  if (IsFolder(m_files, chosen)) return chosen;
  return IsFolder(m_files, home / usual) ? home / usual : home;
}

}  // namespace tarnel
