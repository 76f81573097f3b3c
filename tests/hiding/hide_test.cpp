#include <gtest/gtest.h>

#include <random>

#include "hiding/questions.h"
#include "hiding/selection.h"
#include "tests/hiding/hide_bench.h"

namespace tarnel::test {

TEST(Hide, BringsEveryByteBackWhateverSizeCipherAndCompression) {
  const std::size_t block = kCopyBlock;
  const std::size_t sizes[] = {0,          1,     block - 33,     block - 32,
                               block - 31, block, 2 * block - 32, 7 * block + 11};
  for (const bool compress : {false, true}) {
    HideBench bench;
    bench.request.compress = compress;
    Contents contents;
    for (const std::size_t size : sizes) {
      const std::string name = "file" + std::to_string(size);
      const std::string content = size % 2 == 0 ? Pattern(size) : SampleText(size);
      bench.Row(name, content);
      contents.emplace(name, content);
    }
    const HideResult result = bench.RunHide();
    EXPECT_EQ(result.ending, HideEnding::Done);
    EXPECT_EQ(result.hidden, std::size(sizes));
    EXPECT_EQ(bench.Found(), contents);
    EXPECT_TRUE(ReadAll(bench.carrier).starts_with(bench.oldBytes));
    EXPECT_FALSE(bench.BackupExists());
    EXPECT_EQ(bench.hideScreen.value, bench.hideScreen.maximum);
  }
}

TEST(Hide, ShowsItsStagesInTheirOrder) {
  HideBench bench;
  bench.Row("a.txt", std::string(kCopyBlock, 'a')).Row("b.txt", "");
  bench.request.compress = true;
  bench.request.originals = Originals::Destroy;
  bench.RunHide();
  Strings shown;
  for (const std::string& line : bench.hideScreen.script.Transcript())
    if (line != "yield") shown.push_back(line);
  EXPECT_EQ(shown, (Strings{"Create backup file", "file 1/2 a.txt 15000", "Compressing", "Encrypting",
                            "Hiding", "done 1", "file 2/2 b.txt 0", "Compressing", "Encrypting", "Hiding",
                            "done 2", "Delete backup file", "Deleting", "Loading", "loaded 2"}));
}

TEST(Hide, WritesARecordOfTheFileAsItStands) {
  struct Case {
    mode_t mode;
    bool compress;
    int level;
    bool saveFolders;
    const char *attributes, *compressed, *folder, *tag;
  };
  const Case cases[] = {
      {0644, false, 6, true, "32", "0", "docs\\old", ""},
      {0444, true, 9, true, "33", "9", "docs\\old", ""},
      {0755, true, 0, false, "32", "0", "", "755"},  // level 0 would read as "not compressed"
      {0400, true, 1, false, "33", "1", "", "400"},
  };
  for (const Case& c : cases) {
    HideBench bench;
    bench.Row("a.txt", "content", "docs\\old", c.mode);
    bench.request.compress = c.compress;
    bench.request.compressionLevel = c.level;
    bench.request.saveFolders = c.saveFolders;
    bench.RunHide();
    EXPECT_EQ(bench.Found(), (Contents{{"a.txt", "content"}}));
    EXPECT_EQ(bench.Field(0, tag::kPlainSize), "7");
    EXPECT_EQ(bench.Field(0, tag::kStoredSize), std::to_string(bench.catalogue.Rows()[0].size));
    EXPECT_EQ(bench.Field(0, tag::kAttributes), c.attributes);
    EXPECT_EQ(bench.Field(0, tag::kCompressed), c.compressed);
    EXPECT_EQ(bench.Field(0, tag::kFolder), c.folder);
    EXPECT_EQ(bench.Field(0, tag::kMode), c.tag);
    EXPECT_EQ(bench.Field(0, tag::kTitle), "Title");
  }
}

TEST(Hide, MakesTwoEntriesOfTwoFilesWithOneNameBehindForeignOnes) {
  HideBench bench;
  bench.With({"x", "foreign"}, Under{"other"}).With({"old", "own"});
  bench.Row("one/a.txt", "first").Row("two/a.txt", "second");
  bench.RunHide();
  EXPECT_EQ(bench.Found(), (Contents{{"a.txt", "first"}, {"a.txt", "second"}, {"old", "own"}}));
  bench.CarrierBench::Load(Under{"other"});
  EXPECT_EQ(bench.Names(), Strings{"x"});
}

TEST(Hide, BringsTheCarriersModeBackUnlessItIsToBeProtected) {
  struct Case {
    mode_t mode;
    bool writeProtect;
    bool cancel;
    mode_t after;
  };
  const Case cases[] = {
      {0644, false, false, 0644}, {0444, false, false, 0444}, {0464, false, false, 0464},
      {0640, true, false, 0440},  {0755, true, false, 0555},  {0444, true, false, 0444},
      {0444, false, true, 0444},  {0644, true, true, 0644},   {0464, true, true, 0464},
  };
  for (const Case& c : cases) {
    HideBench bench;
    bench.Row("a.txt", "content");
    ::chmod(bench.carrier.c_str(), c.mode);
    bench.Remember();
    bench.request.writeProtect = c.writeProtect;
    mode_t backupMode = 0;
    mode_t duringRun = 0;
    bench.hideScreen.script.onYield = [&](std::size_t) {
      if (!bench.BackupExists()) return;
      backupMode = HideBench::ModeOf(BackupPath(bench.carrier));
      duringRun = HideBench::ModeOf(bench.carrier);
    };
    if (c.cancel) bench.hideScreen.script.CancelAtYield(0);
    const HideResult result = bench.RunHide();
    EXPECT_EQ(result.ending, c.cancel ? HideEnding::Cancelled : HideEnding::Done);
    EXPECT_EQ(HideBench::ModeOf(bench.carrier), c.after);
    EXPECT_EQ(backupMode, c.mode);
    EXPECT_EQ(duringRun, c.mode | 0200);
  }
}

TEST(Hide, LeavesTheModeAloneWhenItEndsForLackOfSpaceEvenIfProtectionIsWanted) {
  for (const mode_t mode : {0644U, 0444U, 0464U}) {
    HideBench bench;
    bench.Row("a.txt", "small").Row("b.txt", Pattern(5000));
    ::chmod(bench.carrier.c_str(), mode);
    bench.Remember();
    bench.request.writeProtect = true;
    bench.request.originals = Originals::Destroy;
    FaultyFiles files(bench.posix);
    files.LimitSpace(1000 + 2000);
    bench.hideScreen.script.Expect("hide.no-space", Answer::Cancel);
    const HideResult result = bench.RunHideOn(files);
    EXPECT_EQ(result.ending, HideEnding::NoSpace);
    EXPECT_EQ(result.hidden, 1U);
    EXPECT_EQ(HideBench::ModeOf(bench.carrier), mode);
    EXPECT_FALSE(bench.BackupExists());
    EXPECT_EQ(bench.Found(), (Contents{{"a.txt", "small"}}));
    EXPECT_EQ(ReadAll(bench.Source("a.txt")), "small");
  }
}

TEST(Hide, GoesOnWhenTheUserHasMadeRoomAndNamesTheBytesThatItNeeds) {
  for (const bool compress : {false, true}) {
    HideBench bench;
    bench.Row("a.txt", SampleText(20000));
    bench.request.compress = compress;
    FaultyFiles files(bench.posix);
    files.LimitSpace(1000 + 3000);
    bench.hideScreen.script.Expect("hide.no-space", Answer::Retry).Expect("hide.no-space", Answer::Retry);
    int asked = 0;
    bench.hideScreen.script.onAsk = [&](const Question&) {
      if (++asked == 2) files.LimitSpace(50000);
    };
    EXPECT_EQ(bench.RunHideOn(files).ending, HideEnding::Done);
    EXPECT_EQ(bench.Found(), (Contents{{"a.txt", SampleText(20000)}}));
    const std::string required = "Required: " + bench.Field(0, tag::kStoredSize) + " bytes of free space!";
    for (const Question& question : bench.hideScreen.script.Asked())
      EXPECT_NE(question.text.find(required), std::string::npos) << question.text;
  }
}

TEST(Hide, ReplacesAnOldBackupWithoutAQuestionAndNotWhatItPointsTo) {
  HideBench bench;
  bench.Row("a.txt", "content");
  const Path elsewhere = bench.folder.Put("elsewhere", "keep me");
  std::filesystem::create_symlink(elsewhere, BackupPath(bench.carrier));
  EXPECT_EQ(bench.RunHide().ending, HideEnding::Done);
  EXPECT_FALSE(std::filesystem::is_symlink(BackupPath(bench.carrier)));
  EXPECT_EQ(ReadAll(elsewhere), "keep me");
}

TEST(Hide, CancelAtEveryYieldLeavesTheOldCarrierOrACompleteOne) {
  for (std::size_t n = 0;; ++n) {
    HideBench bench;
    bench.With({"old"}).Row("a.txt", Pattern(2 * kCopyBlock)).Row("b.txt", "short");
    ::chmod(bench.carrier.c_str(), 0440);
    bench.Remember();
    bench.request.originals = Originals::Destroy;
    bench.hideScreen.script.CancelAtYield(n);
    const HideResult result = bench.RunHide();
    EXPECT_FALSE(bench.BackupExists());
    if (result.ending == HideEnding::Done) {
      EXPECT_EQ(bench.Found().size(), 3U);
      EXPECT_GE(n, 7U);
      break;
    }
    EXPECT_EQ(result.ending, HideEnding::Cancelled);
    EXPECT_EQ(result.hidden, 0U);
    EXPECT_TRUE(bench.IsOld()) << "cancelled at yield " << n;
    EXPECT_EQ(bench.Found().size(), 1U);
    EXPECT_TRUE(std::filesystem::exists(bench.Source("a.txt")));
  }
}

TEST(Hide, SeesThatASourceChangesWhileItIsRead) {
  struct Case {
    std::string content;
    std::size_t newSize;
    bool compress;
  };
  const Case cases[] = {{Pattern(200000), 200001, false}, {Pattern(200000), 100, false}, {"", 1, false},
                        {Pattern(200000), 200001, true},  {Pattern(200000), 100, true},  {"", 1, true}};
  for (const Case& c : cases) {
    for (const Answer answer : {Answer::Retry, Answer::Ignore}) {
      HideBench bench;
      bench.Row("a.txt", c.content).Row("b.txt", "other");
      bench.request.compress = c.compress;
      FaultyFiles files(bench.posix);
      int looks = 0;
      files.before = [&](const Operation& operation) {  // while the file is read, or behind it if it is empty
        const char* const moment = c.content.empty() ? "File.Stat" : "File.ReadAt";
        if (operation.path == bench.Source("a.txt") && operation.name == moment && ++looks == 2)
          std::filesystem::resize_file(bench.Source("a.txt"), c.newSize);
      };
      bench.hideScreen.script.Expect("hide.error", answer);
      const HideResult result = bench.RunHideOn(files);
      EXPECT_NE(bench.hideScreen.script.Asked().at(0).text.find("changed while"), std::string::npos);
      EXPECT_EQ(result.ending, HideEnding::Done);
      const std::string now = ReadAll(bench.Source("a.txt"));
      EXPECT_EQ(bench.Found(), answer == Answer::Ignore ? (Contents{{"b.txt", "other"}})
                                                        : (Contents{{"a.txt", now}, {"b.txt", "other"}}));
    }
  }
}

TEST(Hide, LeavesOutARowThatIsIgnoredAndKeepsTheOthers) {
  HideBench bench;
  bench.Row("a.txt", "first").Row("gone.txt", "").Row("b.txt", "last");
  std::filesystem::remove(bench.Source("gone.txt"));
  bench.hideScreen.script.Expect("hide.error", Answer::Ignore);
  const HideResult result = bench.RunHide();
  EXPECT_EQ(result.ending, HideEnding::Done);
  EXPECT_EQ(result.hidden, 2U);
  EXPECT_EQ(result.leftOut, std::vector<Path>{bench.Source("gone.txt")});
  EXPECT_EQ(bench.Found(), (Contents{{"a.txt", "first"}, {"b.txt", "last"}}));
  const Question question = bench.hideScreen.script.Asked().at(0);
  EXPECT_EQ(question.text.substr(0, 11), "Error: 53\n\r");
  EXPECT_EQ(question.preset, Answer::Retry);
}

TEST(Hide, AbortKeepsWhatWasWrittenAndTheBackupAndReloadsTheNewestEntryOnly) {
  HideBench bench;
  bench.With({"old"}).Row("a.txt", "first").Row("gone.txt", "");
  ::chmod(bench.carrier.c_str(), 0444);
  bench.Remember();
  std::filesystem::remove(bench.Source("gone.txt"));
  bench.hideScreen.script.Expect("hide.error", Answer::Abort);
  const HideResult result = bench.RunHide();
  EXPECT_EQ(result.ending, HideEnding::Aborted);
  EXPECT_EQ(result.backup, BackupPath(bench.carrier));
  EXPECT_TRUE(bench.BackupIsOld());
  EXPECT_EQ(HideBench::ModeOf(bench.carrier), 0644U);
  EXPECT_EQ(bench.hideScreen.script.Transcript().back(), "loaded 2");
}

TEST(Hide, AbortInTheMiddleOfAPayloadClosesTheHideout) {
  HideBench bench;
  bench.With({"old"}).Row("a.txt", Pattern(20 * kCopyBlock));
  bench.CarrierBench::Load();
  FaultyFiles files(bench.posix);
  files.Fail({.at = 2, .writes = Writes::FirstHalf, .counts = [&](const Operation& operation) {
                return operation.name == "File.WriteAt" && operation.path == bench.carrier;
              }});
  bench.hideScreen.script.Expect("hide.error", Answer::Abort);
  EXPECT_EQ(bench.RunHideOn(files).ending, HideEnding::Aborted);
  EXPECT_GT(bench.Size(), static_cast<Length>(bench.oldBytes.size()));
  EXPECT_TRUE(bench.BackupIsOld());
  EXPECT_EQ(bench.hideScreen.script.Transcript().back(), "gone");
  EXPECT_TRUE(bench.catalogue.Rows().empty());
  EXPECT_EQ(bench.catalogue.FindRoot(bench.carrier), nullptr);
}

TEST(Hide, EndsWithTheOldCarrierWhereTwoGibibytesWouldBeReached) {
  for (const bool compress : {false, true}) {
    HideBench bench;
    bench.Row("a.txt", "first").Row("big", "");
    std::filesystem::resize_file(bench.Source("big"), compress ? 0x80000000U : 0x7FFFFF00U);  // sparse
    bench.request.compress = compress;
    bench.hideScreen.script.Expect("hide.too-large", Answer::Ok);
    EXPECT_EQ(bench.RunHide().ending, HideEnding::TooLarge);
    EXPECT_TRUE(bench.IsOld());
    EXPECT_FALSE(bench.BackupExists());
  }
}

TEST(Hide, WritesTheNewBytesAgainBeforeASecondSync) {
  HideBench bench;
  bench.Row("a.txt", Pattern(300000));
  FaultyFiles files(bench.posix);
  files.Fail({.at = 1, .counts = [&](const Operation& operation) {
                return operation.name == "File.Sync" && operation.path == bench.carrier;
              }});
  bench.hideScreen.script.Expect("hide.error", Answer::Retry);
  EXPECT_EQ(bench.RunHideOn(files).ending, HideEnding::Done);
  std::size_t rewritten = 0;
  bool isSynced = false;
  for (const Operation& operation : files.Record()) {
    if (operation.path != bench.carrier) continue;
    if (operation.name == "File.Sync") isSynced = true;
    if (isSynced && operation.name == "File.WriteAt") ++rewritten;
  }
  EXPECT_EQ(rewritten, 2U);
  EXPECT_EQ(bench.Found(), (Contents{{"a.txt", Pattern(300000)}}));
}

TEST(Hide, KeepsBackupAndOriginalsIfTheSyncIsIgnored) {
  HideBench bench;
  bench.Row("a.txt", "content");
  bench.request.originals = Originals::Destroy;
  FaultyFiles files(bench.posix);
  files.Fail({.at = 1, .counts = [&](const Operation& operation) {
                return operation.name == "File.Sync" && operation.path == bench.carrier;
              }});
  bench.hideScreen.script.Expect("hide.error", Answer::Ignore);
  const HideResult result = bench.RunHideOn(files);
  EXPECT_EQ(result.ending, HideEnding::Done);
  EXPECT_EQ(result.backup, BackupPath(bench.carrier));
  EXPECT_TRUE(bench.BackupIsOld());
  EXPECT_EQ(result.originalsLeft, std::vector<Path>{bench.Source("a.txt")});
}

TEST(Hide, BringsEveryNameBackByteForByte) {
  class WalkScreen : public Scripted<SelectionScreen> {
    void ShowAdded(const Path&, std::size_t) override {}
  } walkScreen;
  HideBench bench;
  std::mt19937 generator(7);
  std::map<std::string, std::string> expected;
  for (std::size_t i = 0; i < 120; ++i) {
    std::string name = i == 0 ? std::string(255, '\xE4') : i == 1 ? "?Fls=<5" : i == 2 ? "a>b\\c" : "";
    while (name.size() < 1 + i % 12)
      name += static_cast<char>(1 + generator() % 255);
    std::erase(name, '/');
    if (name.empty() || name == "." || name == "..") continue;
    bench.folder.Put("names/sub\xFF>/" + name, name);
    expected[name] = name;
  }
  Selection selection(bench.posix, walkScreen);
  selection.AddWholeFolder(bench.folder / "names");
  bench.request.rows = selection.Rows();
  ASSERT_EQ(bench.RunHide().hidden, expected.size());
  EXPECT_EQ(bench.Found(), Contents(expected.begin(), expected.end()));
  const std::string stored = bench.Field(0, tag::kFolder);
  EXPECT_EQ(ToPlatform(stored.substr(stored.find('\\') + 1)), "sub\xFF>");
}

}  // namespace tarnel::test
