#include "app/settings_file.h"

#include <cstdlib>
#include <utility>

#include "app/private_folder.h"
#include "base/partial_file.h"
#include "base/printable.h"
#include "base/temp_names.h"
#include "carrier/tags.h"

namespace tarnel {

namespace {

constexpr Length kSizeLimit = 1 << 20;

std::string Escaped(std::string_view value) {
  std::string result;
  for (const char c : value) {
    if (c == '\n') {
      result += "\\n";
    } else if (c == '\r') {
      result += "\\r";
    } else if (c == '\\') {
      result += "\\\\";
    } else {
      result += c;
    }
  }
  return result;
}

std::string Unescaped(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      result += text[i];
      continue;
    }
    const char code = text[++i];
    result += code == 'n' ? '\n' : code == 'r' ? '\r' : code;
  }
  return result;
}

}  // namespace

SettingsFile::SettingsFile(Files& files, Path path) : m_files(&files), m_path(std::move(path)) {
  try {
    m_sections = Read();
  } catch (const Error&) {  // none that can be had: the presets apply
  }
}

SettingsFile::Sections SettingsFile::Read() const {
  if (!m_files->Stat(m_path)) return {};
  const auto file = m_files->OpenToRead(m_path);
  const Length size = file->Size();
  if (size > kSizeLimit) {
    throw Error(ErrorNumber::PathFileAccess,
                "cannot read " + Printable(m_path.native()) + ": it is too large for settings", m_path);
  }
  std::vector<std::uint8_t> text(static_cast<std::size_t>(size));
  text.resize(file->ReadAt(Position{1}, text));
  return Parse(AsText(text));
}

SettingsFile::Sections SettingsFile::Parse(std::string_view text) {
  Sections sections;
  std::string section;
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    const std::size_t equals = line.find('=');
    if (line.size() > 1 && line.front() == '[' && line.back() == ']') {
      section = line.substr(1, line.size() - 2);
    } else if (equals != std::string_view::npos) {
      sections[section].insert_or_assign(std::string(line.substr(0, equals)),
                                         Unescaped(line.substr(equals + 1)));
    }
  }
  return sections;
}

std::optional<std::string> SettingsFile::Find(std::string_view section, std::string_view key) const {
  const auto keys = m_sections.find(section);
  if (keys == m_sections.end()) return std::nullopt;
  const auto value = keys->second.find(key);
  if (value == keys->second.end()) return std::nullopt;
  return value->second;
}

std::string SettingsFile::Get(std::string_view section, std::string_view key, std::string_view preset) const {
  return Find(section, key).value_or(std::string(preset));
}

double SettingsFile::Number(std::string_view section, std::string_view key, std::string_view preset) const {
  return ReadNumber(Get(section, key, preset));
}

bool SettingsFile::Flag(std::string_view section, std::string_view key, std::string_view preset) const {
  return Number(section, key, preset) != 0;
}

void SettingsFile::Set(std::string_view section, std::string_view key, std::string value) {
  m_changes.push_back({std::string(section), std::string(key), std::move(value)});
  Apply(m_changes.back(), m_sections);
}

void SettingsFile::DeleteSection(std::string_view section) {
  m_changes.push_back({std::string(section)});
  Apply(m_changes.back(), m_sections);
}

void SettingsFile::Apply(Change change, Sections& sections) {
  if (change.value) {
    sections[change.section].insert_or_assign(change.key, *std::move(change.value));
  } else {
    sections.erase(change.section);
  }
}

std::string SettingsFile::Text(const Sections& sections) {
  std::string text;
  for (const auto& [section, keys] : sections) {
    text += "[" + section + "]\n";
    for (const auto& [key, value] : keys)
      text += key + "=" + Escaped(value) + "\n";
  }
  return text;
}

void SettingsFile::Save() {
  Sections sections = Read();
  for (const Change& change : m_changes)
    Apply(change, sections);
  MakePrivateFolder(m_path.parent_path(), *m_files);
  Write(m_files->Stat(m_path) ? m_files->Canonical(m_path) : m_path, Text(sections));
  m_sections = std::move(sections);
  m_changes.clear();
}

void SettingsFile::Write(const Path& target, const std::string& text) const {
  const Path fresh = target.parent_path() / RandomName(".settings-");
  const auto file = m_files->CreateNew(fresh, 0600);
  PartialFile partial(*m_files, fresh);
  file->WriteAt(Position{1}, AsBytes(text));
  file->Sync();
  file->Close();
  m_files->Rename(fresh, target);
  partial.Keep();
  m_files->SyncFolder(target.parent_path());
}

Path UserSettingsPath() {
  const char* config = std::getenv("XDG_CONFIG_HOME");
  const char* home = std::getenv("HOME");
  Path folder = config == nullptr ? Path() : Path(config);
  if (!folder.is_absolute()) folder = Path(home == nullptr ? "/" : home) / ".config";
  return folder / "tarnel" / "settings.ini";
}

}  // namespace tarnel
