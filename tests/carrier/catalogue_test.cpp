#include "carrier/catalogue.h"

#include <gtest/gtest.h>

#include "carrier/tags.h"
#include "tests/carrier/carrier_bench.h"

namespace tarnel::test {

namespace {

std::shared_ptr<const HideoutKey> KeyOf(const Path& carrier) {
  return std::make_shared<const HideoutKey>(
      HideoutKey{carrier, "c.bin", Secret("pw"), Algorithm::Des, "DES", WipedText("Title")});
}

/// The tree below a node as "name(child child)".
std::string Drawn(const TreeNode& node) {
  std::string text = node.text;
  if (node.children.empty()) return text;
  for (const auto& child : node.children)
    text += (child == node.children.front() ? "(" : " ") + Drawn(*child);
  return text + ")";
}

}  // namespace

TEST(Catalogue, MakesTheFolderNodesThatAreMissing) {
  const struct {
    Strings folders;
    const char* tree;
  } cases[] = {{{""}, "Title"},
               {{"a"}, "Title(a)"},
               {{"a\\b", "a", "a\\c"}, "Title(a(b c))"},
               {{"b", "a", "b\\b"}, "Title(b(b) a)"},
               {{"a\\"}, "Title(a)"},
               {{"\\a\\b", "a"}, "Title((a(b)) a)"},
               {{"a\\\\b"}, "Title(a((b)))"},
               {{"A", "a"}, "Title(A a)"}};
  for (const auto& c : cases) {
    Catalogue catalogue;
    TreeNode& root = catalogue.AddRoot(KeyOf("/c.bin"), "*RootFolder*");
    for (const std::string& folder : c.folders) {
      const TreeNode& node = catalogue.EnsureFolderNode(root, folder);
      EXPECT_TRUE(node.FolderPath() == folder || folder.ends_with('\\')) << folder;
      EXPECT_EQ(&node, &catalogue.EnsureFolderNode(root, folder)) << "found again: " << folder;
    }
    EXPECT_EQ(Drawn(root), c.tree);
  }
}

TEST(Catalogue, GivesAllNodesOfOneTextThatTextAsItemFolder) {
  Catalogue catalogue;
  TreeNode& root = catalogue.AddRoot(KeyOf("/c.bin"), "*RootFolder*");
  TreeNode& deep = catalogue.EnsureFolderNode(root, "a\\b");
  catalogue.EnsureFolderNode(root, "a");
  const std::string front =
      "?CarrierFile=</c.bin>?CarrierTitel=<c.bin>?Passwort=<pw>?Algorithm=<DES>?ItemFolder=<";
  EXPECT_EQ(root.Tag(), WipedText(front + "*RootFolder*>?HideoutTitel=<Title>"));
  EXPECT_EQ(deep.Tag(), WipedText(front + "a\\b>?HideoutTitel=<Title>"));
  EXPECT_EQ(deep.parent->Tag(), deep.Tag());
  EXPECT_EQ(deep.FullPath(), "Title\\a\\b");
  EXPECT_EQ(root.FullPath(), "Title");
  EXPECT_EQ(root.FolderPath(), "");
  EXPECT_EQ((std::vector{root.image, root.selectedImage, deep.image, deep.selectedImage}),
            (std::vector{1, 1, 2, 3}));
}

TEST(Catalogue, BearsAFolderTextThatNestsDeeperThanAnyStack) {
  Catalogue catalogue;
  TreeNode& root = catalogue.AddRoot(KeyOf("/c.bin"), "*RootFolder*");
  const std::string folder(100'000, '\\');
  EXPECT_EQ(catalogue.EnsureFolderNode(root, folder).FolderPath().size(), folder.size() - 1);
  catalogue.RemoveFolderNodes("/c.bin");
  EXPECT_TRUE(root.children.empty());
  EXPECT_EQ(catalogue.EnsureFolderNode(root, "a").FolderPath(), "a");
}

TEST(Catalogue, RemovesOneCarrierOfSeveral) {
  Catalogue catalogue;
  for (const char* carrier : {"/a", "/b", "/a//b"}) {
    const TreeNode& root = catalogue.AddRoot(KeyOf(carrier), "");
    MirrorRow row;
    row.hideout = root.hideout;
    catalogue.AddRow(row);
    catalogue.AddRow(row);
  }
  EXPECT_EQ(catalogue.RowsOf("/b").size(), 2u);
  catalogue.RemoveCarrier("/b");
  EXPECT_EQ(catalogue.RowsOf("/b").size(), 0u);
  EXPECT_EQ(catalogue.FindRoot("/b"), nullptr);
  EXPECT_EQ(catalogue.Rows().size(), 4u);
  EXPECT_EQ(catalogue.Roots().size(), 2u);
}

TEST(MirrorRow, HoldsItsColumns) {
  CarrierBench bench(1000);
  bench.Hide({"Se\xC3\xBC.TXT", std::string(2'000'000, 'x'), "docs\\old", "T", "755"});
  bench.Load();
  const MirrorRow& row = bench.catalogue.Rows()[0];
  const std::string record(CarrierBench::RecordOf(
      {"Se\xC3\xBC.TXT", std::string(2'000'000, 'x'), "docs\\old", "T", "755"}, 2'000'032));
  const std::string tag =
      record + "?CarrierFile=<" + bench.carrier.native() + ">?Start=<1001>?Size=<2000032>";
  const std::string wanted[] = {"1,953 KB",
                                "type of Se\xC3\xBC.TXT",
                                "11/22/26 10:00:00",
                                "32",
                                "docs\\old",
                                "No",
                                tag,
                                ReadAll(bench.carrier).substr(1000 + 2'000'032),
                                record};
  for (int i = 1; i <= 9; ++i)
    EXPECT_EQ(row.SubItem(i), WipedText(wanted[i - 1])) << i;
  EXPECT_EQ(row.Tag(), WipedText(tag));
  EXPECT_EQ(row.Name(), "Se\xFC.TXT");
  EXPECT_EQ(row.End().value, bench.Size() + 1);
}

TEST(MirrorRow, CallsEverythingButAPlainZeroCompressed) {
  for (const auto& [level, text] : {std::pair{"0", "No"}, {"6", "Yes"}, {"00", "Yes"}, {"", "Yes"}}) {
    MirrorRow row;
    row.record = BuildRecord({.name = "a", .compressed = level}, RecordWriter::Hide);
    EXPECT_EQ(row.SubItem(6), text) << level;
  }
}

TEST(FileTypes, NumbersKeysInTheOrderOfTheirComing) {
  FileTypes types([](const std::string& name) { return name.ends_with(".none") ? "" : "type of " + name; });
  const struct {
    const char* name;
    int icon;
    const char* text;
  } cases[] = {{"a.txt", 4, "type of a.txt"},
               {"b.TXT", 4, "type of a.txt"},
               {"Setup.EXE", 5, "type of Setup.EXE"},
               {"install.exe", 5, "type of Setup.EXE"},
               {"other.exe", 6, "type of other.exe"},
               {"Makefile", 2, "type of Makefile"},
               {"x.none", 2, ""},
               {"archive.tar.gz", 7, "type of archive.tar.gz"},
               {".bashrc", 8, "type of .bashrc"},
               {"trailing.", 2, "type of trailing."}};
  for (const auto& c : cases) {
    const FileTypes::Type type = types.Of(c.name);
    EXPECT_EQ(type.icon, c.icon) << c.name;
    EXPECT_EQ(type.text, c.text) << c.name;
  }
  EXPECT_EQ(types.Keys(), (Strings{"txt", "setup", "exe", "gz", "bashrc"}));
}

TEST(FileTypes, CutsATypeTextBetweenCharacters) {
  for (std::size_t front = 0; front < 3; ++front) {
    std::string text(front, 'x');
    while (text.size() < 200)
      text += "\xE4\xB8\xAD";
    const std::string cut = FileTypes([&](const std::string&) { return text; }).Of("a.b").text;
    EXPECT_GT(cut.size(), kTypeTextLimit - 3);
    EXPECT_LE(cut.size(), kTypeTextLimit);
    EXPECT_EQ(cut.size() % 3, front);
  }
}

}  // namespace tarnel::test
