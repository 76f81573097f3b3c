#include <gtest/gtest.h>

#include <cerrno>
#include <optional>
#include <tuple>

#include "base/attempt.h"
#include "hiding/entry_writer.h"
#include "tests/hiding/hide_bench.h"
#include "tests/support/surroundings.h"

namespace tarnel::test {

namespace {

const std::string contentOfB = SampleText(40);

/// Two files into a write-protected carrier that holds one already; the originals are to be destroyed.
struct SweepBench : HideBench {
  explicit SweepBench(HideEnding ending)
      : contentOfA(Pattern(ending == HideEnding::Done ? kCopyBlock + 100 : 17 * kCopyBlock)) {
    With({"old"}).Row("a.txt", contentOfA).Row("b.txt", contentOfB).Mode(0440);
    request.compress = ending == HideEnding::Done;
    request.originals = Originals::Destroy;
    if (ending == HideEnding::Done) return;
    request.rows.pop_back();  // so that the cancel comes in the middle of an entry
    script.onYield = [this](std::size_t) {
      if (Size() > static_cast<Length>(oldBytes.size())) script.isCancelled = true;
    };
  }

  /// Retry wears out after a few tries, for a fault that stays.
  void AnswerAllWith(Answer answer) {
    for (const char* id : {"hide.error", "load.error", "destroy.error", "remove.error"})
      script.Always(id, answer);
    script.Always("hide.no-space", answer == Answer::Retry ? Answer::Retry : Answer::Cancel);
    script.onAsk = [this](const Question&) {
      if (script.Asked().size() == 4) AnswerAllWith(Answer::Abort);
    };
  }

  /// What must hold whatever fails: the old carrier, or a whole one, or the old one as backup; and no
  /// original has gone whose entry can't be read.
  void ExpectNothingLost(const std::optional<HideResult>& result) {
    const ContentsByName hidden = Found();
    const bool oldEntryReads = hidden.contains("old");
    EXPECT_TRUE(oldEntryReads || BackupIsOld());
    for (const auto& [name, content] : {std::pair{"a.txt", contentOfA}, std::pair{"b.txt", contentOfB}}) {
      const auto entry = hidden.find(name);
      const bool reads = entry != hidden.end() && entry->second == content;
      EXPECT_TRUE(entry == hidden.end() || reads) << name;
      const bool stands = std::filesystem::exists(Source(name)) && ReadAll(Source(name)) == content;
      EXPECT_TRUE(reads || stands) << name;
    }
    if (!result) {
      EXPECT_EQ(ReadAll(carrier), oldBytes);
      return;
    }
    EXPECT_TRUE(result->backup.empty() || BackupIsOld());
    EXPECT_TRUE(result->backup.empty() || !result->isComplete);
    const bool isWhole = oldEntryReads && hidden.size() == 1 + result->hidden;
    EXPECT_TRUE(isWhole || (result->ending == HideEnding::Aborted && !result->backup.empty()));
    const bool originalIsGone =
        !std::filesystem::exists(Source("a.txt")) || ReadAll(Source("a.txt")) != contentOfA;
    EXPECT_TRUE(!originalIsGone || (result->isComplete && isWhole));
    EXPECT_TRUE(result->ending != HideEnding::Cancelled || ReadAll(carrier) == oldBytes);
  }

