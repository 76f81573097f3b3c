#include <gtest/gtest.h>

#include "retrieval/run_delete.h"
#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {

TEST(Delete, TakesOutJustTheChosenEntriesAndReloads) {
  RetrievalBench bench(100);
  bench.Hide({"a", Pattern(40000)}).Hide({"x", "his"}, kOther).Hide({"b", "two"}).Hide({"c", "three"}).Load();
  std::string expected = ReadAll(bench.carrier);
  for (const std::string name : {"c", "a"}) {  // from behind, so that positions hold
    const MirrorRow& row = bench.catalogue.Rows()[bench.RowNamed(name)];
    expected.erase(static_cast<std::size_t>(row.start.value - 1),
                   static_cast<std::size_t>(row.End() - row.start));
  }
  const DeleteResult result = bench.Delete({"c", "a", "c"});
  EXPECT_EQ(result.ending, RewriteEnding::Done);
  EXPECT_EQ(result.deleted, 2u);
  EXPECT_EQ(ReadAll(bench.carrier), expected);
  EXPECT_EQ(bench.Contents(), Strings{"b=two"});
  EXPECT_EQ(bench.rewriteScreen.script.Transcript().back(), "loaded 1");
  EXPECT_EQ(bench.ContentsUnder(kOther), Strings{"x=his"});
  EXPECT_EQ(bench.folder.Names(), Strings{"carrier.bin"});
}

TEST(Delete, OfTheLastEntryKeepsTheRootAndTheOtherHideoutAndReplacesALeftoverThatMayGo) {
  RetrievalBench bench(0);
  bench.Hide({"a", "x", "folder"}).Hide({"x", "his"}, kOther).Load();
  WriteAll(bench.temporary, "left over");
  RunDelete({.rows = {0}, .leftover = Leftover::Replace}, bench.faulty, bench.rewriteScreen);
  EXPECT_TRUE(bench.catalogue.Rows().empty());
  ASSERT_NE(bench.catalogue.FindRoot(bench.carrier), nullptr);
  EXPECT_TRUE(bench.catalogue.FindRoot(bench.carrier)->children.empty());
  EXPECT_EQ(bench.rewriteScreen.script.Transcript().back(), "emptied");
  EXPECT_EQ(bench.ContentsUnder(kOther), Strings{"x=his"});
}

TEST(Delete, SaysWhereTheNewCarrierLiesIfItCantReplaceTheOldOne) {
  RetrievalBench bench(100);
  bench.Hide({"a"}).Load();
  bench.files.Fail({.number = ErrorNumber::PermissionDenied,
                    .counts = [](const Operation& operation) { return operation.name == "Files.Rename"; }});
  bench.rewriteScreen.script.Expect("delete.not-replaced", Answer::Ok);
  EXPECT_EQ(bench.Delete({"a"}).temporary, bench.temporary);
  EXPECT_EQ(bench.rewriteScreen.script.Asked().at(0).text,
            "Error! Carrier file could not be created! Please use the temp file: " +
                bench.temporary.string() + " as a carrier file.");
}

}  // namespace tarnel::test
