#include "hiding/selection.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/carrier/carrier_bench.h"

namespace tarnel::test {

namespace {

class SelectingScreen : public Scripted<SelectionScreen> {
  void ShowAdded(const Path& file, std::size_t found) override {
    script.Note(file.filename().native() + " " + std::to_string(found));
  }
};

class SelectionTest : public testing::Test {
 protected:
  /// "NAME in FOLDER" of each row.
  Strings Rows() const {
    Strings rows;
    for (const HideRow& row : selection.Rows())
      rows.push_back(row.name + " in " + row.folder);
    return rows;
  }

  TempFolder folder;
  PosixFiles files;
  SelectingScreen screen;
  Selection selection{files, screen};
};

}  // namespace

TEST(FolderText, IsTheRightEndOfTheParent) {
  const struct {
    const char *parent, *base, *text;
  } cases[] = {{"/home/u", "/home/u", ""},
               {"/home/u", "/home/u/", ""},
               {"/home/u/docs/old", "/home/u/", "docs\\old"},
               {"/home/u/docs/old", "/home/u", "\\docs\\old"},
               {"/", "/", ""},
               {"/etc", "/", "etc"},
               {"/etc", "/etc/longer", ""},
               {"docs/old", "", "docs\\old"},
               {"/base/a\\b/c", "/base/",
                "a\x81\x31S\x9d"
                "b\\c"}};  // a backslash in a name separates nothing
  for (const auto& c : cases)
    EXPECT_EQ(FolderText(c.parent, c.base), c.text) << c.parent << " under " << c.base;
}

TEST_F(SelectionTest, TakesPathsOnceFoldersBeforeTheirSubfoldersAndTurnsTheOrderRound) {
  for (const char* name : {"top/z", "top/a", "top/b/2", "top/b/sub/3", "top/c/4"})
    folder.Put(name, "xx");
  selection.AddFile(folder / "top/a", (folder / "top").native());
  selection.AddFile(folder / "top/missing", (folder / "top").native());
  selection.AddFile(folder / "top/b", (folder / "top").native());
  EXPECT_TRUE(selection.Passed().empty()) << "a folder is no link to one";
  selection.AddWholeFolder(folder / "top/");
  EXPECT_EQ(Rows(), (Strings{"4 in top\\c", "3 in top\\b\\sub", "2 in top\\b", "z in top", "a in "}));
  EXPECT_EQ(selection.TotalSelectedBytes(), 10);
  EXPECT_EQ(selection.FoldersCounted(), 7);
  EXPECT_EQ(screen.script.Transcript().at(0), "a 1");
}

TEST_F(SelectionTest, FollowsLinksToFilesAndNamesWhatItPassesOver) {
  folder.Put("elsewhere/deep/file", "123");
  folder.Put("top/z/last", "4");
  std::filesystem::create_symlink(folder / "elsewhere/deep/file", folder / "top/1-file");
  std::filesystem::create_directory_symlink(folder / "elsewhere", folder / "top/2-folder");
  std::filesystem::create_directory_symlink(folder / "top", folder / "top/3-loop");
  std::filesystem::create_symlink("nowhere", folder / "top/4-broken");
  std::filesystem::create_symlink("5-itself", folder / "top/5-itself");
  ASSERT_EQ(::mkfifo((folder / "top/6-pipe").c_str(), 0600), 0);
  const std::string part(100, 'd');
  std::unique_ptr<Folder> deepest = files.OpenFolder(folder / "top");
  for (int level = 0; level < 50; ++level)
    deepest = deepest->Enter(part, Folder::IfMissing::Create);
  selection.AddWholeFolder(folder / "top");
  EXPECT_EQ(Rows(), (Strings{"last in top\\z", "1-file in top"}));
  Strings passed;
  for (const PassedOver& each : selection.Passed())
    passed.push_back(each.path.filename().native() + " " + each.reason);
  EXPECT_EQ(passed, (Strings{"2-folder is a link to a folder", "3-loop is a link to a folder",
                             "4-broken is a link that leads nowhere",
                             "5-itself cannot be read: too many levels of symbolic links",
                             "6-pipe is a pipe, a socket or a device",
                             part + " cannot be read: file name too long"}));
}

TEST_F(SelectionTest, StopsAtTheNextEntryAndKeepsWhatItHas) {
  for (const char* name : {"top/1", "top/2", "top/3", "top/sub/4"})
    folder.Put(name, "x");
  screen.script.CancelAtYield(2);
  selection.AddWholeFolder(folder / "top");
  EXPECT_EQ(Rows(), (Strings{"2 in top", "1 in top"}));
}

TEST_F(SelectionTest, CountsFoldersAnewWhenRowsAreTakenOut) {
  for (const char* name : {"top/a", "top/x/b", "top/x/c", "top/y/d", "top/z/e"})
    folder.Put(name, "xxx");
  selection.AddWholeFolder(folder / "top");  // rows: e, d, c, b, a
  std::filesystem::remove(folder / "top/y/d");
  selection.Remove({1, 0});
  EXPECT_EQ(Rows(), (Strings{"c in top\\x", "b in top\\x", "a in top"}));
  EXPECT_EQ(selection.TotalSelectedBytes(), 12);  // a file that is gone takes nothing off
  EXPECT_EQ(selection.FoldersCounted(), 2);
  selection.AddFile(folder / "top/z/e", folder.Where().native());
  EXPECT_EQ(Rows().size(), 4U);
  selection.Remove({0, 1, 2, 3});
  EXPECT_EQ(selection.FoldersCounted(), 0);
}

}  // namespace tarnel::test