  const std::string contentOfA;  ///< takes two writes where the hide is cancelled
};

class HideSweep : public testing::TestWithParam<std::tuple<HideEnding, Answer, Times>> {};

}  // namespace

TEST(Hide, BringsEveryByteBackWhateverSizeNameCompressionAndOldBackup) {
  const std::size_t block = kCopyBlock;
  for (const int level : {0, 6}) {  // level 0 would read as "not compressed"
    HideBench bench;
    bench.With({"x", "foreign"}, Under{"other"}).With({"a", "own"});
    bench.Row("one/a", "first").Row("two/a", "second");
    bench.request.compress = true;
    bench.request.compressionLevel = level;
    ContentsByName contents{{"a", "own"}, {"a", "first"}, {"a", "second"}};
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, block - 33, block - 32, block - 31, block,
                                   2 * block - 32, 16 * block - 32, 33 * block + 1}) {
      const std::string name = "\xFF?Fls=<" + std::to_string(size);
      const std::string content = size % 2 == 0 ? Pattern(size) : SampleText(size);
      bench.Row(name, content);
      contents.emplace(name, content);
    }
    const Path elsewhere = bench.folder.Put("elsewhere", "keep me");
    std::filesystem::create_symlink(elsewhere, BackupPath(bench.carrier));
    EXPECT_EQ(bench.RunHide().hidden, bench.request.rows.size());
    EXPECT_EQ(bench.Found(), contents);
    EXPECT_TRUE(ReadAll(bench.carrier).starts_with(bench.oldBytes));
    EXPECT_FALSE(std::filesystem::is_symlink(BackupPath(bench.carrier)));
    EXPECT_EQ(ReadAll(elsewhere), "keep me");
    EXPECT_EQ(bench.hideScreen.value, bench.hideScreen.maximum);
    bench.CarrierBench::Load(Under{"other"});
    EXPECT_EQ(bench.Names(), Strings{"x"});
  }
}

TEST(Hide, ShowsItsStagesInTheirOrder) {
  HideBench bench;
  bench.Row("a.txt", std::string(kCopyBlock, 'a')).Row("b.txt", "");
  bench.request.compress = true;
  bench.request.originals = Originals::Destroy;
  bench.RunHide();
  Strings shown = bench.script.Transcript();
  std::erase(shown, "yield");
  EXPECT_EQ(shown, (Strings{"Create backup file", "file 1/2 a.txt 15000", "Compressing", "Encrypting",
                            "Hiding", "done 1", "file 2/2 b.txt 0", "Compressing", "Encrypting", "Hiding",
                            "done 2", "Delete backup file", "Deleting", "Loading", "loaded 2"}));
}

TEST(Hide, WritesARecordOfTheFileAsItStands) {
  for (const bool saveFolders : {false, true}) {
    HideBench bench;
    for (const mode_t mode : {0644U, 0444U, 0755U, 0400U})
      bench.Row("a" + std::to_string(mode), "content", "docs\\old", mode);
    bench.request.compress = true;
    bench.request.compressionLevel = 9;
    bench.request.saveFolders = saveFolders;
    bench.RunHide();
    EXPECT_EQ(bench.Found().size(), 4U);
    Strings records;
    for (const MirrorRow& row : bench.catalogue.Rows()) {
      records.emplace_back(row.Field(tag::kAttributes));
      records.back() += " " + std::string(row.Field(tag::kMode));
      EXPECT_EQ(row.Folder(), saveFolders ? "docs\\old" : "");
      EXPECT_EQ(row.Field(tag::kCompressed), "9");
      EXPECT_EQ(row.Field(tag::kPlainSize), "7");
      EXPECT_EQ(row.Field(tag::kTitle), "Title");
      EXPECT_EQ(row.Field(tag::kStoredSize), std::to_string(row.size));
    }
    EXPECT_EQ(records, (Strings{"33 400", "32 755", "33 ", "32 "}));
  }
}

TEST(Hide, BringsTheCarriersModeBackUnlessAllIsHiddenAndToBeProtected) {
  using enum HideEnding;
  const struct {
    HideEnding ending;
    mode_t mode;
    bool writeProtect;
    mode_t after;
  } cases[] = {{Done, 0444, false, 0444},   {Done, 0464, false, 0464},     {Done, 0640, true, 0440},
               {Done, 0755, true, 0555},    {Done, 0444, true, 0444},      {Done, 0400, false, 0400},
               {NoSpace, 0464, true, 0464}, {Cancelled, 0644, true, 0644}, {Cancelled, 0444, false, 0444}};
  for (const auto& c : cases) {
    HideBench bench;
    bench.Row("a.txt", "small").Row("b.txt", Pattern(5000)).Mode(c.mode);
    const OrdinaryUser user;  // one's own write-protected carrier is no obstacle
    bench.request.writeProtect = c.writeProtect;
    bench.request.originals = Originals::Destroy;
    mode_t backupMode = 0;
    mode_t duringRun = 0;
    bench.script.onYield = [&](std::size_t) {
      if (!bench.BackupExists()) return;
      backupMode = HideBench::ModeOf(BackupPath(bench.carrier));
      duringRun |= HideBench::ModeOf(bench.carrier);
    };
    if (c.ending == Cancelled) bench.script.CancelAtYield(0);
    if (c.ending == NoSpace) bench.files.LimitSpace(1000 + 2000);
    bench.script.Always("hide.no-space", Answer::Cancel);
    EXPECT_EQ(bench.RunHide().ending, c.ending);
    EXPECT_EQ(bench.Found().size(), c.ending == Done ? 2U : c.ending == NoSpace ? 1U : 0U);
    EXPECT_EQ(std::filesystem::exists(bench.Source("a.txt")), c.ending != Done);
    EXPECT_EQ(HideBench::ModeOf(bench.carrier), c.after);
    EXPECT_EQ(backupMode, c.mode);
    EXPECT_EQ(duringRun, c.mode | 0200);
    EXPECT_FALSE(bench.BackupExists());
  }
}

