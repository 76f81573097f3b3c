#include <gtest/gtest.h>

#include "retrieval/password_steps.h"
#include "retrieval/view_steps.h"
#include "tests/carrier/carrier_bench.h"

namespace tarnel::test {

TEST(ViewSteps, OnlyTheRightButtonsLive) {
  const struct {
    ViewStep step;
    std::string live;
    ViewCancel cancel;
  } cases[] = {{ViewStep::Opening, "cancel extracting", ViewCancel::AtOnce},
               {ViewStep::Waiting, "ok update", ViewCancel::Refused},
               {ViewStep::Asking, "", ViewCancel::Refused},
               {ViewStep::Updating, "cancel progress", ViewCancel::WhenAsked},
               {ViewStep::Reading, "progress", ViewCancel::Refused},
               {ViewStep::Leaving, "", ViewCancel::Refused}};
  for (const auto& [step, live, cancel] : cases) {
    const ViewControls controls = ControlsOf(step);
    const std::pair<bool, const char*> parts[] = {{controls.Cmd_Ok, "ok"},
                                                  {controls.Cmd_Update, "update"},
                                                  {controls.Cmd_Cancel, "cancel"},
                                                  {controls.isExtracting, "extracting"},
                                                  {controls.isProgressShown, "progress"}};
    std::string found;
    for (const auto& [isOn, name] : parts)
      if (isOn) found += (found.empty() ? "" : " ") + std::string(name);
    EXPECT_EQ(found, live);
    EXPECT_EQ(CancelOf(step), cancel) << live;
  }
}

TEST(ViewSteps, TheRowMustBeTheOneThatTheListShows) {
  CarrierBench bench;
  bench.Hide({"a"}).Hide({"b"}).Load();
  const Catalogue& catalogue = bench.catalogue;
  EXPECT_EQ(RowToView(catalogue, 0, bench.carrier, "b"), &catalogue.Rows().at(0));
  EXPECT_EQ(RowToView(catalogue, 1, bench.carrier, "b"), nullptr);
  EXPECT_EQ(RowToView(catalogue, 0, "/other", "b"), nullptr);
  EXPECT_EQ(RowToView(catalogue, 2, bench.carrier, "b"), nullptr);
}

TEST(PasswordSteps, NothingCanBeTypedWhileItRunsNorCancelledBehindIt) {
  EXPECT_EQ(ControlsOf(PasswordStep::Asking), (PasswordControls{true, true, true, false}));
  EXPECT_EQ(ControlsOf(PasswordStep::Running), (PasswordControls{false, false, true, true}));
  EXPECT_EQ(ControlsOf(PasswordStep::Reading), (PasswordControls{false, false, false, true}));
}

}  // namespace tarnel::test
