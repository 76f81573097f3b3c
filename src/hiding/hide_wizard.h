#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/dialogue.h"
#include "base/files.h"
#include "hiding/explorer_list.h"
#include "hiding/run_hide.h"
#include "hiding/selection.h"

namespace tarnel {

/// What the person touched last, by which it is decided what is hidden: the selected rows, or the folder.
enum class LastFocus { None, Tree, ExplorerFile };

/// Where collecting begins, as the first step showed it.
struct HideSource {
  LastFocus LastFocusHwnd = LastFocus::None;
  Path treePath;                      ///< `Tree.Path`, with "/" at its end, or "MyComputer"
  std::vector<ExplorerRow> rows;      ///< all of `ExplorerFile`
  std::vector<std::size_t> selected;  ///< of these, ascending

  bool IsMyComputer() const { return treePath == kMyComputer; }
};

/// Adds to the selection what the source stands for.
void Collect(const HideSource& source, Selection& selection, const Dialogue& dialogue);

/// What is to go beside the hidden files where originals go: `Tree.Path` and the text of each row that passes
/// the origin test, which are the selected rows if the list was the source, and all if the tree was.
std::vector<Path> ChosenBy(const HideSource& source);

/// The three steps of `FrmHide`, and what can be pressed in each.
class HideWizard {
 public:
  enum class Step { Explorer, Collecting, Files, Hiding };

  struct Controls {
    bool Cmd_Hide = false, Cmd_Cancel1 = false, Cmd_StopSearch = false;
    bool Cmd_Addmore = false, Cmd_Back = false, Cmd_Next = false, Cmd_Cancel = false;

    bool operator==(const Controls&) const = default;
  };

  Step CurrentStep() const { return m_step; }
  Controls CanPress(std::size_t explorerRows, bool isFilling, bool isMyComputer) const;

  bool AddingMore() const { return m_isAddingMore; }
  bool StopSelecting() const { return m_mustStop; }
  bool Hiding() const { return m_step == Step::Hiding; }

  /// `Cmd_Hide`, `Cmd_StopSearch`, and the end of the collecting however it came.
  void BeginCollecting();
  void PressStop();
  void EndCollecting();

  void PressAddmore();
  void PressBack();

  /// `Cmd_Next` with rows; EndHiding where nothing was begun.
  void BeginHiding();
  void EndHiding() { m_step = Step::Files; }
  /// The carrier is being read anew: nothing can be cancelled any more.
  void BeginLoading() { m_isLoading = true; }

 private:
  Step m_step = Step::Explorer;
  bool m_isAddingMore = false;
  bool m_mustStop = false;
  bool m_isLoading = false;
};

/// "Files: 3", "Subfolders: 2", "Total Size: 1,024 KB".
struct SelectionPanels {
  std::string files, subfolders, totalSize;

  bool operator==(const SelectionPanels&) const = default;
};
SelectionPanels PanelsOf(std::size_t rows, long foldersCounted, Length totalBytes);

}  // namespace tarnel
