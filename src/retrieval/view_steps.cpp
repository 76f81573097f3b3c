#include "retrieval/view_steps.h"

#include "base/formats.h"
#include "carrier/tags.h"

namespace tarnel {

ViewControls ControlsOf(ViewStep step) {
  switch (step) {
    case ViewStep::Opening:
      return {.Cmd_Cancel = true, .isExtracting = true};
    case ViewStep::Waiting:
      return {.Cmd_Ok = true, .Cmd_Update = true};
    case ViewStep::Updating:
      return {.Cmd_Cancel = true, .isProgressShown = true, .panel = "Updating..."};
    case ViewStep::Reading:
      return {.isProgressShown = true, .panel = "Updating..."};
    case ViewStep::Asking:
    case ViewStep::Leaving:
      break;
  }
  return {};
}

ViewCancel CancelOf(ViewStep step) {
  if (!ControlsOf(step).Cmd_Cancel) return ViewCancel::Refused;
  return step == ViewStep::Updating ? ViewCancel::WhenAsked : ViewCancel::AtOnce;
}

ChangeRemark RemarkOn(PreviewChange change, bool wasUpdated) {
  if (change == PreviewChange::Gone) return {.text = "The file is no longer there"};
  if (change == PreviewChange::None)
    return {.text = wasUpdated ? "Updated, not changed since" : "Not changed"};
  return {.text = wasUpdated ? "Changed since the last update" : "Changed since it was opened",
          .isUpdatePreset = true};
}

std::string SizeBehindName(const PreviewParcel& parcel) {
  return " (" + GroupedKilobytes(ReadNumber(parcel.ViewPlainSize)) + " KB)";
}

const MirrorRow* RowToView(const Catalogue& catalogue, std::size_t index, const Path& carrier,
                           std::string_view storedName) {
  if (index >= catalogue.Rows().size()) return nullptr;
  const MirrorRow& row = catalogue.Rows()[index];
  return row.hideout->carrier == carrier && row.Name() == storedName ? &row : nullptr;
}

}  // namespace tarnel
