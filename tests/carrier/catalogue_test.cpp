#include "carrier/catalogue.h"

#include <gtest/gtest.h>

#include "tests/carrier/carrier_bench.h"

namespace tarnel::test {

namespace {

class CatalogueTest : public testing::Test {
 protected:
  /// The tree below a node as "name(child child)".
  static std::string Drawn(const TreeNode& node) {
    std::string text(node.text);
    if (node.children.empty()) return text;
    for (const auto& child : node.children)
      text += (child == node.children.front() ? "(" : " ") + Drawn(*child);
    return text + ")";
  }

  const std::shared_ptr<const HideoutKey> key = std::make_shared<const HideoutKey>(
      HideoutKey{"/c.bin", "c.bin", Secret("pw"), Algorithm::Des, "DES", WipedText("Title")});
  Catalogue catalogue;
  TreeNode& root = catalogue.AddRoot(key, "*RootFolder*");
};

}  // namespace

TEST_F(CatalogueTest, MakesTheFolderNodesThatAreMissing) {
  const std::pair<Strings, const char*> cases[] = {{{""}, "Title"},
                                                   {{"a"}, "Title(a)"},
                                                   {{"a\\b", "a", "a\\c"}, "Title(a(b c))"},
                                                   {{"b", "a", "b\\b"}, "Title(b(b) a)"},
                                                   {{"a\\"}, "Title(a)"},
                                                   {{"\\a\\b", "a"}, "Title((a(b)) a)"},
                                                   {{"A", "a"}, "Title(A a)"}};
  for (const auto& [folders, tree] : cases) {
    catalogue.RemoveFolderNodes("/c.bin");
    for (const std::string& folder : folders) {
      const TreeNode& node = catalogue.EnsureFolderNode(root, folder);
      EXPECT_TRUE(std::string_view(node.FolderPath()) == folder || folder.ends_with('\\')) << folder;
      EXPECT_EQ(&node, &catalogue.EnsureFolderNode(root, folder)) << "found again: " << folder;
    }
    EXPECT_EQ(Drawn(root), tree);
  }
}

TEST_F(CatalogueTest, GivesAllNodesOfOneTextThatTextAsItemFolder) {
  const TreeNode& deep = catalogue.EnsureFolderNode(root, "a\\b");
  catalogue.EnsureFolderNode(root, "a");
  EXPECT_EQ(*root.itemFolder, "*RootFolder*");
  EXPECT_EQ(*deep.itemFolder, "a\\b");
  EXPECT_EQ(*deep.parent->itemFolder, "a\\b");
}

TEST_F(CatalogueTest, BearsAFolderTextThatNestsDeeperThanAnyStack) {
  const std::string folder(100'000, '\\');
  EXPECT_EQ(catalogue.EnsureFolderNode(root, folder).FolderPath().size(), folder.size() - 1);
  catalogue.RemoveFolderNodes("/c.bin");
  EXPECT_EQ(Drawn(root), "Title");
}

TEST(MirrorRow, HoldsItsColumns) {
  CarrierBench bench(1000);
  const Hidden hidden{"Se\xC3\xBC.TXT", std::string(2000, 'x'), std::string(4000, 'f'), "T", "755"};
  bench.Hide(hidden).Load();
  const MirrorRow& row = bench.catalogue.Rows().at(0);
  const Strings wanted = {"2 KB", "type of Se\xC3\xBC.TXT", "11/22/26 10:00:00", "32", hidden.folder, "No"};
  for (int i = 1; i <= 6; ++i)
    EXPECT_EQ(row.SubItem(i), WipedText(wanted[static_cast<std::size_t>(i - 1)])) << i;
  EXPECT_EQ(row.Name(), "Se\xFC.TXT");
  EXPECT_EQ(row.start.value, 1001);
  EXPECT_EQ(row.End().value, bench.Size() + 1);
  MirrorRow other;
  other.record = "?Cmpr=<00>";
  EXPECT_EQ(other.SubItem(6), "Yes") << "only a plain zero is none";
}

TEST(FileTypes, NumbersKeysInTheOrderOfTheirComing) {
  FileTypes types([](const std::string& name) { return name.ends_with(".none") ? "" : "type of " + name; });
  std::string icons;
  for (const char* name : {"a.txt", "b.TXT", "Setup.EXE", "install.exe", "other.exe", "Makefile", "x.none",
                           "archive.tar.gz", ".bashrc", "trailing."})
    icons += std::to_string(types.Of(name).icon);
  EXPECT_EQ(icons, "4455622782");
  EXPECT_EQ(types.Of("b.TXT").text, "type of a.txt");
  EXPECT_EQ(types.Keys(), (Strings{"txt", "setup", "exe", "gz", "bashrc"}));
}

}  // namespace tarnel::test