TEST(Hide, GoesOnWhenTheUserHasMadeRoomAndNamesTheBytesThatItNeeds) {
  for (const bool compress : {false, true}) {
    HideBench bench;
    bench.Row("a.txt", SampleText(20000));
    bench.request.compress = compress;
    bench.files.LimitSpace(1000 + 3000);
    bench.script.Expect("hide.no-space", Answer::Retry).Expect("hide.no-space", Answer::Retry);
    bench.script.onAsk = [&](const Question&) {
      if (bench.script.Asked().size() == 2) bench.files.LimitSpace(50000);
    };
    EXPECT_EQ(bench.RunHide().ending, HideEnding::Done);
    EXPECT_EQ(bench.Found(), (ContentsByName{{"a.txt", SampleText(20000)}}));
    const std::string required =
        "Required: " + std::to_string(bench.catalogue.Rows().at(0).size) + " bytes of free space!";
    for (const Question& question : bench.script.Asked())
      EXPECT_NE(question.text.find(required), std::string::npos) << question.text;
  }
}

TEST(Hide, CancelAtEveryYieldLeavesTheOldCarrierOrACompleteOne) {
  for (std::size_t n = 0;; ++n) {
    HideBench bench;
    bench.With({"old"}).Row("a.txt", Pattern(20 * kCopyBlock)).Row("b.txt", "short").Mode(0440);
    bench.request.originals = Originals::Destroy;
    bench.script.CancelAtYield(n);
    int written = 0;  // since the cancel
    bench.files.before = [&](const Operation& operation) {
      if (bench.script.isCancelled && operation.name == "File.WriteAt") ++written;
    };
    const HideResult result = bench.RunHide();
    EXPECT_FALSE(bench.BackupExists());
    if (result.ending == HideEnding::Done) {
      EXPECT_EQ(bench.Found().size(), 3U);
      EXPECT_GE(n, 25U);
      break;
    }
    EXPECT_EQ(result.ending, HideEnding::Cancelled);
    EXPECT_LE(written, 2) << "a cancel is seen at the next block";
    EXPECT_EQ(result.hidden, 0U);
    EXPECT_TRUE(bench.IsOld()) << "cancelled at yield " << n;
    EXPECT_TRUE(std::filesystem::exists(bench.Source("a.txt")));
  }
}

TEST(Hide, EndsWithTheOldCarrierWhereTwoGibibytesWouldBeReached) {
  for (const bool compress : {false, true}) {
    HideBench bench;
    bench.Row("a.txt", "first").Row("big", "");
    std::filesystem::resize_file(bench.Source("big"), compress ? 0x80000000U : 0x7FFFFF00U);  // sparse
    bench.request.compress = compress;
    bench.script.Expect("hide.too-large", Answer::Ok);
    EXPECT_EQ(bench.RunHide().ending, HideEnding::TooLarge);
    EXPECT_TRUE(bench.IsOld());
    EXPECT_FALSE(bench.BackupExists());
  }
}

