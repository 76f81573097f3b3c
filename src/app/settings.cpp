#include "app/settings.h"

#include <algorithm>

#include "crypto/compression.h"

namespace tarnel {

namespace {

/// More twips than any screen has; keeps a stored number of any size inside an int.
constexpr double kLongest = 1'000'000;

int Whole(double number) {
  return static_cast<int>(std::clamp(number, -kLongest, kLongest));
}

struct FlagField {
  FlagSetting setting;
  bool Settings::*field;
};

constexpr FlagField kFlags[] = {
    {setting::kSaveSettingsExit, &Settings::saveSettingsExit},
    {setting::kFullRowSelect, &Settings::fullRowSelect},
    {setting::kGridLines, &Settings::gridLines},
    {setting::kCompress, &Settings::compress},
    {setting::kWriteProtection, &Settings::writeProtection},
    {setting::kFolderInfo, &Settings::folderInfo},
    {setting::kExtractOverwrite, &Settings::extractOverwrite},
    {setting::kUserFolderNames, &Settings::userFolderNames},
    {setting::kPreviewTemp, &Settings::previewTemp},
};

void LoadFolder(const SettingsFile& file, const std::string& key, FolderChoice& choice) {
  const std::string mode = file.Get(section::kOptions, key, "1");
  if (mode == "1" || mode == "2" || mode == "3") choice.mode = mode[0] - '0';
  choice.specified = file.Get(section::kOptions, key + " Spec", "");
  choice.last = file.Get(section::kOptions, key + " Last", "");
}

}  // namespace

Path FolderChoice::Start() const {
  if (mode == 3) return specified;
  if (mode == 2) return last;
  return {};
}

void LoadSettings(const SettingsFile& file, Settings& settings) {
  for (const FlagField& flag : kFlags) {
    settings.*flag.field = file.Flag(section::kOptions, flag.setting.key, flag.setting.preset);
  }
  for (std::size_t i = 0; i < kColumnSettings.size(); ++i) {
    settings.columns[i] = file.Flag(section::kOptions, kColumnSettings[i].key, kColumnSettings[i].preset);
  }
  settings.mouseEvent = file.Get(section::kOptions, setting::kMouseEvent, "None");
  settings.compressLevel = std::clamp(
      Whole(file.Number(section::kOptions, setting::kCompressLevel, std::to_string(kPresetCompressionLevel))),
      1, 9);
  settings.previewTempFolder = file.Get(section::kOptions, setting::kPreviewTempFolder, "");
  LoadFolder(file, "Folder Open", settings.open);
  LoadFolder(file, "Folder Hide", settings.hide);
  LoadFolder(file, "Folder Extract", settings.extract);
}

WindowGeometry LoadGeometry(const SettingsFile& file) {
  return {.height = Whole(file.Number(section::kForm, "Height", "5115")),
          .width = Whole(file.Number(section::kForm, "Width", "7110")),
          .fileListLeft = Whole(file.Number(section::kForm, "FileList_Left", "2240"))};
}

int LoadColumnWidth(const SettingsFile& file, std::string_view column) {
  return Whole(file.Number(section::kForm, column, "1440"));
}

}  // namespace tarnel
