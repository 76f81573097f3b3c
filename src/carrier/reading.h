#pragma once

#include <cstddef>
#include <string>

#include "base/dialogue.h"
#include "base/files.h"
#include "carrier/catalogue.h"
#include "carrier/chain.h"

namespace tarnel {

/// The guards that keep one thread's operations from running into each other while events run.
struct ReadingGuards {
  bool ReadingBusy = false;
  bool AbortReadingFlag = false;
  bool TreeClickBlocked = false;
  bool SearchBusy = false;
  bool SearchAbort = false;
  bool ViewBusy = false;  ///< a view, an update or the return from a view runs
};

/// What a person's cancel comes to for those who look at a flag of the guards: to be called whenever the
/// person may have asked for it, which is behind each yield and question.
inline void CarryCancel(const Dialogue& person, bool& flag) {
  if (person.CancelRequested()) flag = true;
}

/// What the program works on: the carrier, the hideout and the key that commands use.
struct CurrentHideout {
  Path CurrentCarrierPath;
  std::string CurrentCarrierName;  ///< stored text
  WipedText CurrentHideoutTitle;   ///< stored text
  Algorithm CurrentAlgorithmId = Algorithm::Rijndael256;
  Key CurrentPassword;
  std::string SecondKey;
};

/// The hideout of `key` as the current one.
CurrentHideout CurrentOf(const HideoutKey& key);

/// What reading shows. The walk's questions come through the Dialogue.
class ReadingScreen : public virtual Dialogue {
 public:
  /// After at least one file was read: `passed` of `size` bytes are behind the walk.
  virtual void ShowReading(Length passed, Length size) = 0;

  /// A hideout was loaded: its root is to be selected and clicked, and the status bar shows `files` and the
  /// algorithm.
  virtual void HideoutLoaded(TreeNode& root, std::size_t files) = 0;

  /// Reading was aborted by AbortReadingFlag: a hideout of which something had been read is closed. The
  /// visible list is to be emptied and the first node, if there is one, to be clicked.
  virtual void HideoutGone() = 0;

  /// The hideout was read, or sought and not found, and this is wrong with its carrier. Not called for a
  /// forced reload, whose person knows already.
  virtual void ShowFaults(const ChainFaults& faults);
};

/// What every operation that reads or reloads a hideout works with.
struct Reading {
  Files& files;
  Catalogue& catalogue;
  ReadingGuards& guards;
  CurrentHideout& current;
};

}  // namespace tarnel
