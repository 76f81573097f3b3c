#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "retrieval/run_delete.h"
#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {
namespace {

class Delete : public testing::Test {
 protected:
  RetrievalBench bench{100};
};

std::string Without(std::string bytes, const MirrorRow& row) {
  return bytes.erase(static_cast<std::size_t>(row.start.value - 1),
                     static_cast<std::size_t>(row.End() - row.start));
}

}  // namespace

TEST_F(Delete, TakesOutJustTheChosenEntriesAndReloads) {
  bench.Hide({"a", Pattern(40000)}).Hide({"x", "his"}, kOther).Hide({"b", "two"}).Hide({"c", "three"}).Load();
  std::string expected = ReadAll(bench.carrier);
  for (const std::string name : {"c", "a"})  // from behind, so that positions hold
    expected = Without(expected, bench.catalogue.Rows()[bench.RowNamed(name)]);
  const DeleteResult result = bench.Delete({"c", "a"});
  EXPECT_EQ(result.ending, RewriteEnding::Done);
  EXPECT_EQ(result.deleted, 2u);
  EXPECT_EQ(ReadAll(bench.carrier), expected);
  EXPECT_EQ(bench.Contents(), Strings{"b=two"});
  EXPECT_EQ(bench.rewriteScreen.script.Transcript().back(), "loaded 1");
  EXPECT_EQ(bench.ContentsUnder(kOther), Strings{"x=his"});
  EXPECT_EQ(bench.folder.Names(), Strings{"carrier.bin"});
}

TEST_F(Delete, OfARowTwiceIsDeletionOfItOnce) {
  bench.Hide({"a"}).Hide({"b", "two"}).Load();
  EXPECT_EQ(bench.Delete({"a", "a"}).deleted, 1u);
  EXPECT_EQ(bench.Contents(), Strings{"b=two"});
}

TEST_F(Delete, OfTheLastEntryKeepsTheRootAndTheOtherHideout) {
  bench.Hide({"a", "x", "folder"}).Hide({"x", "his"}, kOther).Load();
  EXPECT_EQ(bench.Delete({"a"}).ending, RewriteEnding::Done);
  EXPECT_TRUE(bench.catalogue.Rows().empty());
  ASSERT_NE(bench.catalogue.FindRoot(bench.carrier), nullptr);
  EXPECT_TRUE(bench.catalogue.FindRoot(bench.carrier)->children.empty());
  EXPECT_EQ(bench.rewriteScreen.script.Transcript().back(), "emptied");
  EXPECT_EQ(bench.ContentsUnder(kOther), Strings{"x=his"});
}

TEST_F(Delete, LeavesAnEmptyFileOfACarrierWithoutABodyOfItsOwn) {
  RetrievalBench empty(0);
  empty.Hide({"a"}).Load();
  empty.rewriteScreen.script.Always("load.error", Answer::Abort);
  EXPECT_EQ(empty.Delete({"a"}).ending, RewriteEnding::Done);
  EXPECT_EQ(empty.Size(), 0);
}

TEST_F(Delete, OfNothingDoesNothing) {
  bench.Hide({"a"}).Load();
  EXPECT_EQ(bench.Delete({}).deleted, 0u);
  EXPECT_EQ(bench.files.Count(), 0u);
}

TEST_F(Delete, RefusesACarrierThatChangedSinceItWasRead) {
  bench.Hide({"a"}).Hide({"b"}).Load();
  const std::string longer = ReadAll(bench.carrier).insert(50, "x");
  for (const std::string& bytes : {longer, std::string(), Pattern(50)}) {
    WriteAll(bench.carrier, bytes);
    EXPECT_THROW(bench.Delete({"a"}), Error);
    EXPECT_EQ(ReadAll(bench.carrier), bytes);
    EXPECT_EQ(bench.folder.Names(), Strings{"carrier.bin"});
  }
}

TEST_F(Delete, RefusesWhereATemporaryCarrierLiesUnlessItMayGo) {
  bench.Hide({"a"}).Hide({"b", "two"}).Load();
  const std::string before = ReadAll(bench.carrier);
  WriteAll(bench.temporary, "precious");
  try {
    bench.Delete({"a"});
    ADD_FAILURE() << "replaced the user's file";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::FileExists);
    EXPECT_EQ(error.Path(), bench.temporary);
  }
  EXPECT_EQ(ReadAll(bench.temporary), "precious");
  EXPECT_EQ(ReadAll(bench.carrier), before);
  RunDelete({.rows = {bench.RowNamed("a")}, .leftover = Leftover::Replace}, bench.faulty,
            bench.rewriteScreen);
  EXPECT_EQ(bench.Contents(), Strings{"b=two"});
}

