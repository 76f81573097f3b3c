#pragma once

#include <array>
#include <string>
#include <string_view>

#include "app/settings_file.h"
#include "base/files.h"

namespace tarnel {

namespace section {
inline constexpr std::string_view kForm = "form";
inline constexpr std::string_view kOptions = "options";
inline constexpr std::string_view kGuide = "StepbyStep";
inline constexpr std::string_view kOpening = "option";
}  // namespace section

/// Lengths in section "form" are twips, 15 to a pixel of a screen at 100 %.
inline constexpr int kTwipsPerPixel = 15;

/// A switch of section "options": its key and what holds where the key is missing.
struct FlagSetting {
  std::string_view key;
  std::string_view preset;
};

namespace setting {
inline constexpr FlagSetting kStatusBar{"StatusBar", "1"};
inline constexpr FlagSetting kSaveSettingsExit{"SaveSettingsExit", "1"};
inline constexpr FlagSetting kSize{"Size", "1"};
inline constexpr FlagSetting kType{"Type", "1"};
inline constexpr FlagSetting kDate{"Date", "1"};
inline constexpr FlagSetting kAttribute{"Attribute", "0"};
inline constexpr FlagSetting kSubfolder{"Subfolder", "0"};
inline constexpr FlagSetting kCompressed{"Compressed", "0"};
inline constexpr FlagSetting kName{"Name", "1"};
inline constexpr FlagSetting kFullRowSelect{"Full row select", "0"};
inline constexpr FlagSetting kGridLines{"Grid lines", "0"};
inline constexpr FlagSetting kFlatScrollbar{"Flat Scrollbar", "0"};
inline constexpr FlagSetting kCompress{"Compress", "0"};
inline constexpr FlagSetting kWriteProtection{"WriteProtection", "1"};
inline constexpr FlagSetting kFolderInfo{"FolderInfo", "1"};
inline constexpr FlagSetting kExtractOverwrite{"Extract Overwrite", "0"};
inline constexpr FlagSetting kUserFolderNames{"UserFolderNames", "1"};
inline constexpr FlagSetting kPreviewTemp{"PreviewTemp", "1"};

inline constexpr std::string_view kMouseEvent = "Mouse_Event";
inline constexpr std::string_view kCompressLevel = "CompressLevel";
inline constexpr std::string_view kPreviewTempFolder = "PreviewTempFolder";
}  // namespace setting

/// Where a dialog starts: the key is "Folder Open", "Folder Hide" or "Folder Extract", and behind a blank
/// "Spec" or "Last".
struct FolderChoice {
  int mode = 0;  ///< 1 system default, 2 the last folder, 3 the specified one; others act like 1
  Path specified;
  Path last;

  /// The folder of the mode, whether it exists or not; empty leaves it to the system.
  Path Start() const;
};

/// The columns of the file list that a setting can switch, in the order in which they are added.
inline constexpr std::array<FlagSetting, 6> kColumnSettings = {setting::kSize,      setting::kType,
                                                               setting::kDate,      setting::kAttribute,
                                                               setting::kSubfolder, setting::kCompressed};

/// The settings as the program works with them.
struct Settings {
  bool saveSettingsExit = false;
  std::array<bool, kColumnSettings.size()> columns = {};  ///< in the order of kColumnSettings
  bool fullRowSelect = false;
  bool gridLines = false;
  std::string mouseEvent;
  bool compress = false;
  int compressLevel = 0;  ///< 1 to 9, whatever is stored
  bool writeProtection = false;
  bool folderInfo = false;
  bool extractOverwrite = false;
  bool userFolderNames = false;
  bool previewTemp = false;
  std::string previewTempFolder;
  FolderChoice open;
  FolderChoice hide;
  FolderChoice extract;
};

/// Reads section "options" into the record. A folder mode other than "1", "2" or "3" leaves the field as it
/// was.
void LoadSettings(const SettingsFile& file, Settings& settings);

/// How the main window looked when it was closed, in twips.
struct WindowGeometry {
  int height = 0;
  int width = 0;
  int fileListLeft = 0;
};
WindowGeometry LoadGeometry(const SettingsFile& file);
int LoadColumnWidth(const SettingsFile& file, std::string_view column);

}  // namespace tarnel
