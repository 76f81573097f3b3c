#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/dialogue.h"
#include "base/files.h"
#include "carrier/catalogue.h"
#include "carrier/reading.h"

namespace tarnel {

/// What viewing and updating know of the entry. An update moves the entry, and gives the parcel with which
/// the next update finds it.
struct PreviewParcel {
  WipedText ViewFileName;      ///< stored text, as are the next three and the mode
  std::string ViewPlainSize;   ///< plain digits
  std::string ViewCompressed;  ///< "0" if stored as it is
  std::string ViewAttr;
  WipedText ViewFolder;
  std::string ViewMode;   ///< empty where the attributes say all
  std::string ViewMtime;  ///< empty where times are not kept
  std::string ViewSeal;   ///< names the payload; empty in a record that doesn't
  Position ViewStart;
  Length ViewSize = 0;  ///< of the payload
  EntryTail ViewTail;
};

PreviewParcel ParcelOf(const MirrorRow& row);

/// What the name of every PreviewFolder begins with.
inline constexpr std::string_view kPreviewPrefix = "tarnel-view-";

/// What viewing shows, and what it needs of the desktop.
class ViewScreen : public virtual Dialogue {
 public:
  virtual void ShowExtractingTo(const Path& previewFile) = 0;
  virtual void ShowProgress(Length value, Length maximum) = 0;
  /// Opens a file or folder with the application that the desktop has for it, and lets the person choose one
  /// where none is known. Throws Error if that fails.
  virtual void OpenWithDesktop(const Path& path) = 0;
};

/// While it lives, no other view, update or return from a view begins.
class BusyView {
 public:
  explicit BusyView(ReadingGuards& guards) : m_guards(guards) { m_guards.ViewBusy = true; }
  BusyView(const BusyView&) = delete;
  BusyView& operator=(const BusyView&) = delete;
  ~BusyView() { m_guards.ViewBusy = false; }

 private:
  ReadingGuards& m_guards;
};

enum class ViewEnding {
  Shown,
  Cancelled,  ///< no plain byte is left; the empty PreviewFolder stays
  Aborted,    ///< at an error; neither file nor folder is left
  Busy,       ///< nothing was done: another view, an update or a return was running
};

struct ViewResult {
  ViewEnding ending = ViewEnding::Shown;
  Path PreviewFolder;  ///< new, in the system's temporary folder, for this user alone (0700)
  /// The plain file in it, 0600; its attributes play no part. Empty where none was made or none is left:
  /// where a Cancelled or Aborted view has one, it could not be destroyed, and the person has been told.
  Path PreviewFile;
  FileStat seen;  ///< of the file as its entry holds it; an update that was Done brings a newer one
  /// Locked as long as this or a copy lives, which says that the view is not over.
  std::shared_ptr<Folder> folder = nullptr;
};

enum class PreviewChange { None, Changed, Gone };

/// Whether the plain file differs from what its entry holds, by size and time. What can't be looked at counts
/// as Changed.
PreviewChange ChangeOf(const ViewResult& view, Files& files);

/// Extracts the entry of the current carrier into a folder of its own, then opens that folder and the file.
/// A name that would lead out of that folder is an Error BadFileName that is asked about as any other; no
/// file but the one made here is ever touched. Cancel is looked at behind each full block, and before
/// anything is opened with the desktop. What a cancelled or aborted view has written is overwritten in its
/// own length, so that a full disk doesn't stand against it, and removed.
ViewResult RunView(const PreviewParcel& parcel, Reading& reading, ViewScreen& screen);

enum class ViewReturn { Stay, Leave };

/// Asks whether to go back, saying so if the file has changed since the last update, and if so overwrites and
/// deletes the file of a view that was Shown, and removes its folder with all that the application has put
/// there. If the file has gone, the folder stays; whatever lies in it is offered for destruction. Leave is
/// also the answer where something could not be looked at or destroyed; the person has then been told. Stay
/// without a question while another view, an update or a return runs.
ViewReturn ReturnFromView(const ViewResult& view, Reading& reading, Dialogue& dialogue);

}  // namespace tarnel
