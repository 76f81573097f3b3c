#include "retrieval/preview.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "carrier/tags.h"
#include "retrieval/run_update.h"
#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {
namespace {

class ViewScript : public Scripted<ViewScreen> {
 public:
  void ShowExtractingTo(const Path&) override {}
  void ShowProgress(Length value, Length maximum) override { EXPECT_LE(value, maximum); }
};

class Preview : public testing::Test {
 protected:
  Preview() { ::setenv("TMPDIR", temp.Where().c_str(), 1); }
  ~Preview() override { ::unsetenv("TMPDIR"); }

  void View(const std::string& name) {
    parcel = ParcelOf(bench.catalogue.Rows()[bench.RowNamed(name)]);
    view = RunView(parcel, bench.faulty, screen, [this](const Path& path) { opened.push_back(path); });
  }
  UpdateResult Update(int level = 9) {
    return RunUpdate({.previewFile = view.PreviewFile, .compressionLevel = level}, parcel, bench.faulty,
                     bench.rewriteScreen);
  }
  ViewReturn Return() { return ReturnFromView(view.PreviewFile, view.PreviewFolder, screen, bench.files); }
  Script& script() { return bench.rewriteScreen.script; }

  TempFolder temp;
  RetrievalBench bench{100};
  ViewScript screen;
  PreviewParcel parcel;
  ViewResult view;
  std::vector<Path> opened;
};

}  // namespace

TEST_F(Preview, OpensAPrivateCopyFolderFirst) {
  bench.Compressed({"a.txt", SampleText(40000), "x"}).Load();
  View("a.txt");
  EXPECT_EQ(view.ending, ViewEnding::Shown);
  EXPECT_EQ(ReadAll(view.PreviewFile), SampleText(40000));
  EXPECT_EQ(opened, (std::vector<Path>{view.PreviewFolder, view.PreviewFile}));
  EXPECT_EQ(view.PreviewFile, view.PreviewFolder / "a.txt");
  EXPECT_EQ(bench.posix.Stat(view.PreviewFolder)->mode, 0700u);
  EXPECT_EQ(bench.posix.Stat(view.PreviewFile)->mode, 0600u);
}

TEST_F(Preview, LeavesNothingPlainBehindACancelledView) {
  bench.Hide({"a", Pattern(40000)}).Load();
  screen.script.CancelAtYield(1);
  View("a");
  EXPECT_EQ(view.ending, ViewEnding::Cancelled);
  EXPECT_TRUE(opened.empty());
  EXPECT_EQ(temp.Names().size(), 1u) << "the empty folder stays";
}

TEST_F(Preview, LeavesNothingBehindWhenTheEntryIsDamaged) {
  bench.Hide({"a", Pattern(40000)}).Load();
  bench.FlipBit(20000, 1);
  screen.script.Expect("view.error", Answer::Retry).Expect("view.error", Answer::Abort);
  View("a");
  EXPECT_EQ(view.ending, ViewEnding::Aborted);
  EXPECT_TRUE(opened.empty());
  EXPECT_EQ(temp.Names(), Strings{});
}

TEST_F(Preview, MovesAnUpdatedEntryToTheEndAndFindsItAgain) {
  bench.Hide({.name = "a", .content = "old", .folder = "f", .mode = "600"}).Hide({"x", "his"}, kOther);
  bench.Hide({"b", "bb"}).Load();
  View("a");
  script().Always("update.confirm", Answer::Yes);
  for (const std::string& content :
       Strings{std::string("edited"), std::string(), Pattern(50000), Pattern(50000)}) {
    WriteAll(view.PreviewFile, content);
    const std::string sizeBefore = parcel.ViewPlainSize;
    EXPECT_EQ(Update().ending, RewriteEnding::Done);
    EXPECT_EQ(script().Asked().back().text,
              "The original file size is: " + sizeBefore + " Bites\r\nThe new file size is: " +
                  std::to_string(content.size()) + " Bites\r\n\r\nDo you really want to update?");
    EXPECT_EQ(bench.Contents(), (Strings{"b=bb", "a=" + content}));
    const MirrorRow& row = bench.catalogue.Rows()[0];
    EXPECT_EQ(std::tuple(parcel.ViewStart, parcel.ViewSize, parcel.ViewTail),
              std::tuple(row.start, row.size, row.tail));
    EXPECT_EQ(row.Field(tag::kPlainSize), std::to_string(content.size()));
    EXPECT_EQ(row.Field(tag::kMode), "600");
    EXPECT_EQ(row.Folder(), "f");
    EXPECT_NE(row.Field(tag::kDate), "11/22/26 10:00:00");
    EXPECT_NE(row.record.find("?CompVers=<701>?CompVers=<701>"), WipedText::npos);
  }
  EXPECT_EQ(ReadAll(bench.carrier).substr(0, 100), Pattern(100));
  EXPECT_EQ(bench.ContentsUnder(kOther), Strings{"x=his"});
}

TEST_F(Preview, KeepsAnEntryCompressedAtThePresentLevel) {
  bench.Compressed({"a", SampleText(10000)}).Load();
  View("a");
  script().Always("update.confirm", Answer::Yes);
  WriteAll(view.PreviewFile, SampleText(90000));
  EXPECT_EQ(Update(3).ending, RewriteEnding::Done);
  EXPECT_EQ(bench.catalogue.Rows()[0].Field(tag::kCompressed), "3");
  EXPECT_LT(bench.catalogue.Rows()[0].size, 60000);
  bench.Extract(bench.All());
  EXPECT_EQ(ReadAll(bench.target / "a"), SampleText(90000));
}

