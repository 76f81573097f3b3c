#include "app/settings.h"

#include <gtest/gtest.h>

#include "app/config_values.h"
#include "tests/support/faulty_files.h"
#include "tests/support/surroundings.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {
namespace {

class SettingsTest : public testing::Test {
 protected:
  Settings Loaded() const {
    Settings settings;
    LoadSettings(file, settings);
    return settings;
  }

  TempFolder folder;
  PosixFiles posix;
  Path path = folder / "config/tarnel/settings.ini";
  SettingsFile file{posix, path};
};

TEST_F(SettingsTest, GiveThePresetsWithoutAFile) {
  const Settings settings = Loaded();
  EXPECT_EQ(settings.columns, (std::array<bool, 6>{true, true, true, false, false, false}));
  EXPECT_FALSE(settings.gridLines || settings.fullRowSelect || settings.compress ||
               settings.extractOverwrite);
  EXPECT_TRUE(settings.saveSettingsExit && settings.writeProtection && settings.folderInfo &&
              settings.userFolderNames && settings.previewTemp);
  EXPECT_EQ(settings.mouseEvent, "None");
  EXPECT_EQ(settings.compressLevel, 6);
  EXPECT_EQ(settings.open.mode, 1);
  EXPECT_EQ(LoadGeometry(file).width, 7110);
  EXPECT_TRUE(folder.Names().empty()) << "reading makes nothing";
}

TEST_F(SettingsTest, ReadNumbersLeniently) {
  const std::pair<const char*, bool> cases[] = {{"1", true},  {"0", false},  {"", false},  {"yes", false},
                                                {"-1", true}, {" 2x", true}, {"0.5", true}};
  for (const auto& [value, flag] : cases) {
    file.Set("options", "Grid lines", value);
    EXPECT_EQ(Loaded().gridLines, flag) << value;
  }
  const std::pair<const char*, int> levels[] = {{"99", 9}, {"0", 1}, {"-1", 1}, {"4", 4}};
  for (const auto& [value, level] : levels) {
    file.Set("options", "CompressLevel", value);
    EXPECT_EQ(Loaded().compressLevel, level) << value;
  }
  file.Set("form", "Height", "1e300");
  EXPECT_GT(LoadGeometry(file).height, 0) << "a number of any size stays a height";
}

TEST_F(SettingsTest, KeepAFolderModeThatIsNoneAsItWas) {
  Settings settings;
  file.Set("options", "Folder Hide Spec", "/chosen");
  file.Set("options", "Folder Hide Last", "/last");
  const struct {
    const char* word;
    int mode;
    Path start;
  } cases[] = {{"7", 0, ""}, {"3", 3, "/chosen"}, {"2", 2, "/last"}, {"many", 2, "/last"}, {"1", 1, ""}};
  for (const auto& [word, mode, start] : cases) {
    file.Set("options", "Folder Hide", word);
    LoadSettings(file, settings);
    EXPECT_EQ(settings.hide.mode, mode) << word;
    EXPECT_EQ(settings.hide.Start(), start) << word;
  }
}

TEST_F(SettingsTest, ComeBackByteForByteFromAPrivateFile) {
  const std::string odd = "a=b\n[c]\\n\r\xff\xfe ;#\\";
  file.Set("options", "Folder Open Last", odd);
  file.Set("option", "Tabs", "1");
  file.Save();
  EXPECT_EQ(posix.Stat(path)->mode, 0600U);
  EXPECT_EQ(posix.Stat(path.parent_path())->mode, 0700U);
  const SettingsFile again(posix, path);
  EXPECT_EQ(again.Get("options", "Folder Open Last", ""), odd);
  EXPECT_EQ(again.Get("option", "Tabs", "2"), "1");
}

TEST_F(SettingsTest, SurviveEveryFailureOfTheDiskWhole) {
  file.Set("option", "Tabs", "1");
  file.Save();
  for (std::size_t k = 1; k < 100; ++k) {
    FaultyFiles faulty(posix);
    SettingsFile changed(faulty, path);
    changed.Set("option", "Tabs", "2");
    faulty.Fail({.at = faulty.Count() + k, .number = ErrorNumber::DiskFull, .writes = Writes::FirstHalf});
    bool hasThrown = false;
    try {
      changed.Save();
    } catch (const Error&) {
      hasThrown = true;
    }
    if (!faulty.HasFailed()) return;
    EXPECT_TRUE(hasThrown) << k;
    const std::string tabs = SettingsFile(posix, path).Get("option", "Tabs", "lost");
    EXPECT_TRUE(tabs == "1" || tabs == "2") << k << ": " << tabs;
    EXPECT_EQ(folder.Names().size(), 3U) << k << ": nothing stays beside the file";
  }
  FAIL() << "the sweep never ended";
}

TEST_F(SettingsTest, AreOnTheMediumBeforeTheyTakeTheirName) {
  FaultyFiles files(posix);
  SettingsFile saved(files, path);
  std::string order;
  files.before = [&order](const Operation& operation) {
    for (const char* name : {"File.Sync", "Files.Rename", "Files.SyncFolder"})
      if (operation.name == name) order += operation.name + " ";
  };
  saved.Save();
  EXPECT_EQ(order, "File.Sync Files.Rename Files.SyncFolder ");
}

TEST_F(SettingsTest, SavingKeepsWhatOthersDidToTheFile) {
  const Path real = folder.Put("real.ini", "[options]\r\nGrid lines=1\r\n[StepbyStep]\r\nShow=No\r\n");
  const Path link = folder / "link.ini";
  std::filesystem::create_symlink("real.ini", link);
  SettingsFile linked(posix, link);
  EXPECT_EQ(linked.Get("options", "Grid lines", ""), "1") << "lines end by CR LF";
  WriteAll(real, "[options]\nSize=0\n");
  linked.Set("option", "Tabs", "1");
  linked.Save();
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(ReadAll(real), "[option]\nTabs=1\n[options]\nSize=0\n");
  EXPECT_FALSE(linked.Find("StepbyStep", "Show")) << "removed by hand";
  WriteAll(real, "[option]\nTabs=2\n");
  linked.Save();
  EXPECT_EQ(linked.Get("option", "Tabs", ""), "2") << "a change is made once";
}

TEST_F(SettingsTest, WhatCannotBeReadIsNotReplaced) {
  const std::string large((1 << 20) + 1, '\n');
  SettingsFile other(posix, folder.Put("large.ini", large));
  EXPECT_THROW(other.Save(), Error);
  EXPECT_EQ(ReadAll(folder / "large.ini").size(), large.size());
  FaultyFiles files(posix);
  const Path mine = folder.Put("mine.ini", "[a]\nb=c\n");
  files.Fail({.times = Times::FromThenOn,
              .counts = [](const auto& each) { return each.name == "Files.OpenToRead"; }});
  EXPECT_THROW(SettingsFile(files, mine).Save(), Error);
  EXPECT_EQ(ReadAll(mine), "[a]\nb=c\n");
}

TEST_F(SettingsTest, TakeRubbishForNoSettings) {
  for (const char* rubbish : {"", "[", "=", "[]\n=\n", "\\", "[options\nGrid lines=1"})
    EXPECT_FALSE(SettingsFile(posix, folder.Put("rubbish.ini", rubbish)).Flag("options", "Grid lines", "0"))
        << rubbish;
  EXPECT_EQ(SettingsFile(posix, folder.Where()).Get("a", "b", "preset"), "preset") << "a folder is no file";
}

TEST_F(SettingsTest, PathFollowsTheConfigurationFolder) {
  const Variable config("XDG_CONFIG_HOME", "/somewhere");
  EXPECT_EQ(UserSettingsPath(), "/somewhere/tarnel/settings.ini");
  const Variable relative("XDG_CONFIG_HOME", "relative"), home("HOME", "/home/me");
  EXPECT_EQ(UserSettingsPath(), "/home/me/.config/tarnel/settings.ini");
}

TEST_F(SettingsTest, ConfigComesBackAsWritten) {
  ConfigValues values = ReadConfig(file);
  values.flags.flip();
  values.chosen.assign(values.chosen.size(), 2);
  values.folders = {"", "/open", "/hide", ""};
  values.compressLevel = 9;
  values.previewTempFolder = "/preview";
  WriteConfig(values, file);
  const ConfigValues again = ReadConfig(file);
  for (std::size_t i = 0; i < values.flags.size(); ++i) {
    const bool isName = ConfigFlags()[i].setting.key == "Name";
    EXPECT_EQ(again.flags.at(i), isName || values.flags[i]) << ConfigFlags()[i].control;
  }
  EXPECT_EQ(again.chosen, values.chosen);
  EXPECT_EQ(again.folders, values.folders);
  EXPECT_EQ(again.compressLevel, 9);
  EXPECT_EQ(again.previewTempFolder, "/preview");
  EXPECT_EQ(Loaded().mouseEvent, "View");
}

TEST_F(SettingsTest, ConfigKeepsAWordThatChoosesNoneAndAFolderWhoseOptionIsOff) {
  file.Set("options", "Folder Hide", "7");
  ConfigValues values = ReadConfig(file);
  EXPECT_FALSE(values.chosen.at(2));
  values.folders.at(1) = "/open";
  WriteConfig(values, file);
  EXPECT_EQ(file.Get("options", "Folder Hide", ""), "7");
  EXPECT_FALSE(file.Find("options", "Folder Open Spec"));
}

}  // namespace
}  // namespace tarnel::test
