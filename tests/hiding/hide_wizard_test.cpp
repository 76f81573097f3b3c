#include "hiding/hide_wizard.h"

#include <gtest/gtest.h>

#include "hiding/questions.h"
#include "tests/carrier/carrier_bench.h"

namespace tarnel::test {
namespace {

class SilentSelectionScreen : public Scripted<SelectionScreen> {
  void ShowAdded(const Path&, std::size_t) override {}
};

/// "docs/" of a folder, "a.txt" of a file.
class ExplorerTest : public testing::Test {
 protected:
  ExplorerTest() {
    folder.Put("b.txt", "12345");
    folder.Put("A.png", "1");
    folder.Put("short.LNK", "");
    folder.Put("docs/old/deep.txt", "x");
    folder.Put("docs/c.txt", "x");
    Show(folder.Where() / "");
  }
  void Show(const Path& path) {
    list.Show(path, ExplorerList::Force::Yes,
              {.listChildren = [this] { return std::vector<ExplorerRow>{Docs()}; },
               .changed = [] {},
               .dialogue = person});
  }
  ExplorerRow Docs() const {
    const Path path = folder / "docs" / "";
    return {.key = path, .text = "docs", .tag = "*Folder*" + path.native(), .image = 0};
  }
  std::string Names() const {
    std::string names;
    for (const ExplorerRow& row : list.Rows())
      names += row.text + (row.IsFolder() ? "/ " : " ");
    return names;
  }
  HideSource Source(LastFocus focus, std::vector<std::size_t> selected) const {
    return {.LastFocusHwnd = focus,
            .treePath = folder.Where() / "",
            .rows = list.Rows(),
            .selected = std::move(selected)};
  }

