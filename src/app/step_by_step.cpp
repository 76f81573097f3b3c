#include "app/step_by_step.h"

#include <algorithm>

#include "app/settings.h"

namespace tarnel {

const std::vector<GuidePage>& StepbyStepGuide::Pages() {
  static const std::vector<GuidePage> pages = {
      {.frame = "HideFilesFrame_0",
       .above = {{"Locate the carrier file..."}, {"Click on the        toolbar button.", CommandId::Open}},
       .picture = "carrier-file"},
      {.frame = "HideFilesFrame_1",
       .above = {{"Create a new hideout or open an existing one."}},
       .picture = "create-hideout"},
      {.frame = "HideFilesFrame_2",
       .above = {{"Select the files and folders you want to hide and click on the \"Hide!\" button."}},
       .picture = "hide-selected"},
      {.frame = "HideFilesFrame_3",
       .above = {{"Tarnel show the hidden files and folders in the main window."}},
       .picture = "main-window",
       .below = {{"Congratulations! The files are successfully hidden. "}}},
      {.frame = "ExtractFilesFrame_0",
       .above = {{"Locate the carrier file"}, {"Click on the         toolbar button.", CommandId::Open}},
       .picture = "carrier-file"},
      {.frame = "ExtractFilesFrame_1", .above = {{"Open the existing hideout."}}, .picture = "open-hideout"},
      {.frame = "ExtractFilesFrame_2",
       .above = {{"Select the hidden files from the main window."},
                 {"Click on the        toolbar button to extract the hidden files from the carrier file.",
                  CommandId::Extract}},
       .picture = "main-selected"},
      {.frame = "ExtractFilesFrame_3",
       .above = {{"Click on the \"Extract\" button to extract the selected hidden files to the specified "
                  "target folder."}},
       .picture = "extract",
       .below = {{"Congratulations! You have retrieved hidden files from the carrier file."}}},
  };
  return pages;
}

const std::vector<GuideControl>& StepbyStepGuide::Controls() {
  using enum GuideControl::Kind;
  static const std::vector<GuideControl> controls = {
      {Arrow, "Arr23", ">>", 0, 1},
      {Arrow, "Arr34", ">>", 1, 2},
      {Arrow, "Arr45", ">>", 2, 3},
      {Arrow, "Arr32", "<<", 1, 0},
      {Arrow, "Arr43", "<<", 2, 1},
      {Arrow, "Arr54", "<<", 3, 2},
      {Arrow, "Aww23", ">>", 4, 5},
      {Arrow, "Aww34", ">>", 5, 6},
      {Arrow, "Aww45", ">>", 6, 7},
      {Arrow, "Aww32", "<<", 5, 4},
      {Arrow, "Aww43", "<<", 6, 5},
      {Arrow, "Aww65", "<<", 7, 6},
      {Link, "LB_ExtractFilesShow", ">> Retrieve hidden files and folders", 3, 4},
      {Link, "Lb_HideFilesShow", ">> Hide Files and Folders", 7, 0},
  };
  return controls;
}

const char* StepbyStepGuide::Title() const {
  return m_page < kPagesOfAGuide ? "Hide Files and Folders..." : "Retrieve Hidden Files and Folders...";
}

std::size_t StepbyStepGuide::Number() const {
  return m_page % kPagesOfAGuide + 1;
}

const GuideControl& StepbyStepGuide::Forward() const {
  return *std::find_if(Controls().begin(), Controls().end(),
                       [this](const GuideControl& each) { return each.from == m_page && each.IsForward(); });
}

const GuideControl* StepbyStepGuide::Back() const {
  const auto found = std::find_if(Controls().begin(), Controls().end(), [this](const GuideControl& each) {
    return each.from == m_page && !each.IsForward();
  });
  return found == Controls().end() ? nullptr : &*found;
}

void StepbyStepGuide::Follow(const GuideControl& control) {
  if (control.from != m_page) return;
  m_page = control.to;
  m_ticks = 0;
  m_isLit = false;
}

void StepbyStepGuide::Tick() {
  ++m_ticks;
  m_isLit = !m_isLit && IsBlinking();
}

bool ShowsGuideAtStart(const SettingsFile& settings) {
  return settings.Get(section::kGuide, "Show", "Yes") == "Yes";
}

}  // namespace tarnel
