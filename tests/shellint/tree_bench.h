#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "shellint/directory_tree.h"
#include "shellint/inotify_watch.h"
#include "tests/support/faulty_files.h"
#include "tests/support/scripted_dialogue.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {

/// What a list model would hold that believes all it is told.
class MirroredRows : public TreeRows {
 public:
  void RowsComing(const DirectoryNode& parent, std::size_t first, std::size_t count) override {
    m_parent = &parent, m_first = first, m_count = count;
  }
  void RowsCame() override {
    for (std::size_t row = m_first; row < m_first + m_count; ++row) {
      const DirectoryNode* const node = m_parent->children[row].get();
      Rows().insert(Rows().begin() + Offset(row), node);
      m_rows[node].clear();  // of one that was at its address before
    }
  }
  void RowsGoing(const DirectoryNode& parent, std::size_t first, std::size_t count) override {
    RowsComing(parent, first, count);
  }
  void RowsGone() override {
    Rows().erase(Rows().begin() + Offset(m_first), Rows().begin() + Offset(m_first + m_count));
  }
  void RowMoving(const DirectoryNode& parent, std::size_t from, std::size_t to) override {
    EXPECT_TRUE(to < from || to > from + 1) << "no move at all";
    RowsComing(parent, from, to);
  }
  void RowMoved() override {
    const DirectoryNode* const node = Rows()[m_first];
    Rows().insert(Rows().begin() + Offset(m_count), node);
    Rows().erase(Rows().begin() + Offset(m_first < m_count ? m_first : m_first + 1));
  }
  void RowChanged(const DirectoryNode&) override {}

  bool Agrees(const DirectoryNode& node) {
    const std::vector<const DirectoryNode*>& rows = m_rows[&node];
    return std::equal(rows.begin(), rows.end(), node.children.begin(), node.children.end(),
                      [](const auto* row, const auto& child) { return row == child.get(); }) &&
           std::all_of(node.children.begin(), node.children.end(),
                       [&](const auto& child) { return Agrees(*child); });
  }

 private:
  static std::ptrdiff_t Offset(std::size_t row) { return static_cast<std::ptrdiff_t>(row); }
  std::vector<const DirectoryNode*>& Rows() { return m_rows[m_parent]; }

  std::map<const DirectoryNode*, std::vector<const DirectoryNode*>> m_rows;
  const DirectoryNode* m_parent = nullptr;
  std::size_t m_first = 0, m_count = 0;
};

/// Real folders, with the user's places and one drive in a temporary folder: "home/Desktop", "home/Documents"
/// and "" itself.
class TreeBench : public testing::Test, public Places, public FolderWatch, public DirectoryTreeEvents {
 protected:
  TreeBench() {
    for (const char* folder : {"home/Desktop/letters/old", "home/Desktop/Zoo", "home/Documents"})
      Make(folder);
    survey.drives = {{.root = temp.Where(), .kind = DriveKind::Fixed, .label = "DISK"}};
  }

  void Make(const std::string& folder) { std::filesystem::create_directories(temp / folder); }

  /// All that waits to be done, and what happened outside until now.
  void Settle() {
    tree.TakeChanges();
    while (tree.Continue()) {
    }
  }
  DirectoryNode* Open(const std::string& path) {
    DirectoryNode* const node =
        tree.CreateDirNode(temp / path, DirectoryTree::Expand::Yes, DirectoryTree::Missing::Refuse);
    Settle();
    return node;
  }

  DirectoryNode& Root(std::size_t row) { return *tree.Top().children[row]; }

  Path Desktop() override { return temp / "home/Desktop"; }
  Path Documents() override { return temp / "home/Documents"; }
  DriveSurvey Drives() override { return survey; }
  int DrivesHandle() const override { return -1; }

  std::optional<WatchId> Watch(const Path& folder) override {
    if (watchesLeft == 0) return std::nullopt;
    --watchesLeft;
    return inotify.Watch(folder);
  }
  void Unwatch(WatchId folder) override { inotify.Unwatch(folder); }
  std::vector<FolderChange> Take() override { return inotify.Take(); }
  int Handle() const override { return inotify.Handle(); }

  void OnDirClick(const Path& path, bool flag) override { Note(flag ? "click" : "click instead", path); }
  void OnDirDblClick(const Path& path) override { Note("double click", path); }
  void OnDirCreate(const Path& path) override { Note("create", path); }
  void OnDirRename(const Path& from, const Path& to) override { Note("rename", from), Note("to", to); }
  void OnDirRemove(const Path& path) override { Note("remove", path); }
  void OnFileRemove(const Path& path) override { Note("file remove", path); }
  void OnFileCreate(const Path& path) override { Note("file create", path); }
  void OnFileRename(const Path& from, const Path& to) override { Note("file rename", from), Note("to", to); }
  void SelectionMoved() override {}
  void ShowExpanded(const DirectoryNode& node) override {
    tree.NodeExpanded(const_cast<DirectoryNode&>(node));
  }
  void EditLabel(const DirectoryNode& node) override { edited = node.name; }

  /// The events since the last call.
  std::vector<std::string> Told() { return std::exchange(told, {}); }

  TempFolder temp;
  PosixFiles posix;
  FaultyFiles files{posix};
  Scripted<> person;
  InotifyWatch inotify;
  MirroredRows rows;
  DriveSurvey survey;
  std::size_t watchesLeft = 1000;
  std::string edited;
  DirectoryTree tree{
      {.files = files, .places = *this, .watch = *this, .dialogue = person, .rows = rows, .events = *this}};

 private:
  void Note(const std::string& event, const Path& path) {
    told.push_back(event + " " + path.native().substr(temp.Where().native().size() + 1));
  }

  std::vector<std::string> told;
};

}  // namespace tarnel::test
