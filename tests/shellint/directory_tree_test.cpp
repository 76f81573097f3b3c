#include <random>

#include "tests/shellint/tree_bench.h"

namespace tarnel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Road = DirectoryTree::MenuRoad;

class DirectoryTreeTest : public TreeBench {
 protected:
  DirectoryTreeTest() {
    tree.Initialize();
    Settle();
  }

  std::string DescriptionOf(const Path& path) {
    try {
      tree.CreateDirNode(path, DirectoryTree::Expand::No, DirectoryTree::Missing::Refuse);
    } catch (const Error& error) {
      return std::to_string(static_cast<int>(error.Number()) & 15) + " " + error.Description();
    }
    return "nothing thrown";
  }
  DirectoryNode& Drive() { return *Root(2).children[0]; }
};

TEST_F(DirectoryTreeTest, ShowsItsRootsAndIsInitializedOnce) {
  const std::string here = temp.Where().native() + "/";
  EXPECT_EQ(Root(0).Key() + "|" + Root(0).Text(), "F" + here + "home/Desktop/|Desktop");
  EXPECT_EQ(Root(1).Key() + "|" + Root(1).Text(), "F" + here + "home/Documents/|My Documents");
  EXPECT_EQ(Root(2).Key() + "|" + Root(2).Text(), "VMyComputer|My Computer");
  EXPECT_EQ(Drive().Key() + "|" + Drive().Text(), "D" + here + "|DISK (" + temp.Where().native() + ")");
  EXPECT_EQ(Root(0).children[0]->Text() + Root(0).children[1]->Text(), "lettersZoo");
  try {
    tree.Initialize();
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_EQ(static_cast<unsigned>(error.Number()), 0x80040001U);
    EXPECT_EQ(error.Description(), "Tree already initialized.");
  }
  tree.Clear();
  EXPECT_EQ(tree.Path(), Path());
  tree.RefreshDrives();
  EXPECT_THAT(tree.Top().children, IsEmpty());
  tree.Initialize();
}

TEST_F(DirectoryTreeTest, APathIsShownUnderItsNearestRootElseTheDesktopIs) {
  tree.SetPath(temp / "home/Desktop/letters");
  EXPECT_EQ(tree.SelectedNode()->parent, &Root(0));
  EXPECT_EQ(tree.Path(), temp / "home/Desktop/letters/");
  tree.SetPath(temp / "home");
  EXPECT_EQ(tree.SelectedNode()->parent, &Drive());
  tree.SetPath(temp / "nowhere");
  tree.SetPath("");
  EXPECT_TRUE(tree.SelectNode(1) && tree.ClickNodeIndex(2));
  EXPECT_THAT(Told(), ElementsAre("click home/Desktop/letters/", "click home/", "click instead home/Desktop/",
                                  "click instead home/Desktop/", "click home/Desktop/letters/"));
  EXPECT_FALSE(tree.ClickNodeIndex(0) || tree.ClickNodeIndex(1000) || tree.SelectDir(temp / "nowhere"));
}

TEST_F(DirectoryTreeTest, WhatIsNotInTheTreeIsNamed) {
  EXPECT_EQ(DescriptionOf("relative"), "nothing thrown");
  EXPECT_EQ(DescriptionOf("/elsewhere"), "6 Specified drive doesn't exist in the tree.");
  EXPECT_EQ(DescriptionOf(temp / "no"),
            "7 Specified folder: \"" + (temp / "no").native() + "\" doesn't exist.");
  Make("new");
  EXPECT_EQ(DescriptionOf(temp / "new"),
            "7 Directory not loaded in tree: \"" + (temp / "new").native() + "\".");
  tree.CreateDirNode(temp / "new", DirectoryTree::Expand::No, DirectoryTree::Missing::Create);
  EXPECT_EQ(DescriptionOf(temp / "new"), "nothing thrown");
}