TEST(Hide, LeavesOutASourceThatChangesWhileItIsRead) {
  const struct {
    std::string content;
    std::size_t newSize;
    const char* moment;  ///< while the file is read, or behind it if it is empty
  } cases[] = {
      {Pattern(200000), 200001, "File.ReadAt"}, {Pattern(200000), 100, "File.ReadAt"}, {"", 1, "File.Stat"}};
  for (const auto& c : cases) {
    for (const bool compress : {false, true}) {
      HideBench bench;
      bench.Row("a.txt", c.content).Row("b.txt", "other");
      bench.request.compress = compress;
      int looks = 0;
      bench.files.before = [&](const Operation& operation) {
        if (operation.path == bench.Source("a.txt") && operation.name == c.moment && ++looks == 2)
          std::filesystem::resize_file(bench.Source("a.txt"), c.newSize);
      };
      bench.script.Expect("hide.error", Answer::Ignore);
      EXPECT_EQ(bench.RunHide().ending, HideEnding::Done);
      EXPECT_EQ(bench.Found(), (ContentsByName{{"b.txt", "other"}}));
    }
  }
}

TEST(Hide, AbortKeepsWholeEntriesAndTheBackupAndClosesAHideoutWithAPartOfOne) {
  for (const bool isInside : {false, true}) {
    HideBench bench;
    bench.With({"old"}).Row("a.txt", "first").Row("b.txt", Pattern(20 * kCopyBlock)).Mode(0444);
    bench.CarrierBench::Load();
    bench.files.Fail(isInside ? FailingCall("File.WriteAt", bench.carrier, 3)
                              : FailingCall("Files.OpenToRead", bench.Source("b.txt")));
    bench.script.Expect("hide.error", Answer::Abort);
    const HideResult result = bench.RunHide();
    EXPECT_EQ(result.ending, HideEnding::Aborted);
    EXPECT_EQ(result.backup, BackupPath(bench.carrier));
    EXPECT_TRUE(bench.BackupIsOld());
    EXPECT_EQ(HideBench::ModeOf(bench.carrier), 0644U);
    EXPECT_EQ(Last(bench.script.Transcript()), isInside ? "gone" : "loaded 2");
    EXPECT_EQ(bench.catalogue.FindRoot(bench.carrier) == nullptr, isInside);
    EXPECT_EQ(bench.script.Asked().at(0).text.substr(0, 11), "Error: 57\n\r");
    EXPECT_EQ(bench.script.Asked().at(0).preset, Answer::Retry);
  }
}

TEST(Hide, WritesAgainAfterAFailedSyncOrKeepsBackupAndOriginals) {
  for (const bool retry : {false, true}) {
    HideBench bench;
    bench.Row("a.txt", Pattern(300000));
    bench.request.originals = Originals::Destroy;
    bench.files.Fail(FailingCall("File.Sync", bench.carrier));
    bench.script.Expect("hide.error", retry ? Answer::Retry : Answer::Ignore);
    const HideResult result = bench.RunHide();
    EXPECT_EQ(result.ending, HideEnding::Done);
    EXPECT_EQ(result.originalsLeft.empty(), retry);
    EXPECT_EQ(result.backup.empty(), retry);
    EXPECT_EQ(bench.BackupIsOld(), !retry);
    Strings calls;
    for (const Operation& operation : bench.files.Record())
      if (operation.path == bench.carrier) calls.push_back(operation.name);
    const auto sync = std::find(calls.begin(), calls.end(), "File.Sync");
    EXPECT_EQ(std::count(sync, calls.end(), "File.WriteAt"), retry ? 2 : 0);
    EXPECT_EQ(bench.Found(), (ContentsByName{{"a.txt", Pattern(300000)}}));
  }
}

TEST(Hide, DoesNotTrustASyncThatWorksOnlyWhenTriedAgainBeforeTheEntriesReadBack) {
  HideBench bench;
  bench.Row("a.txt", Pattern(300000));
  bench.request.originals = Originals::Destroy;
  bench.files.Fail(FailingCall("File.Sync", bench.carrier));
  bench.script.Expect("hide.error", Answer::Retry).Expect("hide.error", Answer::Abort);
  bench.script.onAsk = [&](const Question&) {  // the pages that failed to be written are dropped
    if (bench.script.Asked().size() == 1) bench.FlipBit(2000, 1);
  };
  const HideResult result = bench.RunHide();
  EXPECT_EQ(result.ending, HideEnding::Aborted);
  EXPECT_FALSE(result.isComplete);
  EXPECT_TRUE(bench.BackupIsOld());
  EXPECT_EQ(ReadAll(bench.Source("a.txt")), Pattern(300000));
}

