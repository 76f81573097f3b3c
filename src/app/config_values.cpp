#include "app/config_values.h"

#include <algorithm>
#include <cstring>

#include "crypto/compression.h"

namespace tarnel {

namespace {

constexpr const char* kSpecifiedMode = "3";

std::optional<std::size_t> ChosenOption(const ConfigGroup& group, std::string_view word) {
  for (std::size_t i = 0; i < group.options.size(); ++i) {
    if (group.options[i].word == word) return i;
  }
  return std::nullopt;
}

}  // namespace

const std::vector<ConfigFlag>& ConfigFlags() {
  static const std::vector<ConfigFlag> flags = {
      {"Chk_StatusBar", setting::kStatusBar},
      {"Chk_Clmn_Attr", setting::kAttribute},
      {"Chk_Clmn_Compr", setting::kCompressed},
      {"Chk_Clmn_Date", setting::kDate},
      {"Chk_Clmn_Name", setting::kName},
      {"Chk_Clmn_Size", setting::kSize},
      {"Chk_Clmn_Subfolder", setting::kSubfolder},
      {"Chk_Clmn_Type", setting::kType},
      {"Chk_View_FlatScroll", setting::kFlatScrollbar},
      {"Chk_View_Fullrow", setting::kFullRowSelect},
      {"Chk_View_Gridlines", setting::kGridLines},
      {"Chk_SaveSettingsExit", setting::kSaveSettingsExit},
      {"Chk_Compress", setting::kCompress},
      {"Chk_Overwrite", setting::kExtractOverwrite},
      {"Chk_UseFolder", setting::kUserFolderNames},
      {"Chk_FolderInfo", setting::kFolderInfo},
      {"Chk_WriteProtection", setting::kWriteProtection},
      {"Opt_viewtempfolder", setting::kPreviewTemp},
  };
  return flags;
}

const std::vector<ConfigGroup>& ConfigGroups() {
  static const std::vector<ConfigGroup> groups = {
      {std::string(setting::kMouseEvent),
       "None",
       {{"Opt_Mouse_None", "None"},
        {"Opt_Mouse_Delete", "Delete"},
        {"Opt_Mouse_View", "View"},
        {"Opt_Mouse_Extr", "Extract"}}},
      {"Folder Open",
       "1",
       {{"Opt_Open_Sys", "1"}, {"Opt_Open_Last", "2"}, {"Opt_Open_Spec", kSpecifiedMode}},
       "txt_openfolder"},
      {"Folder Hide",
       "1",
       {{"Opt_Hide_Sys", "1"}, {"Opt_Hide_Last", "2"}, {"Opt_Hide_Spec", kSpecifiedMode}},
       "txt_hidefolder"},
      {"Folder Extract",
       "1",
       {{"Opt_Ext_Sys", "1"}, {"Opt_Ext_Last", "2"}, {"Opt_Ext_Spec", kSpecifiedMode}},
       "txt_extractfolder"},
  };
  return groups;
}

ConfigValues ReadConfig(const SettingsFile& file) {
  ConfigValues values;
  for (const ConfigFlag& flag : ConfigFlags()) {
    const bool startsChecked = flag.setting.key == setting::kName.key;
    values.flags.push_back(startsChecked ||
                           file.Flag(section::kOptions, flag.setting.key, flag.setting.preset));
  }
  for (const ConfigGroup& group : ConfigGroups()) {
    values.chosen.push_back(ChosenOption(group, file.Get(section::kOptions, group.key, group.preset)));
    values.folders.push_back(file.Get(section::kOptions, group.key + " Spec", ""));
  }
  const double level =
      file.Number(section::kOptions, setting::kCompressLevel, std::to_string(kPresetCompressionLevel));
  values.compressLevel = static_cast<int>(std::clamp(level, 1.0, 9.0));
  values.previewTempFolder = file.Get(section::kOptions, setting::kPreviewTempFolder, "");
  return values;
}

void WriteConfig(const ConfigValues& values, SettingsFile& file) {
  for (std::size_t i = 0; i < values.flags.size(); ++i) {
    file.Set(section::kOptions, ConfigFlags()[i].setting.key, values.flags[i] ? "1" : "0");
  }
  file.Set(section::kOptions, setting::kCompressLevel, std::to_string(values.compressLevel));
  file.Set(section::kOptions, setting::kPreviewTempFolder, values.previewTempFolder);
  for (std::size_t i = 0; i < values.chosen.size(); ++i) {
    if (!values.chosen[i]) continue;
    const ConfigGroup& group = ConfigGroups()[i];
    const char* word = group.options[*values.chosen[i]].word;
    file.Set(section::kOptions, group.key, word);
    const bool isSpecified = group.folderControl != nullptr && std::strcmp(word, kSpecifiedMode) == 0;
    if (isSpecified) file.Set(section::kOptions, group.key + " Spec", values.folders[i]);
  }
}

void DeleteConfig(SettingsFile& file) {
  file.DeleteSection(section::kOptions);
  file.DeleteSection(section::kForm);
}

}  // namespace tarnel
