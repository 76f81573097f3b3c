#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/files.h"

namespace tarnel {

/// The one file of ours that outlives the program: keys and values, in sections, as strings of any bytes.
/// A missing, unreadable or torn file counts as an empty one: settings never keep the program from starting.
class SettingsFile {
 public:
  /// Reads `path`. Nothing is made on disk before Save.
  SettingsFile(Files& files, Path path);

  std::optional<std::string> Find(std::string_view section, std::string_view key) const;
  std::string Get(std::string_view section, std::string_view key, std::string_view preset) const;
  /// The number in the value; 0 for text that is none.
  double Number(std::string_view section, std::string_view key, std::string_view preset) const;
  /// True for any number but 0.
  bool Flag(std::string_view section, std::string_view key, std::string_view preset) const;

  void Set(std::string_view section, std::string_view key, std::string value);
  void DeleteSection(std::string_view section);

  /// Puts what was set since on disk, in one step: file mode 0600, folder 0700. After an Error the old file
  /// is whole.
  void Save();

 private:
  using Section = std::map<std::string, std::string, std::less<>>;

  void Read();
  void Parse(std::string_view text);
  std::string Text() const;
  void MakeFolder();

  Files& m_files;
  Path m_path;
  std::map<std::string, Section, std::less<>> m_sections;
};

/// $XDG_CONFIG_HOME/tarnel/settings.ini, with ~/.config where that is unset or relative (XDG base
/// directories 0.8).
Path UserSettingsPath();

}  // namespace tarnel
