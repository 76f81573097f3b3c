#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/file_list.h"
#include "app/file_types.h"
#include "app/program_lock.h"
#include "app/refresh.h"
#include "app/settings.h"
#include "base/files.h"
#include "carrier/catalogue.h"
#include "carrier/reading.h"
#include "retrieval/preview.h"

namespace tarnel {

/// Which of the two views last had the user's attention.
enum class Attention { DirView, FileList };

/// What the session tells the window that shows it.
class SessionView {
 public:
  virtual ~SessionView() = default;

  /// Nodes came or went, or another one is selected.
  virtual void TreeChanged() = 0;
  /// The rows, their order or their columns changed.
  virtual void FileListChanged() = 0;
  /// The settings were loaded again. Where they changed a column, FileListChanged has come before.
  virtual void SettingsChanged() = 0;
};

/// The state of the running program, and what the two views do with it. One object for the whole process.
///
/// A hideout is open as long as its root node stands in the catalogue; nothing of a carrier is held open
/// between two commands.
class Session {
 public:
  /// Reads the settings. `typeTextOf` names the type of a file name and touches no file.
  Session(Files& files, SettingsFile& settingsFile,
          std::function<std::string(const std::string&)> typeTextOf);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Files& files;
  SettingsFile& settingsFile;
  Settings settings;
  Catalogue catalogue;
  FileTypes types;
  ReadingGuards guards;
  CurrentHideout current;
  FileList fileList{types};
  ProgramLock lock;
  Attention ActiveListHwnd = Attention::DirView;
  bool HideOpenRequested = false;  ///< opening is on behalf of hiding, and starts with a new hideout
  Path CarrierDialogPath;          ///< what the open dialogs chose last

  PreviewParcel previewParcel;   ///< of the entry that is being viewed, as it stands in the carrier now
  std::size_t ViewRowIndex = 0;  ///< the row of the catalogue that it was taken from

  std::string filesPanel;      ///< status text of panel "Files"
  std::string algorithmPanel;  ///< status text of panel "Algorithm"

  /// What reads and reloads hideouts works with.
  Reading MakeReading() { return {files, catalogue, guards, current}; }

  /// Null for none.
  void SetView(SessionView* view) { m_view = view; }

  /// The node that was selected, as long as its hideout is open and has its folder; else null. It is looked
  /// up by what it stands for, so it never is a node that is no more.
  TreeNode* SelectedNode() const;

  /// Makes the node's hideout current and shows its folder. Nothing while TreeClickBlocked.
  void DirView_NodeClick(TreeNode& node);

  /// Reading has loaded a hideout with `fileCount` files.
  void HideoutLoaded(TreeNode& root, std::size_t fileCount);

  /// A reload was aborted and took the hideout away.
  void HideoutGone();

  /// A hideout without files was made; `algorithmName` as the list of algorithms has it.
  void HideoutCreated(TreeNode& root, std::string_view algorithmName);

  /// The last file of the current hideout has left the catalogue: nothing is listed, "0 File(s) ", and its
  /// root is selected if it still stands.
  void HideoutEmptied();

  /// To be called after an operation of our own that may have left the current carrier with its old bytes and
  /// without a reading, as a cancelled one does: what it did to the carrier's mode is no change by others.
  void CarrierKeptItsBytes();

  /// Puts both views in line with the catalogue: a selected node that is no more is let go and nothing
  /// listed; the list of one that stays is made anew unless its rows are still those of the catalogue.
  /// Whoever let the catalogue be read or rows leave it calls this at the end, whatever that end was.
  void SettleTree();

  /// Closes the current carrier and makes the next hideout current. The current values stay where none is
  /// left.
  void CloseCarrier();

  /// The node that a double click on a folder row opens: the first in the tree with the row's name and
  /// carrier.
  TreeNode* NodeOfFolderRow(const FileListRow& row) const;

  void ColumnClick(Column column);

  /// Keeps one value for the next start. In silence if that fails: it only makes the start handier.
  void Remember(std::string_view sectionName, std::string_view key, std::string value);

  /// Loads the settings again and puts the columns on the file list. Rows stay selected unless a column came
  /// or went.
  void ReloadSettings();

  std::size_t FilesOf(const Path& carrier) const { return catalogue.RowsOf(carrier).size(); }

  /// What is selected in the visible list. Kept by the view.
  struct RowSelection {
    std::vector<std::size_t> rows;       ///< ascending, by their place in fileList.Rows()
    std::optional<std::size_t> current;  ///< the row of the last click or key, if it is selected
  };
  RowSelection rowSelection;
  bool IsFileRowSelected() const;
  RefreshResult RefreshNow() const;

 private:
  void Select(const TreeNode& node);
  void KeepAsSelected(const TreeNode& node);
  void ShowNothing();
  void TellTree();
  void TellList();

  SessionView* m_view = nullptr;
  std::shared_ptr<const HideoutKey> m_selectedHideout;  ///< kept, so that no other one gets its address
  std::vector<WipedText> m_selectedFolder;              ///< the texts from the root's child down
};

}  // namespace tarnel
