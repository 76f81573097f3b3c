#include <gtest/gtest.h>

#include <QSlider>
#include <QTabBar>

#include "app/forms/config_form.h"
#include "tests/forms/forms_bench.h"

namespace tarnel::test {
namespace {

class ConfigTest : public testing::Test, public FormsBench, public ConfigurableWindow {
 protected:
  void ShowStatusBar(bool isShown) override { statusBar = isShown; }
  void ShowFolders(bool isShown) override { folders = isShown; }

  bool IsChecked(const char* control) { return Find<QAbstractButton>(form, control).isChecked(); }

  Config form{*session, *this, dialogue, files, nullptr};
  std::optional<bool> statusBar;
  std::optional<bool> folders;
};

TEST_F(ConfigTest, HasAControlForEverySettingThatShowsThePreset) {
  for (const ConfigFlag& flag : ConfigFlags()) {
    EXPECT_EQ(IsChecked(flag.control), flag.setting.preset == "1") << flag.control;
  }
  for (const ConfigGroup& group : ConfigGroups()) {
    EXPECT_TRUE(IsChecked(group.options.at(0).control)) << group.key;
  }
  EXPECT_EQ(Find<QSlider>(form, "CompressLevel").value(), 6);
}

TEST_F(ConfigTest, OkWritesAndCancelDoesNot) {
  for (const char* control : {"Chk_View_Gridlines", "Chk_StatusBar", "Opt_Mouse_View"})
    Press(form, control);
  Press(form, "Cmd_Cancel");
  EXPECT_FALSE(settings->Find("options", "Grid lines"));
  Press(form, "Cmd_Ok");
  const SettingsFile stored(posix, temp / "home/settings.ini");
  EXPECT_EQ(stored.Get("options", "Grid lines", ""), "1");
  EXPECT_EQ(stored.Get("options", "StatusBar", ""), "0");
  EXPECT_EQ(stored.Get("options", "Mouse_Event", ""), "View");
  EXPECT_EQ(statusBar, false);
}

TEST_F(ConfigTest, AFailedOkChangesNothing) {
  temp.Put("home", "a file where the folder of the settings should be");
  dialogue.script.Expect("main.fault", Answer::Ok);
  Press(form, "Chk_View_Gridlines");
  Press(form, "Chk_StatusBar");
  Press(form, "Cmd_Ok");
  EXPECT_FALSE(settings->Find("options", "Grid lines"));
  EXPECT_FALSE(statusBar);
  Press(form, "Command1");
  EXPECT_EQ(folders, true) << "the defaults say nothing of the disk";
}

TEST_F(ConfigTest, FoldersKeepTheirBytes) {
  const std::string latin = "/data/caf\xe9";
  for (const char* key : {"Folder Hide Spec", "PreviewTempFolder"})
    settings->Set("options", key, latin);
  settings->Set("options", "Folder Hide", "3");
  Config shown(*session, *this, dialogue, files, nullptr);
  Press(shown, "Cmd_Ok");
  EXPECT_EQ(settings->Get("options", "Folder Hide Spec", ""), latin);
  EXPECT_EQ(settings->Get("options", "PreviewTempFolder", ""), latin);
}

TEST_F(ConfigTest, SpecifiedFolderAsksForOneAndFallsBackWhereNoneIsChosen) {
  Press(form, "Opt_Hide_Spec");
  EXPECT_EQ(files.asked, 1);
  EXPECT_TRUE(IsChecked("Opt_Hide_Sys"));
  files.answers = {Path("/chosen"), Path("/other")};
  Press(form, "Opt_Hide_Spec");
  auto& text = Find<QLineEdit>(form, "txt_hidefolder");
  EXPECT_EQ(text.text(), QStringLiteral("/chosen"));
  EXPECT_TRUE(IsChecked("Opt_Hide_Spec"));
  Press(form, "Opt_Hide_Last");
  Press(form, "Opt_Hide_Spec");
  EXPECT_EQ(files.asked, 2) << "the box is filled";
  QTest::mouseDClick(&text, Qt::LeftButton);
  EXPECT_EQ(text.text(), QStringLiteral("/other"));
  Press(form, "opt_viewfolder");
  EXPECT_TRUE(IsChecked("Opt_viewtempfolder")) << "nothing chosen";
}

TEST_F(ConfigTest, DefaultsAreBackAtOnceAndStayAfterCancel) {
  settings->Set("options", "Size", "0");
  settings->Set("form", "Width", "9000");
  settings->Set("option", "Tabs", "1");
  settings->Set("options", "Grid lines", "1");
  settings->Save();
  session->ReloadSettings();
  Press(form, "Command1");
  EXPECT_FALSE(session->settings.gridLines);
  Press(form, "Cmd_Cancel");
  const SettingsFile stored(posix, temp / "home/settings.ini");
  EXPECT_FALSE(stored.Find("options", "Size") || stored.Find("form", "Width"));
  EXPECT_EQ(stored.Get("option", "Tabs", ""), "1");
  EXPECT_EQ(folders, true);
}

TEST_F(ConfigTest, PasswordPageStaysHidden) {
  form.show();
  auto& tabs = Find<QTabBar>(form, "TabStrip");
  for (int tab = 0; tab < tabs.count(); ++tab) {
    tabs.setCurrentIndex(tab);
    EXPECT_FALSE(Find(form, "Frame_4").isVisible());
  }
}

}  // namespace
}  // namespace tarnel::test