TEST_F(DirectoryTreeTest, TheMenuKnowsWhatANodeIs) {
  const auto menu = [&](const DirectoryNode* node, Road road) {
    const MenuItems items = tree.MenuFor(node, road);
    return std::to_string(items.mnuCreate) + std::to_string(items.mnuRename) +
           std::to_string(items.mnuDelete);
  };
  Open("home/Desktop/letters");
  DirectoryNode* const again = tree.SelectDir(temp / "home/Documents") ? tree.SelectedNode() : nullptr;
  const std::pair<const DirectoryNode*, const char*> nodes[] = {{nullptr, "000 000"},
                                                                {&Root(2), "000 000"},
                                                                {&Drive(), "000 100"},
                                                                {&Root(0), "100 100"},
                                                                {&Root(1), "100 100"},
                                                                {again, "100 100"},
                                                                {Root(0).children[0].get(), "111 111"}};
  for (const auto& [node, items] : nodes)
    EXPECT_EQ(menu(node, Road::Tree) + " " + menu(node, Road::PopupM), items)
        << (node ? node->Key() : "none");
}

TEST_F(DirectoryTreeTest, ANewFolderTakesTheNextFreeName) {
  temp.Put("home/Desktop/New Folder (0)", "a file");
  for (const char* name : {"New Folder", "New Folder (1)", "New Folder (2)"}) {
    tree.CreateFolder(Root(0));
    EXPECT_EQ(edited, name);
    EXPECT_EQ(tree.Path(), temp / "home/Desktop" / name / "");
    EXPECT_THAT(Told(), ElementsAre(std::string("create home/Desktop/") + name + "/"));
  }
  tree.Rename(*tree.SelectedNode(), "born");
  Settle();  // the notifications find them there, and the name of before nowhere
  EXPECT_EQ(Root(0).children.size(), 5U);
  EXPECT_EQ(tree.Path(), temp / "home/Desktop/born/");
}

TEST_F(DirectoryTreeTest, ARenameNeverReplacesAndRefusesWhatIsNoName) {
  DirectoryNode& letters = *Root(0).children[0];
  temp.Put("home/Desktop/taken", "precious");
  Make("home/Desktop/empty");
  for (const char* name : {"a\\b", "a/b", "a:b", "*", "why?", "<a", "a>", "|", "\"a\""}) {
    person.script.Expect("tree.bad-name", Answer::Ok);
    tree.Rename(letters, name);
  }
  for (const char* name : {"taken", "empty", "."}) {
    person.script.Expect("tree.error", Answer::Ok);
    tree.Rename(letters, name);
  }
  tree.Rename(letters, "");
  tree.Rename(Root(0), "Desk");
  EXPECT_EQ(letters.name + ReadAll(temp / "home/Desktop/taken"), "lettersprecious");
  EXPECT_THAT(Told(), IsEmpty());
  tree.Rename(letters, "\xff\xfe bytes");
  EXPECT_THAT(Told(), ElementsAre("rename home/Desktop/letters/", "to home/Desktop/\xff\xfe bytes/"));
  EXPECT_TRUE(std::filesystem::is_directory(temp / "home/Desktop/\xff\xfe bytes/old"));
  EXPECT_EQ(Root(0).children.back().get(), &letters);
}

TEST_F(DirectoryTreeTest, DeletingAsksAndLeavesMountedVolumesAlone) {
  ::setenv("XDG_DATA_HOME", (temp / "data").c_str(), 1);
  Open("home/Desktop/letters");
  person.script.Expect("trash.confirm", Answer::Yes);
  tree.Delete(*Root(0).children[1]);
  EXPECT_TRUE(std::filesystem::exists(temp / "data/Trash/files/Zoo"));
  tree.HardDelete = true;
  DirectoryNode& letters = *Root(0).children[0];
  tree.SetPath(temp / "home/Desktop/letters");
  Told();
  person.script.Expect("tree.confirm-delete", Answer::No);
  tree.Delete(letters);
  survey.mountPoints = {temp / "home/Desktop/letters/old"};
  tree.RefreshDrives();
  person.script.Expect("tree.error", Answer::Ok);
  tree.Delete(letters);
  EXPECT_TRUE(std::filesystem::exists(temp / "home/Desktop/letters/old"));
  survey.mountPoints.clear();
  tree.RefreshDrives();
  person.script.Expect("tree.confirm-delete", Answer::Yes);
  tree.Delete(letters);
  EXPECT_THAT(Told(), ElementsAre("remove home/Desktop/letters/"));
  EXPECT_EQ(tree.SelectedNode(), &Root(0));
  EXPECT_FALSE(std::filesystem::exists(temp / "home/Desktop/letters"));
  ::unsetenv("XDG_DATA_HOME");
}

