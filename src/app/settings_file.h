#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"

namespace tarnel {

/// The one file of ours that outlives the program: keys and values, in sections, as strings of any bytes.
/// A missing, unreadable or torn file counts as an empty one: settings never keep the program from starting.
/// Lines may end as on other platforms. A copy has what was set on it alone, and saves to the same file.
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

  /// Puts what was set and deleted since the last time on disk, in one step: file mode 0600, folder 0700.
  /// What others changed in the file meanwhile stays, and holds from now on. A symbolic link stays one. A
  /// file that can't be read, or is larger than any of ours, is not replaced: that is an Error, and after any
  /// Error the old file is whole and the changes wait for the next time.
  void Save();

 private:
  using Section = std::map<std::string, std::string, std::less<>>;
  using Sections = std::map<std::string, Section, std::less<>>;

  struct Change {
    std::string section;
    std::string key = {};
    std::optional<std::string> value = {};  ///< nothing where the whole section goes
  };

  Sections Read() const;
  static Sections Parse(std::string_view text);
  static void Apply(Change change, Sections& sections);
  static std::string Text(const Sections& sections);
  void Write(const Path& target, const std::string& text) const;

  Files* m_files;
  Path m_path;
  Sections m_sections;
  std::vector<Change> m_changes;  ///< since the last Save, in their order
};

/// $XDG_CONFIG_HOME/tarnel/settings.ini, with ~/.config where that is unset or relative (XDG base
/// directories 0.8).
Path UserSettingsPath();

}  // namespace tarnel