TEST_F(Delete, RefusesACarrierThatAnotherProcessHasLocked) {
  bench.Hide({"a"}).Load();
  int pipe[2];
  ASSERT_EQ(::pipe(pipe), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const auto held = bench.posix.OpenToChange(bench.carrier);
    held->Lock();
    const bool told = ::write(pipe[1], "x", 1) == 1;
    ::pause();
    ::_exit(told ? 0 : 1);
  }
  char byte = 0;
  ASSERT_EQ(::read(pipe[0], &byte, 1), 1);
  try {
    bench.Delete({"a"});
    ADD_FAILURE() << "two at one carrier";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::PermissionDenied);
  }
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(bench.Delete({"a"}).ending, RewriteEnding::Done);
}

TEST_F(Delete, ReplacesTheFileThatALinkPointsTo) {
  const Path real = bench.folder / "real.bin";
  std::filesystem::rename(bench.carrier, real);
  std::filesystem::create_symlink(real, bench.carrier);
  bench.Hide({"a"}).Hide({"b", "two"}).Load();
  EXPECT_EQ(bench.Delete({"a"}).ending, RewriteEnding::Done);
  EXPECT_TRUE(std::filesystem::is_symlink(bench.carrier));
  EXPECT_FALSE(std::filesystem::is_symlink(real));
  EXPECT_EQ(bench.Contents(), Strings{"b=two"});
}

TEST_F(Delete, KeepsTheCarriersModeAndItsWriteProtection) {
  for (const mode_t mode : {0444u, 0600u, 0644u, 0755u}) {
    RetrievalBench one(100);
    one.Hide({"a"}).Hide({"b"}).Load();
    const OrdinaryUser user(one.folder);
    ASSERT_EQ(::chmod(one.carrier.c_str(), mode), 0);
    EXPECT_EQ(one.Delete({"a"}).ending, RewriteEnding::Done);
    EXPECT_EQ(one.posix.Stat(one.carrier)->mode, mode);
  }
}

TEST_F(Delete, LosesTheReadOnlyFlagWhenCancelledInsideACopyButNotBetweenCopies) {
  struct Case {
    std::size_t yield;
    mode_t after;
  };
  for (const Case& c : std::vector<Case>{{0, 0444}, {1, 0644}, {2, 0644}}) {
    RetrievalBench one(40000);
    one.Hide({"a"}).Load();
    const std::string before = ReadAll(one.carrier);
    ASSERT_EQ(::chmod(one.carrier.c_str(), 0444), 0);
    one.rewriteScreen.script.CancelAtYield(c.yield);
    EXPECT_EQ(one.Delete({"a"}).ending, RewriteEnding::Cancelled);
    EXPECT_EQ(one.posix.Stat(one.carrier)->mode, c.after) << c.yield;
    EXPECT_EQ(ReadAll(one.carrier), before);
  }
}

TEST_F(Delete, LeavesTheCompleteCarrierBesideTheOldOneIfItCantReplaceIt) {
  bench.Hide({"a"}).Hide({"b", "two"}).Load();
  const std::string before = ReadAll(bench.carrier);
  bench.files.Fail({.number = ErrorNumber::PermissionDenied,
                    .counts = [](const Operation& operation) { return operation.name == "Files.Rename"; }});
  bench.rewriteScreen.script.Expect("delete.not-replaced", Answer::Ok);
  const DeleteResult result = bench.Delete({"a"});
  EXPECT_EQ(result.ending, RewriteEnding::NotReplaced);
  EXPECT_EQ(result.temporary, bench.temporary);
  EXPECT_EQ(bench.rewriteScreen.script.Asked()[0].text,
            "Error! Carrier file could not be created! Please use the temp file: " +
                bench.temporary.string() + " as a carrier file.");
  EXPECT_EQ(ReadAll(bench.carrier), before);
  std::filesystem::rename(bench.temporary, bench.carrier);
  EXPECT_EQ(bench.ContentsUnder({}), Strings{"b=two"});
}

TEST_F(Delete, WritesTheCarrierThroughBeforeItTakesThePlace) {
  bench.Hide({"a"}).Hide({"b"}).Load();
  bench.Delete({"a"});
  Strings last;
  for (const Operation& operation : bench.files.Record())
    if (operation.name == "File.WriteAt" || operation.name == "File.Sync" || operation.name == "File.Lock" ||
        operation.name == "Files.Rename" || operation.name == "Files.SyncFolder")
      last.push_back(operation.name);
  last.erase(last.begin(), last.end() - 5);
  EXPECT_EQ(last, (Strings{"File.WriteAt", "File.Sync", "File.Lock", "Files.Rename", "Files.SyncFolder"}));
}

}  // namespace tarnel::test