TEST_F(DirectoryTreeTest, WhatOthersDoIsToldAsWhatItIs) {
  Open("home/Desktop/letters");
  Told();
  DirectoryNode* const letters = Root(0).children[0].get();
  std::filesystem::rename(temp / "home/Desktop/letters", temp / "home/Desktop/zzz");
  temp.Put("home/Desktop/file", "x");
  std::filesystem::rename(temp / "home/Desktop/file", temp / "home/Desktop/zzz/file");
  std::filesystem::rename(temp / "home/Desktop/zzz/old", temp / "home/Desktop/old");
  std::filesystem::remove_all(temp / "home/Desktop/Zoo");
  Settle();
  EXPECT_THAT(Told(), ElementsAre("rename home/Desktop/letters/", "to home/Desktop/zzz/",
                                  "file create home/Desktop/file", "file rename home/Desktop/file",
                                  "to home/Desktop/zzz/file", "rename home/Desktop/zzz/old/",
                                  "to home/Desktop/old/", "remove home/Desktop/Zoo/"));
  EXPECT_EQ(Root(0).children[1].get(), letters);
  EXPECT_THAT(letters->children, IsEmpty());
}

TEST_F(DirectoryTreeTest, WhateverOthersDoEachWayToAFolderEndsWithWhatIsThere) {
  Open("home/Desktop/letters");
  for (DirectoryNode* node = &Drive(); !node->children.empty(); node = node->children.front().get()) {
    tree.NodeExpanded(*node);
    Settle();
  }
  std::filesystem::create_directory_symlink("letters", temp / "home/Desktop/link");
  std::mt19937 random(7);
  const auto any = [&](std::initializer_list<const char*> names) {
    return names.begin()[random() % names.size()];
  };
  const auto folder = [&] {
    return temp / (std::string(any({"home/Desktop/", "home/Desktop/letters/", "home/", "home/Documents/"})) +
                   any({"a", "A", "B", "c", "a/d", "letters", "link"}));
  };
  for (int step = 0; step < 600; ++step) {
    std::error_code code;
    const Path path = folder();
    switch (random() % 4) {
      case 0:
      case 1:
        std::filesystem::create_directory(path, code);
        break;
      case 2:
        std::filesystem::rename(path, folder(), code);
        break;
      case 3:
        std::filesystem::remove_all(path, code);
        break;
    }
    if (step % 7 != 0) continue;
    Settle();
    ASSERT_TRUE(rows.Agrees(tree.Top())) << step;
    for (DirectoryNode* root : {&Root(0), &Drive()}) {
      DirectoryNodes::ForEach(*root, [&](DirectoryNode& node) {
        if (node.listing != DirectoryNode::Listing::Listed) return true;
        std::set<std::string> there, shown;
        for (const auto& entry : std::filesystem::directory_iterator(node.FullPath()))
          if (entry.is_directory() && !entry.is_symlink()) there.insert(entry.path().filename());
        for (const auto& child : node.children)
          if (!std::filesystem::is_symlink(node.FullPath() + child->name)) shown.insert(child->name);
        EXPECT_EQ(shown, there) << node.FullPath() << " at step " << step;
        return true;
      });
    }
    if (HasFailure()) return;
  }
}

TEST_F(DirectoryTreeTest, LostChangesAreFoundByReadingAgain) {
  Open("home/Desktop/letters");
  Told();
  Make("home/Desktop/new");
  std::filesystem::remove(temp / "home/Desktop/Zoo");
  inotify.Take();
  tree.ShellNotifyMsg({.kind = FolderChange::Kind::Overflow, .name = {}, .newName = {}});
  Settle();
  EXPECT_THAT(Told(), ElementsAre("remove home/Desktop/Zoo/", "create home/Desktop/new/"));
}

TEST_F(DirectoryTreeTest, WithoutWatchesAFolderIsReadAgainWhenOpened) {
  tree.Clear();
  watchesLeft = 0;
  tree.Initialize();
  Make("home/Desktop/new");
  Settle();
  EXPECT_EQ(Root(0).children.size(), 2U);
  tree.NodeExpanded(Root(0));
  EXPECT_EQ(Root(0).children.size(), 3U);
}

