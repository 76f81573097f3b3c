#include <gtest/gtest.h>

#include "app/forms/dir_view_model.h"

namespace tarnel::test {
namespace {

class DirViewTest : public testing::Test {
 protected:
  TreeNode& Open(const char* carrier) {
    auto hideout = std::make_shared<HideoutKey>();
    hideout->carrier = carrier;
    return catalogue.AddRoot(hideout, "*RootFolder*");
  }

  Catalogue catalogue;
  DirViewModel model{catalogue};
};

TEST_F(DirViewTest, HoldsFoldersOfAnyDepth) {
  constexpr int kDepth = 200'000;
  std::string folder;
  for (int i = 0; i < kDepth; ++i)
    folder += "a\\";
  TreeNode& deepest = catalogue.EnsureFolderNode(Open("/a.png"), folder);
  model.Rebuild();
  model.Rebuild();
  EXPECT_EQ(model.All().size(), kDepth + 1);
  EXPECT_EQ(model.NodeAt(model.IndexOf(&deepest)), &deepest);
}

TEST_F(DirViewTest, KeysOutliveARebuildAndAreNeverThoseOfAnotherFolder) {
  const TreeNode& kept = catalogue.EnsureFolderNode(Open("/b.png"), "docs\\old");
  model.Rebuild();
  const auto key = model.KeyAt(model.IndexOf(&kept));
  TreeNode& other = Open("/a.png");
  catalogue.EnsureFolderNode(other, "docs\\old");
  catalogue.EnsureFolderNode(other, "old");
  model.Rebuild();
  for (const QModelIndex& index : model.All())
    EXPECT_EQ(model.KeyAt(index) == key, model.NodeAt(index) == &kept);
}

}  // namespace
}  // namespace tarnel::test
