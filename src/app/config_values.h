#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/settings.h"
#include "crypto/compression.h"

namespace tarnel {

/// A check box of Config: its control and its setting.
struct ConfigFlag {
  const char* control;
  FlagSetting setting;
};

/// All check boxes and the one two-way choice that Config writes as "1" or "0", in the order of writing.
const std::vector<ConfigFlag>& ConfigFlags();

/// A group of options of which one is on: its key and, for each option, its control and the word that is
/// stored.
struct ConfigGroup {
  std::string key;
  std::string preset;
  struct Option {
    const char* control;
    const char* word;
  };
  std::vector<Option> options;
  const char* folderControl = nullptr;  ///< the text box of the specified folder, where the group has one
};

/// Mouse double click, then the folders of open, hide and extract.
const std::vector<ConfigGroup>& ConfigGroups();

/// What the controls of Config hold. All values come from the file itself and go back to it, not to the
/// settings record.
struct ConfigValues {
  std::vector<bool> flags;  ///< in the order of ConfigFlags
  std::vector<std::optional<std::size_t>>
      chosen;                        ///< in the order of ConfigGroups; an unknown word chooses none
  std::vector<std::string> folders;  ///< for each group; empty where it has none
  int compressLevel = kPresetCompressionLevel;  ///< 1 to 9
  std::string previewTempFolder;
};

/// "Name" is written and never read: its box always starts checked.
ConfigValues ReadConfig(const SettingsFile& file);

/// Sets everything; the caller saves. A group without a choice keeps its stored word. A specified folder is
/// written only while its option is on.
void WriteConfig(const ConfigValues& values, SettingsFile& file);

/// Deletes the sections "options" and "form"; the others stay.
void DeleteConfig(SettingsFile& file);

}  // namespace tarnel
