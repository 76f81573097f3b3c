#pragma once

#include <string>

#include "retrieval/preview.h"

namespace tarnel {

/// Where a view stands. Asking and Leaving are while its own boxes are open; nothing else may begin then.
enum class ViewStep { Opening, Waiting, Asking, Updating, Reading, Leaving };

/// What lives on `FrmView` in a step. In every step something does, or ends by itself.
struct ViewControls {
  bool Cmd_Ok = false, Cmd_Update = false, Cmd_Cancel = false;
  bool isExtracting = false;     ///< the first frame is seen
  bool isProgressShown = false;  ///< of the second frame
  const char* panel = "";        ///< text of the second frame's status bar

  bool operator==(const ViewControls&) const = default;
};
ViewControls ControlsOf(ViewStep step);

/// What cancelling comes to.
enum class ViewCancel {
  Refused,
  AtOnce,    ///< without a question
  WhenAsked  ///< after "Do you really want to cancel this procedure?"
};
ViewCancel CancelOf(ViewStep step);

/// The remark under the file that says whether an update is due, and whether Enter stands for one.
struct ChangeRemark {
  std::string text;
  bool isUpdatePreset = false;

  bool operator==(const ChangeRemark&) const = default;
};
ChangeRemark RemarkOn(PreviewChange change, bool wasUpdated);

/// " (12 KB)": what stands behind the file's name.
std::string SizeBehindName(const PreviewParcel& parcel);

/// The row of the catalogue, if it still is the file that the visible list shows under this name, of this
/// carrier.
const MirrorRow* RowToView(const Catalogue& catalogue, std::size_t index, const Path& carrier,
                           std::string_view storedName);

}  // namespace tarnel