  TempFolder folder;
  PosixFiles files;
  Scripted<> person;
  ExplorerList list{files, [](const std::string& name) { return name == "b.txt" ? "A" : "B"; }};
};

}  // namespace

TEST_F(ExplorerTest, ListsFoldersAndFilesButNoShortcuts) {
  EXPECT_EQ(Names(), "docs/ A.png b.txt ");
  EXPECT_EQ(ExplorerSize(list.Rows().at(2)), "0");
  EXPECT_EQ(ExplorerSize(list.Rows().at(0)), "");
  folder.Put("new.txt", "");
  EXPECT_TRUE(list.FileCreated(folder / "new.txt"));
  EXPECT_FALSE(list.FileCreated(folder / "docs/c.txt"));
  EXPECT_TRUE(list.FileRenamed(folder / "new.txt", folder / "newer.txt"));
  EXPECT_TRUE(list.FileRemoved(folder / "b.txt"));
  EXPECT_EQ(Names(), "docs/ A.png newer.txt ");
}

TEST_F(ExplorerTest, AnotherFolderThatIsWantedMeanwhileIsListedInstead) {
  person.script.onYield = [this](std::size_t yield) {
    if (yield == 2) Show(folder / "docs" / "");
  };
  Show(folder.Where() / "");
  EXPECT_EQ(list.CurrentFolder(), folder / "docs" / "");
  EXPECT_EQ(Names(), "docs/ c.txt ");
  EXPECT_FALSE(list.ListFilling());
}

TEST_F(ExplorerTest, SortingBySizeOrDateMakesFoldersNoneUntilListedAnew) {
  const struct {
    ExplorerColumn column;
    const char* names;
  } clicks[] = {
      {ExplorerColumn::File, "A.png b.txt docs/ "}, {ExplorerColumn::File, "docs/ b.txt A.png "},
      {ExplorerColumn::Type, "docs/ b.txt A.png "}, {ExplorerColumn::Size, "docs A.png b.txt "},
      {ExplorerColumn::Size, "b.txt A.png docs "},
  };
  for (const auto& [column, names] : clicks) {
    list.ColumnClick(column);
    EXPECT_EQ(Names(), names);
  }
  SilentSelectionScreen screen;
  Selection selection(files, screen);
  Collect(Source(LastFocus::ExplorerFile, {2}), selection, screen);
  EXPECT_TRUE(selection.Rows().empty());
  EXPECT_TRUE(selection.Passed().empty());
  Show(folder.Where() / "");
  EXPECT_EQ(Names(), "docs/ A.png b.txt ");
}

TEST_F(ExplorerTest, ARenameNeverReplacesAndRefusesSomeCharacters) {
  using enum ExplorerList::Renamed;
  EXPECT_EQ(list.Rename(1, "", folder.Where()), Nothing);
  EXPECT_EQ(list.Rename(1, "A.png", folder.Where()), Nothing);
  EXPECT_EQ(list.Rename(1, "a?b", folder.Where()), BadName);
  EXPECT_THROW(list.Rename(1, "b.txt", folder.Where()), Error);
  EXPECT_EQ(Names(), "docs/ A.png b.txt ");
  EXPECT_EQ(list.Rename(0, "papers", folder.Where()), Done);
  EXPECT_EQ(list.Rows().at(0).FolderPath(), folder / "papers" / "");
  EXPECT_TRUE(std::filesystem::exists(folder / "papers/c.txt"));
  EXPECT_EQ(list.Rename(2, "c.txt", folder.Where()), Done);
  EXPECT_TRUE(list.FileRemoved(folder / "c.txt"));
}

TEST_F(ExplorerTest, WhatWasTouchedLastIsCollected) {
  const std::string name = folder.Where().filename();
  const struct {
    LastFocus focus;
    std::vector<std::size_t> selected;
    Strings rows;
    long folders;
    std::size_t chosen;
  } cases[] = {
      {LastFocus::ExplorerFile, {0, 2}, {"b.txt in ", "deep.txt in docs\\old", "c.txt in docs"}, 3, 2},
      {LastFocus::ExplorerFile, {}, {}, 0, 0},
      {LastFocus::None, {1}, {}, 0, 0},
      {LastFocus::Tree,
       {1},
       {"deep.txt in " + name + "\\docs\\old", "c.txt in " + name + "\\docs", "short.LNK in " + name,
        "b.txt in " + name, "A.png in " + name},
       5,
       3},
  };
  for (const auto& [focus, selected, rows, folders, chosen] : cases) {
    SilentSelectionScreen screen;
    Selection selection(files, screen);
    const HideSource source = Source(focus, selected);
    Collect(source, selection, screen);
    Strings found;
    for (const HideRow& row : selection.Rows())
      found.push_back(row.name + " in " + row.folder);
    EXPECT_EQ(found, rows);
    EXPECT_EQ(selection.FoldersCounted(), folders);
    EXPECT_EQ(ChosenBy(source).size(), chosen);
  }
}

TEST_F(ExplorerTest, TheCarrierIsPassedOverAndACollectingCountsFoldersAnew) {
  SilentSelectionScreen screen;
  Selection selection(files, screen);
  selection.KeepOut(folder / "docs/../b.txt");
  Collect(Source(LastFocus::ExplorerFile, {0, 2}), selection, screen);
  ASSERT_EQ(selection.Passed().size(), 1U);
  EXPECT_NE(PassedOverReport(selection.Passed())->list.at(0).find("b.txt is the carrier"), std::string::npos);
  for (const char* companion : {"b.txt.bak", "b.txt.tmp"})
    selection.AddFile(folder.Put(companion, ""), "");
  EXPECT_EQ(selection.Passed().size(), 3U);
  selection.Begin(Selection::Before::Kept);
  EXPECT_EQ(selection.Rows().size(), 2U);
  EXPECT_EQ(selection.FoldersCounted(), 0);
  selection.Begin(Selection::Before::Dropped);
  EXPECT_EQ(PanelsOf(selection.Rows().size(), selection.FoldersCounted(), selection.TotalSelectedBytes()),
            (SelectionPanels{"Files: 0", "Subfolders: 0", "Total Size: 0 KB"}));
}

TEST(HideWizard, EachStepSaysWhatCanBePressed) {
  using Controls = HideWizard::Controls;
  const Controls choosing{.Cmd_Hide = true, .Cmd_Cancel1 = true};
  const Controls collecting{.Cmd_StopSearch = true, .Cmd_Cancel = true};
  const Controls files{.Cmd_Addmore = true, .Cmd_Back = true, .Cmd_Next = true, .Cmd_Cancel = true};
  HideWizard wizard;
  const auto now = [&wizard] { return wizard.CanPress(3, false, false); };
  EXPECT_EQ(now(), choosing);
  for (const auto& closed :
       {wizard.CanPress(0, false, false), wizard.CanPress(3, true, false), wizard.CanPress(3, false, true)})
    EXPECT_EQ(closed, Controls{.Cmd_Cancel1 = true});
  wizard.BeginCollecting();
  EXPECT_EQ(now(), collecting);
  wizard.PressStop();
  EXPECT_TRUE(wizard.StopSelecting());
  wizard.EndCollecting();
  EXPECT_EQ(now(), files);
  wizard.PressAddmore();
  EXPECT_TRUE(wizard.AddingMore());
  EXPECT_EQ(now(), choosing);
  wizard.BeginCollecting();
  EXPECT_FALSE(wizard.StopSelecting());
  wizard.EndCollecting();
  wizard.PressBack();
  EXPECT_FALSE(wizard.AddingMore());
  wizard.BeginHiding();
  EXPECT_EQ(now(), Controls{.Cmd_Cancel = true});
  wizard.BeginLoading();
  EXPECT_EQ(now(), Controls{});
}

TEST(HideReport, SaysWhichFileIsIntactAndWhatWasLeft) {
  HideResult result;
  EXPECT_FALSE(HideReport(result, "/c.png"));
  result.ending = HideEnding::Cancelled;
  EXPECT_FALSE(HideReport(result, "/c.png"));
  result.ending = HideEnding::Aborted;
  result.backup = "/c.png.bak";
  EXPECT_EQ(HideReport(result, "/c.png")->list, Strings{"/c.png.bak"});
  EXPECT_NE(HideReport(result, "/c.png")->text.find("may be damaged"), std::string::npos);
  result = {};
  result.leftOut = {"/a"};
  result.originalsLeft = {"/b"};
  EXPECT_EQ(HideReport(result, "/c.png")->list, (Strings{"not hidden: /a", "original still there: /b"}));
  result.ending = HideEnding::NoSpace;
  for (const auto& [hidden, words] : {std::pair(0U, "0 files are hidden"), {1U, "1 file is hidden"}}) {
    result.hidden = hidden;
    EXPECT_NE(HideReport(result, "/c.png")->text.find(words), std::string::npos);
  }
}

}  // namespace tarnel::test