TEST(Hide, OffersTheOldCarrierAsTheWayBackOnlyUntilTheNewOneIsComplete) {
  for (const std::string call : {"Files.Remove", "File.SetMode"}) {
    HideBench bench;
    bench.Row("a.txt", "content").Row("b.txt", "more").Mode(call == "Files.Remove" ? 0644 : 0444);
    bench.request.originals = Originals::Destroy;
    bench.files.Fail(call == "Files.Remove" ? FailingCall(call, BackupPath(bench.carrier))
                                            : FailingCall(call, bench.carrier, 2));
    bench.script.Expect("hide.error", Answer::Abort);
    const HideResult result = bench.RunHide();
    EXPECT_EQ(result.ending, HideEnding::Aborted);
    EXPECT_TRUE(result.isComplete);
    EXPECT_EQ(result.hidden, 2U);
    EXPECT_EQ(result.originalsLeft.size(), 2U) << "they should have gone";
    EXPECT_EQ(result.backup, Path());
    EXPECT_EQ(result.needlessBackup.empty(), call == "File.SetMode");
  }
}

TEST(Hide, CutsNothingThatAnotherProgramAppendedMeanwhile) {
  for (const std::string moment : {"Files.Stat", "File.WriteAt", "Files.SyncFolder"}) {
    HideBench bench;
    bench.Row("a.txt", "content").Row("b.txt", "more");
    bench.files.before = [&](const Operation& operation) {  // before, while and after the backup is made
      const bool fits = operation.path == BackupPath(bench.carrier) || moment == "Files.SyncFolder";
      if (operation.name == moment && fits && bench.Size() == 1000) bench.Append("foreign");
    };
    bench.script.Expect("hide.error", Answer::Abort);
    EXPECT_EQ(bench.RunHide().ending, HideEnding::Aborted);
    EXPECT_EQ(ReadAll(bench.carrier), bench.oldBytes + "foreign");
    EXPECT_FALSE(bench.BackupExists());
  }
}

TEST(Hide, AnOldBackupGoesOnlyWhenANewOneIsWhole) {
  HideBench bench;
  bench.Row("a.txt", "content");
  bench.folder.Put("carrier.bin.bak", "rescue copy");
  bench.files.LimitSpace(500);
  bench.script.Expect("hide.error", Answer::Abort);
  bench.RunHide();
  EXPECT_EQ(ReadAll(BackupPath(bench.carrier)), "rescue copy");
  EXPECT_EQ(bench.folder.Names().size(), 4U) << "no part of a copy";
}

TEST(Hide, WorksWhereLocksAreMandatoryAndModesAreRefused) {
  for (const Originals originals : {Originals::Destroy, Originals::Keep}) {
    HideBench bench;
    bench.With({"old"}).Row("a.txt", "content");
    bench.request.originals = originals;
    bench.files.locksAreMandatory = true;
    bench.files.Fail({.number = ErrorNumber::PermissionDenied,
                      .code = EPERM,
                      .times = Times::FromThenOn,
                      .counts = [](const Operation& operation) {
                        return operation.name == "File.SetMode" || operation.name == "File.SetOwner";
                      }});
    bench.Mode(0600);
    EXPECT_EQ(bench.RunHide().ending, HideEnding::Done);
    EXPECT_EQ(bench.Found().size(), 2U);
  }
}

TEST(Hide, CutsTheCarrierThroughToTheMediumBeforeTheBackupGoes) {
  HideBench bench;
  bench.Row("a.txt", Pattern(17 * kCopyBlock));
  bench.script.onYield = [&](std::size_t) { bench.script.isCancelled = bench.Size() > 1000; };
  EXPECT_EQ(bench.RunHide().ending, HideEnding::Cancelled);
  std::string order;
  for (const Operation& operation : bench.files.Record())
    if (operation.path == bench.carrier || operation.path == BackupPath(bench.carrier))
      order += operation.name + " ";
  const auto place = [&](const std::string& name) { return order.rfind(name); };
  EXPECT_LT(place("File.Truncate"), place("File.Sync")) << order;
  EXPECT_LT(place("File.Sync"), place("Files.Remove")) << order;
}

