#include "app/step_by_step.h"

#include <gtest/gtest.h>

#include "app/settings_file.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {
namespace {

const GuideControl& Control(const std::string& name) {
  for (const GuideControl& each : StepbyStepGuide::Controls())
    if (each.name == name) return each;
  throw std::runtime_error("no control " + name);
}

std::string Shown(const StepbyStepGuide& guide) {
  const GuideControl* const back = guide.Back();
  return std::string(StepbyStepGuide::Pages().at(guide.Page()).frame) + " " +
         (back == nullptr ? "-" : back->name) + " " + guide.Forward().name;
}

TEST(StepbyStepGuide, IsWalkedThroughBothWaysAndAround) {
  StepbyStepGuide guide;
  const std::pair<const char*, std::string> steps[] = {
      {"Aww45", "HideFilesFrame_0 - Arr23"},  // stands on another page
      {"Arr23", "HideFilesFrame_1 Arr32 Arr34"},
      {"Arr34", "HideFilesFrame_2 Arr43 Arr45"},
      {"Arr45", "HideFilesFrame_3 Arr54 LB_ExtractFilesShow"},
      {"Arr54", "HideFilesFrame_2 Arr43 Arr45"},
      {"Arr45", "HideFilesFrame_3 Arr54 LB_ExtractFilesShow"},
      {"LB_ExtractFilesShow", "ExtractFilesFrame_0 - Aww23"},
      {"Aww23", "ExtractFilesFrame_1 Aww32 Aww34"},
      {"Aww34", "ExtractFilesFrame_2 Aww43 Aww45"},
      {"Aww45", "ExtractFilesFrame_3 Aww65 Lb_HideFilesShow"},
      {"Aww65", "ExtractFilesFrame_2 Aww43 Aww45"},
      {"Aww43", "ExtractFilesFrame_1 Aww32 Aww34"},
      {"Aww32", "ExtractFilesFrame_0 - Aww23"},
  };
  for (const auto& [control, shown] : steps) {
    guide.Follow(Control(control));
    EXPECT_EQ(Shown(guide), shown) << control;
    const bool isHiding = shown.starts_with("Hide");
    EXPECT_EQ(std::string(guide.Title()).starts_with("Hide"), isHiding) << shown;
    EXPECT_EQ(guide.Number(), guide.Page() % 4 + 1);
  }
  for (const char* control : {"Aww23", "Aww34", "Aww45", "Lb_HideFilesShow"})
    guide.Follow(Control(control));
  EXPECT_EQ(Shown(guide), "HideFilesFrame_0 - Arr23");
}

TEST(StepbyStepGuide, EachPageBlinksForTenSecondsAtMost) {
  StepbyStepGuide guide;
  for (int page = 0; page < 2; ++page) {
    EXPECT_FALSE(guide.IsForwardLit());
    int changes = 0;
    for (int tick = 0; tick < 100; ++tick) {
      const bool was = guide.IsForwardLit();
      guide.Tick();
      if (guide.IsForwardLit() != was && ++changes * StepbyStepGuide::kArrBlink > StepbyStepGuide::kBlinkTime)
        ADD_FAILURE() << "still blinks at tick " << tick;
    }
    EXPECT_EQ(changes, 14);
    EXPECT_FALSE(guide.IsForwardLit());
    guide.Follow(guide.Forward());
  }
}

TEST(StepbyStepGuide, ComesByItselfUnlessTheSettingIsAnythingButYes) {
  TempFolder folder;
  PosixFiles files;
  SettingsFile settings(files, folder / "settings.ini");
  EXPECT_TRUE(ShowsGuideAtStart(settings));
  for (const char* value : {"No", "yes", "Yes ", "1", ""}) {
    settings.Set("StepbyStep", "Show", value);
    EXPECT_FALSE(ShowsGuideAtStart(settings)) << value;
  }
  settings.Set("StepbyStep", "Show", "Yes");
  EXPECT_TRUE(ShowsGuideAtStart(settings));
}

}  // namespace
}  // namespace tarnel::test
