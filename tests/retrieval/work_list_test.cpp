#include "retrieval/work_list.h"

#include <gtest/gtest.h>

#include "retrieval/delete_list.h"
#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {

TEST(RelativeFolder, IsWhatLiesBelowTheSelectedNode) {
  const struct {
    std::string nodeItemFolder, nodePath, folder, relative;
  } cases[] = {{"*RootFolder*", "", "Pics\\2024", "Pics\\2024"},
               {"*RootFolder*", "", "", ""},
               {"*RootFolder*", "", "\\docs\\old", "docs\\old"},  // of a base without a closing separator
               {"*RootFolder*", "", "\\\\docs", "\\docs"},
               {"Pics\\2024", "Pics", "Pics\\2024", "2024"},  // a node may carry a deeper folder than its own
               {"Pics", "Pics", "Pics", ""},
               {"Pics", "Pics", "Pi", ""},
               {"Pics", "Pics", "Documents\\old", "ents\\old"},  // another branch loses as many and one
               {"Pics", "Pics", "Music\\old", "old"},
               {"Pic", "Pic", "Docs\\x\\y", "x\\y"},  // cut before a separator: joining drops it
               {"Pics2", "Pics2", "Pics", ""}};
  for (const auto& c : cases) {
    ExtractRequest request;
    request.nodeItemFolder = c.nodeItemFolder;
    request.nodePath = c.nodePath;
    EXPECT_EQ(RelativeFolder(request, c.folder), c.relative) << c.folder << " below " << c.nodePath;
  }
}

TEST(FolderParts, AreThePlatformsNames) {
  EXPECT_EQ(FolderParts(""), Strings{});
  const std::string odd = "a\\b>c\n\xff";
  EXPECT_EQ(FolderParts(ToStored(odd, TextKind::PathComponent) + "\\b c\\..."), (Strings{odd, "b c", "..."}));
}

class WorkList : public testing::Test {
 protected:
  using Rows = std::vector<std::size_t>;

  WorkList() {
    bench.Hide({"p", "x", "Pics"}).Hide({"q", "x", "Pics2\\a"}).Hide({"r", "x", ""}).Hide({"s", "x", "Pics"});
    bench.Load();  // the newest is row 0
  }
  Rows Chosen(std::vector<ExtractChoice> choices) const {
    ExtractRequest request = bench.All();
    request.all = false;
    request.choices = std::move(choices);
    return ExtractWorkList(request, bench.catalogue);
  }
  static ExtractChoice Folder(std::string itemFolder) {
    return {.kind = ExtractChoice::Kind::Folder, .itemFolder = std::move(itemFolder)};
  }
  static ExtractChoice File(std::size_t row) { return {.row = row, .itemFolder = {}}; }

  RetrievalBench bench{100};
};

TEST_F(WorkList, FollowsTheRowsOrTheChoices) {
  EXPECT_EQ(ExtractWorkList(bench.All(), bench.catalogue), (Rows{0, 1, 2, 3}));
  EXPECT_EQ(Chosen({File(3), File(1)}), (Rows{3, 1}));
  EXPECT_EQ(Chosen({Folder("Pics")}), (Rows{0, 2, 3})) << "neighbours whose name begins alike too";
  EXPECT_EQ(Chosen({Folder("Pics2"), File(2)}), (Rows{2, 2}));
  bench.carrier = bench.folder / "other.bin";
  EXPECT_EQ(ExtractWorkList(bench.All(), bench.catalogue), Rows{});
}

TEST_F(WorkList, OfADeletionShrinksUntilItRunsAndClosesTheFormOnlyByUnchecking) {
  DeleteList list({Folder("Pics"), File(1)}, bench.catalogue, bench.carrier);
  EXPECT_EQ(list.MirrorRows(), (Rows{0, 2, 3, 1}));
  EXPECT_EQ(list.Rows().at(1).size, "0 KB");
  EXPECT_EQ(list.Rows().at(1).folder, "Pics2\\a");
  EXPECT_EQ(list.Uncheck(1), DeleteList::Unchecked::Removed);
  list.RemoveSelected({0, 1});
  EXPECT_EQ(list.MirrorRows(), Rows{1});
  DeleteList running = list;
  EXPECT_EQ(list.Uncheck(0), DeleteList::Unchecked::RemovedLast);
  running.BeginRunning();
  running.RemoveSelected({0});
  EXPECT_EQ(running.Uncheck(0), DeleteList::Unchecked::StaysChecked);
}

}  // namespace tarnel::test
