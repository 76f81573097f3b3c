#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"
#include "carrier/reading.h"
#include "crypto/compression.h"

namespace tarnel {

enum class HideStage {
  CreateBackup,
  Compressing,
  Encrypting,
  Hiding,
  RestoreCarrier,
  DeleteBackup,
  Deleting,
  Loading
};

/// "Create backup file" and so on; the screen puts "..." behind it.
const char* StageText(HideStage stage);

enum class OriginalStep { Comparing, Removing };

/// What a hide shows while it runs.
class HideScreen : public ReadingScreen {
 public:
  virtual void ShowStage(HideStage stage) = 0;
  /// File `number` of `count` begins. Every stage until the next call belongs to it.
  virtual void ShowFile(std::size_t number, std::size_t count, const Path& source, Length size) = 0;
  /// The row is done and can be greyed.
  virtual void FileDone(std::size_t number) = 0;
  virtual void ShowProgress(Length value, Length maximum) = 0;
  /// While the backup is made: `copied` of `size` bytes of the carrier.
  virtual void ShowBackup(Length copied, Length size) = 0;
  /// While originals are being dealt with: number `number` of `count` is being compared with its entry, or is
  /// about to go. A path with number 0 belongs to none of them: a chosen folder.
  virtual void ShowOriginal(OriginalStep step, const Path& original, std::size_t number,
                            std::size_t count) = 0;
};

/// One row of the selection.
struct HideRow {
  Path source;         ///< full path; a symbolic link to a file stands for the file
  std::string name;    ///< file name, platform bytes
  std::string folder;  ///< the row's folder text: stored text, parts joined by "\", as selection makes it
  Length size = 0;     ///< when it was collected; for the eye only
};

enum class Originals { Keep, Trash, Destroy };

struct HideRequest {
  std::vector<HideRow> rows;
  Length totalBytes = 0;  ///< sum of the rows' sizes: the first maximum of the progress bar
  bool compress = false;
  int compressionLevel = kPresetCompressionLevel;
  bool saveFolders = true;
  bool writeProtect = false;
  bool keepTimes = false;  ///< the sources' times of last change go into the records
  Originals originals = Originals::Keep;
  /// What to remove beside the rows: the chosen files and folders of the last selection. Trash takes these
  /// and only these; Destroy removes those of them that are folders without direct files.
  std::vector<Path> chosen;
};

enum class HideEnding {
  Done,       ///< all entries stand, or all but those in `leftOut`
  Cancelled,  ///< the carrier is as it was before
  NoSpace,    ///< refused; the entries finished before stay, all originals stay
  TooLarge,   ///< the carrier would reach 2 GiB; it is as it was before
  Aborted,    ///< at an error: nothing restored; see `isComplete` and `backup`
};

struct HideResult {
  HideEnding ending = HideEnding::Done;
  std::size_t hidden = 0;     ///< entries that stand in the carrier now
  std::vector<Path> leftOut;  ///< rows passed over by Ignore; their originals stay
  /// Originals that should have gone and are still there; with Trash also those that were never chosen to go.
  std::vector<Path> originalsLeft;
  /// All that is hidden is on the medium, and what was left to do is no matter of the carrier's contents: its
  /// mode, the backup's removal, the originals, of which some may be gone. An Abort then undoes nothing, and
  /// the old carrier is no way back any more.
  bool isComplete = false;
  Path backup;          ///< set where the old carrier was left behind as the way back: never if `isComplete`
  Path needlessBackup;  ///< set where it could not be removed though the carrier has no need of it
};

/// Hides the rows in the current hideout (reading.current): backup beside the carrier, one entry for each row
/// in order, carrier synced before the backup goes, then the originals, then a reload. Refuses with an Error
/// before a byte is written: a carrier that is no regular file, a row that is the carrier itself or its
/// ".bak", a carrier that another process has locked. The carrier is unlocked before the reload.
/// Cancel is looked at while the backup is made, before each file and before each full block of a copy; the
/// carrier then becomes byte for byte what it was.
HideResult RunHide(const HideRequest& request, Reading& reading, HideScreen& screen);

}  // namespace tarnel
