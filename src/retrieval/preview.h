#pragma once

#include <functional>
#include <string>

#include "base/dialogue.h"
#include "base/files.h"
#include "carrier/catalogue.h"
#include "carrier/load_hideout.h"

namespace tarnel {

/// What viewing and updating know of the entry. An update moves the entry, and changes the parcel with it, so
/// that the next update finds it.
struct PreviewParcel {
  WipedText ViewFileName;      ///< stored text, as are the next three and the mode
  std::string ViewPlainSize;   ///< plain digits
  std::string ViewCompressed;  ///< "0" if stored as it is
  std::string ViewAttr;
  WipedText ViewFolder;
  std::string ViewMode;  ///< empty where the attributes say all
  Position ViewStart;
  Length ViewSize = 0;   ///< of the payload
  std::string ViewTail;  ///< encrypted record and trailer as stored
};

PreviewParcel ParcelOf(const MirrorRow& row);

/// What viewing shows.
class ViewScreen : public virtual Dialogue {
 public:
  virtual void ShowExtractingTo(const Path& previewFile) = 0;
  virtual void ShowProgress(Length value, Length maximum) = 0;
};

/// Opens a file or folder with the application that the desktop has for it, and lets the person choose one
/// where none is known. Throws Error if that fails.
using ShellOpen = std::function<void(const Path&)>;

enum class ViewEnding {
  Shown,
  Cancelled,  ///< no plain byte is left; the empty PreviewFolder stays
  Aborted,    ///< at an error; neither file nor folder is left
};

struct ViewResult {
  ViewEnding ending = ViewEnding::Shown;
  Path PreviewFolder;  ///< new, in the system's temporary folder, for this user alone (0700)
  Path PreviewFile;    ///< the plain file in it, 0600; its attributes play no part
};

/// Extracts the entry of the current carrier into a folder of its own, then opens that folder and the file.
/// Cancel is looked at behind each full block.
ViewResult RunView(const PreviewParcel& parcel, const Reading& reading, ViewScreen& screen,
                   const ShellOpen& shellOpen);

enum class ViewReturn { Stay, Leave };

/// Asks whether to go back, and if so overwrites and deletes the file, and removes its folder with all that
/// the application has put there. If the file has gone, the folder stays. Leave is also the answer where
/// something could not be destroyed; the person has then been told.
ViewReturn ReturnFromView(const Path& previewFile, const Path& previewFolder, Dialogue& dialogue,
                          Files& files);

}  // namespace tarnel
