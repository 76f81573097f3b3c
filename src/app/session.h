#pragma once

#include <functional>
#include <string>

#include "app/file_list.h"
#include "app/program_lock.h"
#include "app/refresh.h"
#include "app/settings.h"
#include "base/files.h"
#include "carrier/catalogue.h"
#include "carrier/load_hideout.h"

namespace tarnel {

/// Which of the two views last had the user's attention.
enum class Attention { DirView, FileList };

/// What the session tells the window that shows it.
class SessionView {
 public:
  virtual ~SessionView() = default;

  /// Nodes came or went, or another one is selected.
  virtual void TreeChanged() = 0;
  /// The rows or their order changed.
  virtual void FileListChanged() = 0;
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
  FileList fileList;
  ProgramLock lock;
  Attention ActiveListHwnd = Attention::DirView;
  bool HideOpenRequested = false;  ///< opening is on behalf of hiding, and starts with a new hideout
  Path CarrierDialogPath;          ///< what the open dialogs chose last

  std::string filesPanel;      ///< status text of panel "Files"
  std::string algorithmPanel;  ///< status text of panel "Algorithm"

  /// What reads and reloads hideouts works with.
  Reading MakeReading() { return {files, catalogue, types, guards, current}; }

  /// Null for none.
  void SetView(SessionView* view) { m_view = view; }

  TreeNode* SelectedNode() const { return m_selected; }

  /// Makes the node's hideout current and shows its folder. Nothing while TreeClickBlocked.
  void DirView_NodeClick(TreeNode& node);

  /// Reading has loaded a hideout with `fileCount` files.
  void HideoutLoaded(TreeNode& root, std::size_t fileCount);

  /// A reload was aborted and took the hideout away.
  void HideoutGone();

  /// A hideout without files was made; `algorithmName` as the list of algorithms has it.
  void HideoutCreated(TreeNode& root, std::string_view algorithmName);

  /// Tells the view that nodes may have changed, and lets go of a selected node that is no more. Whoever let
  /// the catalogue be read calls it when the reading has ended, however it ended.
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

  /// Loads the settings again and puts the columns on the file list.
  void ReloadSettings();

  std::size_t FilesOf(const Path& carrier) const { return catalogue.RowsOf(carrier).size(); }

  bool isFileRowSelected = false;  ///< kept by the view; see RefreshInput
  RefreshResult RefreshNow() const;

 private:
  void Select(TreeNode* node);
  void ShowNothing();
  void TellTree();
  void TellList();

  SessionView* m_view = nullptr;
  TreeNode* m_selected = nullptr;
};

}  // namespace tarnel