TEST(Hide, NeverTakesHalfAnEntryAtTheEndForAWholeOne) {
  HideBench bench;
  bench.Row("a.txt", "first").Row("b.txt", Pattern(17 * kCopyBlock));
  bool hasFailed = false;
  bench.files.Fail(
      {.times = Times::FromThenOn, .writes = Writes::FirstHalf, .counts = [&](const Operation& o) {
         hasFailed |= o.name == "File.WriteAt" && bench.Size() > 1100;
         return hasFailed && (o.name == "File.WriteAt" || o.name == "File.Truncate") &&
                o.path == bench.carrier;
       }});
  bench.script.Always("hide.error", Answer::Ignore).Always("load.error", Answer::Abort);
  const HideResult result = bench.RunHide();
  EXPECT_EQ(result.ending, HideEnding::Aborted);
  EXPECT_EQ(result.backup, BackupPath(bench.carrier));
  EXPECT_TRUE(bench.BackupIsOld());
}

TEST(EntryWriter, EndsExactlyAtTheLimitAndNeverBehindIt) {
  const Length end = kCarrierLimit - 2 * static_cast<Length>(kCopyBlock) - 4;
  for (const std::size_t excess : {std::size_t{0}, std::size_t{1}}) {
    HideBench bench;
    bench.CutTo(end);  // sparse
    HideProgress progress;
    const auto carrier = bench.files.OpenToChange(bench.carrier);
    EntryWriter writer(*carrier, bench.carrier, end, bench.hideScreen, progress);
    writer.Write(AsBytes(Pattern(2 * kCopyBlock)));
    writer.FinishPayload();
    const auto finish = [&] { writer.FinishEntry(std::string(4 + excess, 't')); };
    if (excess == 0)
      EXPECT_NO_THROW(finish());
    else
      EXPECT_THROW(finish(), Stop);
    EXPECT_EQ(bench.Size(), kCarrierLimit - (excess ? 4 : 0));
  }
}

TEST(HideRefusal, ComesForWhatBelongsToTheCarrierBeforeAnythingChanges) {
  for (const std::string name : {"carrier.bin", "sources/../carrier.bin", "link", "second name",
                                 "carrier.bin.bak", "link to backup", "carrier.bin.tmp"}) {
    HideBench bench;
    bench.Row("a.txt", "content").Mode(0444);
    std::filesystem::create_symlink(bench.carrier, bench.folder / "link");
    std::filesystem::create_hard_link(bench.carrier, bench.folder / "second name");
    const Path backup = bench.folder.Put("carrier.bin.bak", "old backup");
    std::filesystem::create_symlink(backup, bench.folder / "link to backup");
    bench.folder.Put("carrier.bin.tmp", "left over");
    bench.RowOf(bench.folder / name);
    const Strings namesBefore = bench.folder.Names();
    try {
      bench.RunHide();
      ADD_FAILURE() << "hid " << name;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorNumber::PathFileAccess) << error.Description();
    }
    EXPECT_TRUE(bench.IsOld());
    EXPECT_EQ(ReadAll(backup), "old backup");
    EXPECT_EQ(bench.folder.Names(), namesBefore);
  }
  HideBench bench;
  bench.request.rows.push_back({.source = bench.folder / "carrier.bin.bak", .name = "a", .folder = {}});
  EXPECT_THROW(bench.RunHide(), Error) << "that is not there yet";
}

TEST(HideRefusal, ComesForALockedCarrierAndForAnAlgorithmWithoutCipher) {
  for (const bool isLocked : {false, true}) {
    HideBench bench;
    bench.Row("a.txt", "content").Mode(0444);
    const auto held = isLocked ? OpenLocked(bench.carrier, bench.posix, LockAccess::Read) : nullptr;
    if (!isLocked) bench.current.CurrentAlgorithmId = Algorithm::Rc4;
    EXPECT_THROW(bench.RunHide(), Error);
    EXPECT_TRUE(bench.IsOld());
    EXPECT_FALSE(bench.BackupExists());
  }
}

