#include "retrieval/preview.h"

#include <gtest/gtest.h>

#include <chrono>

#include "base/temp_names.h"
#include "carrier/tags.h"
#include "retrieval/left_previews.h"
#include "retrieval/run_update.h"
#include "tests/retrieval/retrieval_bench.h"
#include "tests/support/surroundings.h"

namespace tarnel::test {
namespace {

using namespace std::chrono_literals;

class ViewScript : public Scripted<ViewScreen> {
 public:
  void ShowExtractingTo(const Path&) override {}
  void ShowProgress(Length value, Length maximum) override { EXPECT_LE(value, maximum); }
  void OpenWithDesktop(const Path& path) override { opened.push_back(path); }

  std::vector<Path> opened;
};

class Preview : public testing::Test {
 protected:
  void View(const std::string& name) {
    parcel = ParcelOf(bench.catalogue.Rows().at(bench.RowNamed(name)));
    ViewParcel();
  }
  void ViewParcel() { view = RunView(parcel, bench.faulty, screen); }
  UpdateResult Update(int level = 9) {
    const UpdateResult result =
        RunUpdate({.parcel = parcel, .previewFile = view.PreviewFile, .compressionLevel = level},
                  bench.faulty, bench.rewriteScreen);
    parcel = result.parcel;
    return result;
  }
  ViewReturn Return(ViewScript& person) { return ReturnFromView(view, bench.faulty, person); }
  Script& script() { return bench.rewriteScreen.script; }