TEST_F(Preview, UpdatesNothingWithoutTheFileOrTheConsent) {
  bench.Hide({"a", "old"}).Load();
  const std::string before = ReadAll(bench.carrier);
  View("a");
  script().Expect("update.confirm", Answer::No);
  EXPECT_EQ(Update().refused, UpdateResult::Refused::ByPerson);
  std::filesystem::remove(view.PreviewFile);
  script().Expect("update.missing", Answer::Ok);
  EXPECT_EQ(Update().refused, UpdateResult::Refused::FileMissing);
  EXPECT_EQ(ReadAll(bench.carrier), before);
  EXPECT_EQ(bench.folder.Names(), Strings{"carrier.bin"});
}

TEST_F(Preview, GivesTheReadOnlyFlagBackWhenAnUpdateIsCancelledButNotAfterAbort) {
  for (const bool cancel : {true, false}) {
    RetrievalBench one(40000);
    one.Hide({"a", "old"}).Load();
    ASSERT_EQ(::chmod(one.carrier.c_str(), 0444), 0);
    PreviewParcel mine = ParcelOf(one.catalogue.Rows()[0]);
    const std::string tail = mine.ViewTail;
    one.rewriteScreen.script.Expect("update.confirm", Answer::Yes);
    if (cancel) {
      one.rewriteScreen.script.CancelAtYield(2);
    } else {
      one.files.Fail({.counts = [](const Operation& o) { return o.name == "File.WriteAt"; }});
      one.rewriteScreen.script.Expect("update.error", Answer::Abort);
    }
    const UpdateResult result =
        RunUpdate({.previewFile = one.folder.Put("new", "edited")}, mine, one.faulty, one.rewriteScreen);
    EXPECT_EQ(result.ending, cancel ? RewriteEnding::Cancelled : RewriteEnding::Aborted);
    EXPECT_EQ(one.posix.Stat(one.carrier)->mode, cancel ? 0444u : 0644u);
    EXPECT_EQ(mine.ViewTail, tail);
    EXPECT_FALSE(std::filesystem::exists(one.temporary));
  }
}

TEST_F(Preview, ReturnsByDestroyingTheFileWhicheverYesItHears) {
  for (const bool first : {true, false}) {
    bench.Hide({"a", "old"}).Load();
    View("a");
    WriteAll(view.PreviewFolder / "a~", "the application's own copy");
    screen.script.Expect("view.return", first ? Answer::Yes : Answer::No);
    if (!first) screen.script.Expect("view.return-without", Answer::Yes);
    EXPECT_EQ(Return(), ViewReturn::Leave);
    EXPECT_EQ(temp.Names(), Strings{});
  }
}

TEST_F(Preview, StaysWhenBothAnswersAreNo) {
  bench.Hide({"a", "old"}).Load();
  View("a");
  screen.script.Expect("view.return", Answer::No).Expect("view.return-without", Answer::No);
  EXPECT_EQ(Return(), ViewReturn::Stay);
  EXPECT_EQ(ReadAll(view.PreviewFile), "old");
}

TEST_F(Preview, LeavesTheFolderBehindWhenTheFileHasGone) {
  bench.Hide({"a", "old"}).Load();
  View("a");
  std::filesystem::remove(view.PreviewFile);
  screen.script.Expect("view.return", Answer::Yes);
  EXPECT_EQ(Return(), ViewReturn::Leave);
  EXPECT_TRUE(std::filesystem::exists(view.PreviewFolder));
}

TEST_F(Preview, TellsWhenSomethingCantBeDestroyed) {
  bench.Hide({"a", "old"}).Load();
  View("a");
  bench.files.Fail({.counts = [](const Operation& o) { return o.name == "Files.Remove"; }});
  screen.script.Expect("view.return", Answer::Yes)
      .Expect("destroy.error", Answer::Abort)
      .Expect("view.locked", Answer::Retry)
      .Expect("view.return", Answer::Yes);
  EXPECT_EQ(Return(), ViewReturn::Leave);
  EXPECT_EQ(temp.Names(), Strings{});
}

TEST_F(Preview, HasItsOwnWordsForAFolderThatCantGo) {
  struct Case {
    ErrorNumber number;
    Strings asked;
  };
  for (const Case& c :
       std::vector<Case>{{ErrorNumber::PermissionDenied, {"view.return", "view.attention"}},
                         {ErrorNumber::PathFileAccess, {"view.return", "view.locked", "view.attention"}},
                         {ErrorNumber::DeviceIo, {"view.return", "view.error", "view.attention"}}}) {
    bench.Hide({"a", "old"}).Load();
    View("a");
    bench.files.Fail(
        {.number = c.number, .counts = [](const Operation& o) { return o.name == "Folder.RemoveFolder"; }});
    ViewScript person;
    person.script.Always("view.return", Answer::Yes).Always("view.locked", Answer::Cancel);
    person.script.Always("view.error", Answer::Abort).Always("view.attention", Answer::Ok);
    EXPECT_EQ(ReturnFromView(view.PreviewFile, view.PreviewFolder, person, bench.files), ViewReturn::Leave);
    Strings asked;
    for (const Question& question : person.script.Asked())
      asked.push_back(question.id);
    EXPECT_EQ(asked, c.asked);
  }
}

}  // namespace tarnel::test