TEST(HideRefusal, ComesWhereAnotherFileTakesThePlaceOfAWriteProtectedCarrier) {
  HideBench bench;
  bench.Row("a.txt", "content").Mode(0444);
  const Path other = bench.folder.Put("other", "another file");
  bench.files.before = [&](const Operation& operation) {
    if (operation.name == "Files.OpenToChange" && std::filesystem::exists(other))
      std::filesystem::rename(other, bench.carrier);
  };
  EXPECT_THROW(bench.RunHide(), Error);
  EXPECT_EQ(ReadAll(bench.carrier), "another file");
}

TEST(HideRefusal, WithoutABackupNothingIsHiddenEvenIfThatIsIgnored) {
  HideBench bench;
  bench.Row("a.txt", "content").Mode(0444);
  bench.files.LimitSpace(500);
  bench.request.originals = Originals::Destroy;
  bench.script.Expect("hide.error", Answer::Ignore);
  const HideResult result = bench.RunHide();
  EXPECT_EQ(result.leftOut, std::vector<Path>{bench.Source("a.txt")});
  EXPECT_EQ(result.backup, Path());
  EXPECT_TRUE(bench.IsOld());
  EXPECT_FALSE(bench.BackupExists());
  EXPECT_EQ(ReadAll(bench.Source("a.txt")), "content");
}

TEST_P(HideSweep, FailingAnyFileOperationLosesNothing) {
  const auto [ending, answer, times] = GetParam();
  SweepBench quiet(ending);
  ASSERT_EQ(quiet.RunHide().ending, ending);
  for (std::size_t k = 1; k <= quiet.files.Count(); ++k) {
    SCOPED_TRACE("operation " + std::to_string(k) + ", " + quiet.files.Record()[k - 1].name + " " +
                 quiet.files.Record()[k - 1].path.filename().native());
    SweepBench bench(ending);
    bench.files.Fail({.at = k, .times = times, .writes = Writes::FirstHalf});
    bench.AnswerAllWith(answer);
    std::optional<HideResult> result;
    try {
      result = bench.RunHide();
    } catch (const Error&) {
    }
    bench.ExpectNothingLost(result);
    if (!result || times != Times::Once) continue;
    EXPECT_EQ(bench.BackupExists(), !result->backup.empty() || !result->needlessBackup.empty());
    if (answer == Answer::Retry) {
      EXPECT_EQ(result->ending, ending);
      EXPECT_EQ(result->hidden, ending == HideEnding::Done ? 2U : 0U);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, HideSweep,
                         testing::Combine(testing::Values(HideEnding::Done, HideEnding::Cancelled),
                                          testing::Values(Answer::Abort, Answer::Retry, Answer::Ignore),
                                          testing::Values(Times::Once, Times::FromThenOn)));

TEST(FullDisk, AtAnyByteLeavesWholeEntriesOrTheOldState) {
  for (Length budget = 0;; budget += 13) {
    HideBench bench(200);
    bench.Row("a.txt", contentOfB).Row("b.txt", contentOfB + contentOfB);
    bench.request.originals = Originals::Destroy;
    bench.request.compress = budget % 2 == 0;
    bench.files.LimitSpace(budget);
    bench.script.Always("hide.no-space", Answer::Cancel).Always("hide.error", Answer::Abort);
    bench.script.Always("destroy.error", Answer::Ignore);  // overwriting takes space
    const HideResult result = bench.RunHide();
    if (result.ending == HideEnding::Done) break;
    EXPECT_FALSE(bench.BackupExists()) << budget;
    EXPECT_EQ(bench.Found().size(), result.hidden) << budget;
    EXPECT_EQ(ReadAll(bench.Source("a.txt")), contentOfB);
    EXPECT_TRUE(result.ending == HideEnding::NoSpace || bench.IsOld()) << budget;
    ASSERT_LT(budget, 5000);
  }
}

}  // namespace tarnel::test
