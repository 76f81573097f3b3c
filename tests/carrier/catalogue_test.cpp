#include "carrier/catalogue.h"

#include <gtest/gtest.h>

#include "tests/carrier/carrier_bench.h"
#include "tests/support/held_key.h"

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
      HideoutKey{"/c.bin", "c.bin", HeldKey("pw"), Algorithm::Des, WipedText("Title")});
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

TEST_F(CatalogueTest, MakesNoMoreNodesThanItMayAndNeverMistakesAFolderForAnother) {
  const std::string part(4000, 'p');
  const struct {
    std::string front;  ///< of 1,000 folders with a number each
    std::size_t most, least;
  } cases[] = {{"", 100'000, 100'000}, {part, 4300, 4100}};
  for (const auto& c : cases) {
    catalogue.RemoveFolderNodes("/c.bin");
    const TreeNode& first = catalogue.EnsureFolderNode(root, "0");
    for (int i = 0; i < 5000; ++i) {
      std::string folder = c.front + std::to_string(i);
      for (int level = 0; c.front.empty() && level < 24; ++level)
        folder += "\\d";
      const std::string path(catalogue.EnsureFolderNode(root, folder).FolderPath());
      ASSERT_TRUE(path == folder || path.empty() || folder.starts_with(path + "\\")) << path;
    }
    EXPECT_LE(root.nodesBelow, c.most);
    EXPECT_GE(root.nodesBelow, c.least);
    EXPECT_EQ(&catalogue.EnsureFolderNode(root, "0"), &first) << "what is there is found";
    EXPECT_EQ(&catalogue.EnsureFolderNode(root, "new\\" + part), &root);
  }
}

TEST_F(CatalogueTest, BearsAFolderTextThatNestsDeeperThanAnyStack) {
  const std::string folder(100'000, '\\');
  EXPECT_EQ(catalogue.EnsureFolderNode(root, folder).FolderPath().size(), folder.size() - 1);
  catalogue.RemoveFolderNodes("/c.bin");
  EXPECT_EQ(Drawn(root), "Title");
}

}  // namespace tarnel::test