  TempFolder temp;
  RetrievalBench bench{100};
  Variable tempFolder{"TMPDIR", temp.Where()};
  ViewScript screen;
  PreviewParcel parcel;
  ViewResult view;
};

}  // namespace

TEST_F(Preview, OpensAPrivateCopyFolderFirst) {
  bench.Compressed({"a.txt", SampleText(40000), "x"}).Load();
  View("a.txt");
  EXPECT_EQ(view.ending, ViewEnding::Shown);
  EXPECT_EQ(ReadAll(view.PreviewFile), SampleText(40000));
  EXPECT_EQ(screen.opened, (std::vector<Path>{view.PreviewFolder, view.PreviewFile}));
  EXPECT_EQ(view.PreviewFile, view.PreviewFolder / "a.txt");
  EXPECT_EQ(bench.posix.Stat(view.PreviewFolder)->mode, 0700u);
  EXPECT_EQ(bench.posix.Stat(view.PreviewFile)->mode, 0600u);
}

TEST_F(Preview, LeavesNothingPlainBehindADamagedEntryOrACancel) {
  bench.Hide({"a", Pattern(40000)}).Load();
  bench.FlipBit(20000, 1);
  screen.script.Expect("view.error", Answer::Retry).Expect("view.error", Answer::Abort);
  View("a");
  EXPECT_EQ(view.ending, ViewEnding::Aborted);
  EXPECT_EQ(temp.Names(), Strings{});
  screen.script.CancelAtYield(0);
  View("a");
  EXPECT_EQ(view.ending, ViewEnding::Cancelled);
  EXPECT_EQ(temp.Names().size(), 1u) << "the empty folder stays";
  EXPECT_TRUE(screen.opened.empty());
}

TEST_F(Preview, TouchesNoFileButItsOwnWhateverTheNameAndTheAnswer) {
  bench.Hide({"a", "plain"}).Load();
  View("a");
  screen.opened.clear();
  temp.Put("victim", "kept");
  const Strings before = temp.Names();
  for (const std::string& name : Strings{temp / "victim", "../victim", "sub/../../victim", "..", ".", ""})
    for (const Answer answer : {Answer::Abort, Answer::Ignore}) {
      parcel.ViewFileName.assign(name);
      screen.script.Expect("view.error", Answer::Retry).Expect("view.error", answer);
      ViewParcel();
      EXPECT_EQ(view.ending, ViewEnding::Aborted) << name;
      EXPECT_EQ(view.PreviewFile, "") << name;
      EXPECT_EQ(temp.Names(), before) << name;
      EXPECT_EQ(ReadAll(temp / "victim"), "kept");
    }
  EXPECT_TRUE(screen.opened.empty());
}

TEST_F(Preview, TriesAgainOverWhatItHasWritten) {
  bench.Hide({"a", Pattern(40000)}).Load();
  bench.files.Fail({.writes = Writes::FirstHalf, .counts = Calls("File.WriteAt")});
  screen.script.Expect("view.error", Answer::Retry);
  View("a");
  EXPECT_EQ(ReadAll(view.PreviewFile), Pattern(40000));
  for (const Operation& operation : bench.files.Record())
    EXPECT_NE(operation.name, "Folder.Remove");
}

TEST_F(Preview, SaysWhatACancelledViewCouldNotDestroy) {
  bench.Hide({"a", Pattern(40000)}).Load();
  View("a");
  bench.files.Fail({.counts = Calls("File.Sync")});
  screen.script.CancelAtYield(screen.script.Yields() + 2);
  screen.script.Expect("destroy.error", Answer::Abort).Expect("view.attention", Answer::Ok);
  View("a");
  EXPECT_EQ(view.ending, ViewEnding::Cancelled);
  EXPECT_EQ(ReadAll(view.PreviewFile).find_first_not_of(' '), std::string::npos);
}

TEST_F(Preview, DestroysWhatItHasWrittenOnAFullDisk) {
  bench.Hide({"a", Pattern(40000)}).Load();
  bench.files.LimitSpace(20000);
  screen.script.Expect("view.error", Answer::Abort);
  View("a");
  EXPECT_EQ(temp.Names(), Strings{});
}

TEST_F(Preview, LetsNothingElseRunWhileItIsLeft) {
  bench.Hide({"a", "old"}).Load();
  View("a");
  const std::string before = ReadAll(bench.carrier);
  screen.script.Expect("view.return", Answer::No).Expect("view.return-without", Answer::No);
  ViewScript second;
  screen.script.onAsk = [&](const Question&) {
    EXPECT_EQ(Update().refused, UpdateResult::Refused::Busy);
    EXPECT_EQ(Return(second), ViewReturn::Stay);
    EXPECT_EQ(RunView(parcel, bench.faulty, second).ending, ViewEnding::Busy);
  };
  EXPECT_EQ(Return(screen), ViewReturn::Stay);
  EXPECT_EQ(ReadAll(bench.carrier), before);
  script().Expect("update.confirm", Answer::Yes);
  EXPECT_EQ(Update().ending, RewriteEnding::Done) << "the guard goes with the run";
}

TEST_F(Preview, NeverUpdatesFromAFileThatChangesMeanwhile) {
  bench.Hide({"a", "old"}).Load();
  View("a");
  script().Always("update.confirm", Answer::Yes);
  const std::string content = Pattern(200'000, 3);
  for (const std::string& changed : {content + "grown", Pattern(200'000, 4), Pattern(1000, 4)}) {
    WriteAll(view.PreviewFile, content);
    std::size_t reads = 0;
    bench.files.before = [&](const Operation& operation) {
      if (operation.name == "File.ReadAt" && operation.path == view.PreviewFile && ++reads == 3)
        WriteAll(view.PreviewFile, changed);
    };
    script().Expect("update.error", Answer::Retry);
    EXPECT_EQ(Update().ending, RewriteEnding::Done);
    EXPECT_EQ(bench.Contents(), Strings{"a=" + changed});
  }
}

TEST_F(Preview, MovesAnUpdatedEntryToTheEndAndFindsItAgain) {
  bench.Hide({.name = "a", .content = "old", .folder = "f", .mode = "600"}).Hide({"x", "his"}, kOther);
  bench.Hide({"b", "bb"}).Load();
  View("a");
  script().Always("update.confirm", Answer::Yes);
  for (const std::string& content : Strings{"edited", "", Pattern(50000), Pattern(50000)}) {
    WriteAll(view.PreviewFile, content);
    const std::string sizeBefore = parcel.ViewPlainSize;
    EXPECT_EQ(Update().ending, RewriteEnding::Done);
    EXPECT_EQ(Last(script().Asked()).text,
              "The original file size is: " + sizeBefore + " Bites\r\nThe new file size is: " +
                  std::to_string(content.size()) + " Bites\r\n\r\nDo you really want to update?");
    EXPECT_EQ(bench.Contents(), (Strings{"b=bb", "a=" + content}));
    const MirrorRow& row = bench.catalogue.Rows().at(0);
    EXPECT_EQ(std::tuple(parcel.ViewStart, parcel.ViewSize, parcel.ViewTail),
              std::tuple(row.start, row.size, row.tail));
    EXPECT_EQ(row.Field(tag::kPlainSize), std::to_string(content.size()));
    EXPECT_EQ(row.Field(tag::kMode), "600");
    EXPECT_EQ(row.Field(tag::kMtime), "") << "it had none";
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
  bench.extractScreen.script.Always("extract.overwrite", Answer::Yes);
  const std::pair<int, const char*> levels[] = {{3, "3"}, {42, "9"}, {0, "0"}, {6, "0"}};
  for (const auto& [level, stored] : levels) {
    WriteAll(view.PreviewFile, SampleText(90000 + static_cast<std::size_t>(level)));
    EXPECT_EQ(Update(level).ending, RewriteEnding::Done);
    EXPECT_EQ(bench.catalogue.Rows().at(0).Field(tag::kCompressed), stored);
    EXPECT_EQ(bench.catalogue.Rows().at(0).size < 60000, *stored != '0');
    bench.Extract(bench.All());
    EXPECT_EQ(ReadAll(bench.target / "a"), ReadAll(view.PreviewFile)) << level;
  }
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

TEST_F(Preview, IsLeftByDestroyingFileAndFolder) {
  const Answer yes = Answer::Yes;
  const Answer no = Answer::No;
  const struct {
    const char* failing;
    ErrorNumber number;
    Answer first, second, locked;
    std::string asked;
    std::size_t left;    ///< of the folder, the file and another one
    std::size_t at = 1;  ///< which of the failing operations
  } cases[] = {{"", {}, yes, no, {}, "return", 0},
               {"", {}, no, yes, {}, "return return-without", 0},
               {"", {}, no, no, {}, "return return-without", 3},
               {"Files.Remove", {}, yes, no, Answer::Retry, "return locked return", 0},
               {"Files.Stat", ErrorNumber::PermissionDenied, yes, no, {}, "return", 0},
               {"Files.Stat", ErrorNumber::PermissionDenied, yes, no, {}, "return attention", 3, 2},
               {"Files.Stat", ErrorNumber::DeviceIo, yes, no, {}, "return error attention", 3, 2},
               {"Folder.RemoveFolder", ErrorNumber::PermissionDenied, yes, no, {}, "return attention", 1},
               {"Folder.RemoveFolder", ErrorNumber::PathFileAccess, yes, no, Answer::Cancel,
                "return locked attention", 1},
               {"Folder.RemoveFolder", ErrorNumber::DeviceIo, yes, no, {}, "return error attention", 1}};
  bench.Hide({"a", "old"}).Load();
  for (const auto& c : cases) {
    View("a");
    WriteAll(view.PreviewFolder / "a~", "the application's own copy");
    bench.files.Fail({.at = c.at, .number = c.number, .counts = Calls(c.failing)});
    ViewScript person;
    person.script.Always("view.return", c.first).Always("view.return-without", c.second);
    person.script.Always("view.locked", c.locked).Always("view.error", Answer::Abort);
    person.script.Always("view.attention", Answer::Ok).Always("destroy.error", Answer::Abort);
    EXPECT_EQ(Return(person) == ViewReturn::Stay, c.first == no && c.second == no);
    std::string asked;
    for (const Question& question : person.script.Asked())
      if (question.id.starts_with("view.")) asked += (asked.empty() ? "" : " ") + question.id.substr(5);
    EXPECT_EQ(asked, c.asked);
    EXPECT_EQ(temp.Names().size(), c.left) << c.asked;
    std::filesystem::remove_all(view.PreviewFolder);
  }
  for (const Answer answer : {no, yes}) {
    View("a");
    std::filesystem::rename(view.PreviewFile, view.PreviewFolder / "renamed");
    screen.script.Expect("view.return", yes).Expect("view.left-behind", answer);
    EXPECT_EQ(Return(screen), ViewReturn::Leave);
    EXPECT_EQ(std::filesystem::exists(view.PreviewFolder / "renamed"), answer == no);
  }
}

TEST_F(Preview, SaysWhatAReturnWouldLose) {
  bench.Hide({"a", "old"}).Load();
  View("a");
  screen.script.Always("view.return", Answer::No).Always("view.return-without", Answer::No);
  const auto presetOfReturn = [&] {
    EXPECT_EQ(Return(screen), ViewReturn::Stay);
    const std::vector<Question>& asked = screen.script.Asked();
    const Question& question = asked.at(asked.size() - 2);
    EXPECT_EQ(question.text.find("will be lost") != std::string::npos, question.preset == Answer::No);
    return question.preset;
  };
  EXPECT_EQ(presetOfReturn(), Answer::Yes);
  WriteAll(view.PreviewFile, "edited");
  EXPECT_EQ(presetOfReturn(), Answer::No);
  script().Expect("update.confirm", Answer::Yes);
  view.seen = Update().taken;
  EXPECT_EQ(presetOfReturn(), Answer::Yes);
  WriteAll(view.PreviewFile, "editor");
  std::filesystem::last_write_time(view.PreviewFile, std::filesystem::file_time_type::clock::now() + 1s);
  EXPECT_EQ(presetOfReturn(), Answer::No) << "of the same size";
}

TEST_F(Preview, OffersWhatAKilledViewLeftAndNothingElse) {
  bench.Hide({"a", "live"}).Load();
  View("a");
  const Path left = MakeTempFolder(bench.posix, kPreviewPrefix);
  const Path edited = left / "b.txt";
  WriteAll(edited, Pattern(9000));
  std::filesystem::create_directory(left / "sub");
  WriteAll(left / "sub/b~", "plain");
  const Path empty = MakeTempFolder(bench.posix, kPreviewPrefix);
  temp.Put("victim", "kept");
  std::filesystem::create_symlink(temp / "victim", left / "link");
  std::filesystem::create_directory_symlink(temp.Where(), temp / "tarnel-view-aaaaaaaaaaaaaaaa");
  screen.script.Expect("view.left-behind", Answer::No);
  OfferLeftPreviews(screen, bench.posix);
  EXPECT_FALSE(std::filesystem::exists(empty));
  EXPECT_EQ(ReadAll(edited), Pattern(9000));
  EXPECT_EQ(Last(screen.script.Asked()).list,
            (Strings{edited, (left / "link").string(), (left / "sub/b~").string()}));
  const auto other = bench.posix.OpenToRead(edited);  // sees what is overwritten
  screen.script.Expect("view.left-behind", Answer::Yes);
  OfferLeftPreviews(screen, bench.posix);
  EXPECT_FALSE(std::filesystem::exists(left));
  EXPECT_EQ(ReadFileSlice(*other, Position{1}, 9000).find_first_not_of(' '), std::string::npos);
  EXPECT_EQ(ReadAll(temp / "victim"), "kept");
  EXPECT_EQ(ReadAll(view.PreviewFile), "live");
  OfferLeftPreviews(screen, bench.posix);
  view.folder = nullptr;
  screen.script.Expect("view.left-behind", Answer::Yes);
  OfferLeftPreviews(screen, bench.posix);
  EXPECT_FALSE(std::filesystem::exists(view.PreviewFolder));
}

}  // namespace tarnel::test