TEST_F(DirectoryTreeTest, AClosedFolderThatNobodyOpenedIsNobodysNewsAndABrokenOneIs) {
  for (const ErrorNumber number : {ErrorNumber::PermissionDenied, ErrorNumber::DeviceIo}) {
    tree.Clear();
    tree.Initialize();
    files.Fail({.number = number, .counts = [this](const Operation& operation) {
                  return operation.name == "Files.List" && operation.path == temp / "home/Desktop/Zoo/";
                }});
    if (number == ErrorNumber::DeviceIo) person.script.Expect("tree.not-ready", Answer::Ok);
    tree.NodeExpanded(Root(0));
    Settle();
    EXPECT_TRUE(files.HasFailed());
  }
}

TEST_F(DirectoryTreeTest, ARemovableDriveIsTouchedOnlyWhenOpened) {
  const Path stick = temp / "stick", share = temp / "share";
  survey.drives.push_back({.root = stick, .kind = DriveKind::Removable, .label = "STICK"});
  survey.drives.push_back({.root = share, .kind = DriveKind::Remote, .label = ""});
  survey.drives.push_back({.root = temp / "home/Desktop", .kind = DriveKind::Removable, .label = ""});
  survey.waitingRoots = {stick, share};
  const std::size_t before = files.Count();
  tree.RefreshDrives();
  tree.NodeExpanded(Root(2));
  Settle();
  for (std::size_t i = before; i < files.Count(); ++i)
    EXPECT_EQ(files.Record()[i].path.native().find(stick), std::string::npos);
  EXPECT_THAT(Told(), ElementsAre("create stick/", "create share/", "create home/Desktop/"));
  Make("home/Desktop/new");
  Settle();
  EXPECT_THAT(Root(2).children[3]->children, IsEmpty());
  DirectoryNode& drive = *Root(2).children[1];
  EXPECT_TRUE(drive.MayHaveChildren());
  person.script.Expect("tree.not-ready", Answer::Ok);
  tree.DoubleClick(drive);
  EXPECT_EQ(person.script.Asked().back().text, "Folder or drive not ready: " + stick.native() + "/");
  EXPECT_FALSE(drive.MayHaveChildren());
  Make("stick/photos");
  tree.DoubleClick(drive);
  EXPECT_EQ(drive.children.size(), 1U);
  tree.SelectDir(stick / "photos");
  survey.drives.resize(1);
  tree.RefreshDrives();
  EXPECT_EQ(tree.Path(), "MyComputer");
  EXPECT_TRUE(rows.Agrees(tree.Top()));
}

TEST_F(DirectoryTreeTest, AFolderUnderAnotherVolumeIsReadAndWatchedAnewAndDrivesStandInTheirOrder) {
  DirectoryNode& letters = *Open("home/Desktop/letters");
  std::filesystem::rename(temp / "home/Desktop/letters", temp / "under");
  Make("home/Desktop/letters/photos");
  inotify.Take();
  survey.mountPoints = {temp / "home/Desktop/letters"};
  survey.drives.push_back({.root = temp / "share", .kind = DriveKind::Remote, .label = ""});
  tree.RefreshDrives();
  Make("home/Desktop/letters/films");
  Settle();
  ASSERT_EQ(letters.children.size(), 2U);
  EXPECT_EQ(letters.children[1]->name, "photos");
  std::swap(survey.drives[0], survey.drives[1]);
  tree.RefreshDrives();
  EXPECT_EQ(Drive().name, temp / "share/");
  EXPECT_TRUE(rows.Agrees(tree.Top()));
}

TEST_F(DirectoryTreeTest, EveryFailureLeavesATreeThatAgreesWithItsRows) {
  for (std::size_t k = 1; k < 40; ++k) {
    files.Fail({.at = k});
    person.script.Always("tree.not-ready", Answer::Ok).Always("tree.error", Answer::Ok);
    tree.Clear();
    tree.Initialize();
    try {
      tree.SetPath(temp / "home/Desktop/letters");
      for (const FolderRow& row : tree.ListChildren())
        EXPECT_EQ(row.tag, "*Folder*" + row.path.native());
    } catch (const Error& error) {
      EXPECT_EQ(static_cast<unsigned>(error.Number()) & 0xFFFFFFF0U, 0x80040000U) << error.Description();
    }
    tree.CreateFolder(Root(0));
    Settle();
    EXPECT_TRUE(rows.Agrees(tree.Top())) << k;
  }
}

}  // namespace
}  // namespace tarnel::test
