#include "app/desktop_applications.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "base/home_folder.h"

namespace tarnel {

namespace {

constexpr Length kLongestFile = 1 << 20;
constexpr int kDeepest = 4;

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    if (end > 0) parts.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return parts;
}

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// The value of a key in a group of a key file; empty without one.
std::string Value(std::string_view text, std::string_view group, std::string_view key) {
  bool isInGroup = false;
  for (const std::string& line : Split(text, '\n')) {
    const std::string_view trimmed = Trimmed(line);
    if (trimmed.starts_with('[')) isInGroup = trimmed == "[" + std::string(group) + "]";
    const std::size_t equals = trimmed.find('=');
    if (!isInGroup || trimmed.starts_with('#') || equals == std::string_view::npos) continue;
    if (Trimmed(trimmed.substr(0, equals)) == key) return std::string(Trimmed(trimmed.substr(equals + 1)));
  }
  return {};
}

std::vector<Path> FoldersOf(const char* variable, const char* usual, const Path& own) {
  const char* const value = std::getenv(variable);
  std::vector<Path> folders;
  if (!own.empty()) folders.push_back(own);
  for (const std::string& folder : Split(value != nullptr && *value != '\0' ? value : usual, ':'))
    folders.emplace_back(folder);
  return folders;
}

Path OwnFolder(const char* variable, const char* usual) {
  const char* const value = std::getenv(variable);
  if (value != nullptr && *value == '/') return value;
  const Path home = HomeFolder();
  return home.empty() ? home : home / usual;
}

/// The arguments of a command line in which `"` encloses and `\` keeps the next character.
std::vector<std::string> Arguments(std::string_view exec) {
  std::vector<std::string> arguments;
  std::string current;
  bool isQuoted = false, isAny = false;
  for (std::size_t i = 0; i < exec.size(); ++i) {
    const char c = exec[i];
    if (c == '"') {
      isQuoted = !isQuoted;
      isAny = true;
    } else if (c == ' ' && !isQuoted) {
      if (isAny) arguments.push_back(std::exchange(current, {}));
      isAny = false;
    } else {
      current += c == '\\' && i + 1 < exec.size() ? exec[++i] : c;
      isAny = true;
    }
  }
  if (isAny) arguments.push_back(current);
  return arguments;
}

std::optional<DesktopApplication> Parsed(const std::string& id, const std::string& text) {
  constexpr std::string_view group = "Desktop Entry";
  const auto is = [&](std::string_view key, std::string_view value) {
    return Value(text, group, key) == value;
  };
  if (!is("Type", "Application") || is("Hidden", "true") || is("Terminal", "true")) return std::nullopt;
  DesktopApplication application{.id = id,
                                 .name = Value(text, group, "Name"),
                                 .exec = Value(text, group, "Exec"),
                                 .types = Split(Value(text, group, "MimeType"), ';')};
  const bool takesFiles = application.exec.find_first_of("%") != std::string::npos;
  if (application.name.empty() || !takesFiles || (is("NoDisplay", "true") && application.types.empty()))
    return std::nullopt;
  return application;
}

}  // namespace

DesktopFolders UserDesktopFolders() {
  return {
      FoldersOf("XDG_CONFIG_DIRS", "/etc/xdg", OwnFolder("XDG_CONFIG_HOME", ".config")),
      FoldersOf("XDG_DATA_DIRS", "/usr/local/share:/usr/share", OwnFolder("XDG_DATA_HOME", ".local/share"))};
}

DesktopApplications::DesktopApplications(Files& files, DesktopFolders folders)
    : m_files(files), m_folders(std::move(folders)) {}

std::vector<DesktopApplication> DesktopApplications::All() {
  std::vector<DesktopApplication> all;
  m_seen.clear();
  for (const Path& folder : m_folders.data)
    AddFrom(folder / "applications", {}, 0, all);
  std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  return all;
}

/// An application of a folder in front hides those of the same id behind it.
void DesktopApplications::AddFrom(const Path& folder, const std::string& prefix, int depth,
                                  std::vector<DesktopApplication>& found) {
  std::vector<FolderEntry> entries;
  try {
    entries = m_files.List(folder);
  } catch (const Error&) {
    return;
  }
  for (const FolderEntry& entry : entries) {
    const Path path = folder / entry.name;
    const std::string id = prefix + entry.name;
    if (entry.kind == FileKind::Folder && depth < kDeepest) AddFrom(path, id + "-", depth + 1, found);
    if (!entry.name.ends_with(".desktop")) continue;
    if (!m_seen.insert(id).second) continue;
    if (auto application = Parsed(id, Text(path))) found.push_back(std::move(*application));
  }
}

std::optional<DesktopApplication> DesktopApplications::DefaultFor(const std::vector<std::string>& types) {
  const std::vector<DesktopApplication> all = All();
  for (const std::string& type : types) {
    for (const std::string_view group : {"Default Applications", "Added Associations"})
      if (auto found = Assigned(type, group, all)) return found;
    for (const DesktopApplication& each : all)
      if (std::find(each.types.begin(), each.types.end(), type) != each.types.end()) return each;
  }
  return std::nullopt;
}

std::optional<DesktopApplication> DesktopApplications::Assigned(const std::string& type,
                                                                std::string_view group,
                                                                const std::vector<DesktopApplication>& all) {
  std::vector<Path> lists;
  for (const Path& folder : m_folders.config)
    lists.push_back(folder / "mimeapps.list");
  for (const Path& folder : m_folders.data)
    lists.push_back(folder / "applications/mimeapps.list");
  for (const Path& list : lists) {
    for (const std::string& id : Split(Value(Text(list), group, type), ';')) {
      const auto found = std::find_if(all.begin(), all.end(), [&](const auto& a) { return a.id == id; });
      if (found != all.end()) return *found;
    }
  }
  return std::nullopt;
}

std::string DesktopApplications::Text(const Path& file) {
  try {
    const std::unique_ptr<File> opened = m_files.OpenToRead(file);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min(opened->Size(), kLongestFile)));
    bytes.resize(opened->ReadAt(Position{}, bytes));
    return {bytes.begin(), bytes.end()};
  } catch (const Error&) {
    return {};
  }
}

std::vector<std::string> CommandLineFor(const DesktopApplication& application, const Path& file,
                                        const std::string& url) {
  std::vector<std::string> line;
  for (const std::string& argument : Arguments(application.exec)) {
    const bool takesUrl = argument == "%u" || argument == "%U";
    if (takesUrl || argument == "%f" || argument == "%F") {
      line.push_back(takesUrl && !url.empty() ? url : file.native());
    } else if (argument == "%c") {
      line.push_back(application.name);
    } else if (!argument.starts_with('%')) {
      line.push_back(argument);
    }
  }
  return line;
}

}  // namespace tarnel
