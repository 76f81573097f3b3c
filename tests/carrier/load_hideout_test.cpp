#include "carrier/load_hideout.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "carrier/companions.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/support/faulty_files.h"

namespace tarnel::test {

namespace {

using Reload = LoadRequest::Reload;
using Fit = LoadRequest::Fit;

const Under mine{"secret"}, theirs{"other"};

/// mine and theirs in turn, three files each; the newest is one of theirs.
struct Interleaved : CarrierBench {
  Interleaved() {
    for (const std::string number : {"1", "2", "3"}) {
      Hide({.name = "mine" + number, .title = "Title " + number}, mine);
      Hide({"theirs" + number}, theirs);
    }
  }
};

const Strings mineNewestFirst{"mine3", "mine2", "mine1"}, theirsNewestFirst{"theirs3", "theirs2", "theirs1"};

}  // namespace

TEST(LoadHideout, ListsTheEntriesOfOneKeyNewestFirst) {
  Interleaved bench;
  ASSERT_EQ(bench.Load(mine), LoadResult::Loaded);
  EXPECT_EQ(bench.Names(), mineNewestFirst);
  EXPECT_EQ(Last(bench.screen.script.Transcript()), "loaded Title 3 3")
      << "the newest entry names the hideout";
  EXPECT_EQ(bench.current.CurrentCarrierPath, bench.carrier);
  EXPECT_EQ(bench.current.CurrentCarrierName, "carrier.bin");
  EXPECT_EQ(bench.current.CurrentHideoutTitle, "Title 3");
  EXPECT_TRUE(bench.current.CurrentPassword == Secret("secret"));
}

TEST(LoadHideout, ReadsTheExampleOfTheFormatPageForEver) {
  CarrierBench bench(0);
  const std::string record =
      "nmXiQn6FtsgKxIdQdwyDIN4IbK3E3fJCDxsIqyXVGWXlV3fXI6geG+e2HcQJZALwqRWsEYS4OyiK\r\n"
      "VEZR7abQSHS6KbQk4E0jpZKgcLBpdwlV9cNvS3cVIjmXGwCLKVxCH33y9yvypQQkf5dr+DOyLiJD\r\n"
      "g2wjogeDM0S090t1fxxPVDideAZKJE0lGRftSBev2V2tchvhY1Ug/NnGUCPuUPj13kRBIOTadNjq\r\nZQ==";
  bench.Append(
      "body\xD8\xF4\xEB$5<-Ta\xE8\xBA\xD1\xC0\x99\xA4\xA2\xE1\xC1\xC4"
      "B\x86\xF7\xEF\xCB"
      "D\xDA\"Sy\xB6\xB0\xDDG\x18^D\xDD" +
      record +
      "Kk/MuDkrhr0F2SUpE04ybDC6RTn49GWca5+Gopzu"
      "wqvhYnnRzRjSAEDeWZv1JOPoOSTcBdbbWC473ODR");
  ASSERT_EQ(bench.Size(), 359);
  ASSERT_EQ(bench.TryPassword("secret"), LoadResult::Loaded);
  EXPECT_EQ(bench.Names(), Strings{"a>b.txt"});
  EXPECT_EQ(bench.ContentOf(bench.catalogue.Rows().at(0)), "hello");
}

TEST(LoadHideout, ReplacesAnOpenHideoutByTheseRules) {
  const struct {
    Under open, wanted;
    Reload reload;
    std::optional<Answer> answer;  // of the reload question, which comes only here
    LoadResult result;
    Strings names;
  } cases[] = {
      {mine, mine, Reload::Ask, Answer::No, LoadResult::KeptOpen, mineNewestFirst},
      {mine, mine, Reload::Ask, Answer::Yes, LoadResult::Loaded, mineNewestFirst},
      {mine, mine, Reload::Forced, {}, LoadResult::Loaded, mineNewestFirst},
      {mine, theirs, Reload::Ask, {}, LoadResult::Loaded, theirsNewestFirst},
      {mine, theirs, Reload::Forced, {}, LoadResult::Loaded, theirsNewestFirst},
      {mine, {"secret", Algorithm::Des}, Reload::Ask, {}, LoadResult::NotFound, mineNewestFirst},
      {mine, {"wrong"}, Reload::Forced, {}, LoadResult::NotFound, mineNewestFirst},
  };
  for (const auto& c : cases) {
    Interleaved bench;
    ASSERT_EQ(bench.Load(c.open), LoadResult::Loaded);
    const TreeNode* const before = bench.catalogue.FindRoot(bench.carrier);
    if (c.answer) bench.screen.script.Expect("load.reload", *c.answer);
    bench.guards.TreeClickBlocked = true;
    EXPECT_EQ(bench.Load(c.wanted, c.reload), c.result);
    EXPECT_EQ(bench.Names(), c.names);
    EXPECT_EQ(bench.catalogue.Roots().size(), 1u);
    EXPECT_TRUE(c.result == LoadResult::Loaded || bench.catalogue.FindRoot(bench.carrier) == before);
    EXPECT_FALSE(bench.guards.ReadingBusy || bench.guards.TreeClickBlocked);
  }
}

TEST(LoadHideout, StopsAtANewestEntryThatDoesNotFitWhereOnlyThatCounts) {
  Interleaved bench;
  EXPECT_EQ(bench.Load(mine, Reload::Forced, Fit::NewestEntry), LoadResult::NotFound);
  EXPECT_EQ(bench.Load(theirs, Reload::Forced, Fit::NewestEntry), LoadResult::Loaded);
  EXPECT_EQ(bench.Names(), theirsNewestFirst) << "behind the first fit, entries of others are passed over";
}

TEST(LoadHideout, ShutsTheGateAtAnotherFormatVersion) {
  for (const bool olderFits : {false, true}) {
    CarrierBench bench(1000);
    const std::string payload = CarrierBench::Encrypt("x", mine);
    std::string record(CarrierBench::RecordOf({"new.txt"}, payload.size()));
    record.replace(record.find("?CompVers=<701>"), 15, "?CompVers=<800>");
    bench.HideRecord(record, payload, mine);
    if (olderFits) bench.Hide({"a.txt"}, mine);
    bench.screen.script.Expect("load.version", Answer::Ok);
    EXPECT_EQ(bench.Load(mine), olderFits ? LoadResult::Loaded : LoadResult::NotFound);
    EXPECT_EQ(bench.Names(), olderFits ? Strings{"a.txt"} : Strings{});
    EXPECT_EQ(bench.screen.script.Asked().at(0).text,
              "This carrier file was created with version: 800. This format is not compatible with current "
              "version.");
  }
}

TEST(LoadHideout, AbortedAtAnyYieldClosesWhatItHadBegunToRead) {
  for (std::size_t n = 1; n <= 7; ++n) {
    Interleaved bench;
    bench.Load(theirs);
    const std::size_t already = bench.screen.script.Yields();
    bench.screen.script.onYield = [&](std::size_t yield) {
      bench.guards.AbortReadingFlag = yield >= already + n;
    };
    const bool hasBegun = n > 2;  // the first entry that fits is the second
    EXPECT_EQ(bench.Load(mine), hasBegun ? LoadResult::Aborted : LoadResult::NotFound) << n;
    EXPECT_EQ(bench.Names(), hasBegun ? Strings{} : theirsNewestFirst) << n;
    EXPECT_EQ(bench.catalogue.Roots().empty(), hasBegun) << n;
    EXPECT_EQ(Last(bench.screen.script.Transcript()), "gone");
    EXPECT_FALSE(bench.guards.ReadingBusy || bench.guards.TreeClickBlocked);
  }
}

TEST(LoadHideout, IsTurnedAwayWhileAnotherReads) {
  CarrierBench bench(1000);
  bench.Hide({"a"}).guards.ReadingBusy = true;
  EXPECT_EQ(bench.Load(), LoadResult::NotFound);
  EXPECT_TRUE(bench.guards.ReadingBusy) << "it is the other's";
}

TEST(LoadHideout, AnswersErrorsAtEveryFileOperation) {
  Interleaved bench;
  bench.Hide({"very long", std::string(6000, 'x'), std::string(4000, 'f')}, mine);
  const auto loadFrom = [&](FaultyFiles& files) {
    bench.catalogue.RemoveCarrier(bench.carrier);
    Reading reading{files, bench.catalogue, bench.types, bench.guards, bench.current};
    return LoadHideout(bench.RequestFor(mine), reading, bench.screen);
  };
  FaultyFiles quiet(bench.posix);
  ASSERT_EQ(loadFrom(quiet), LoadResult::Loaded);
  const Strings all = bench.Names();
  for (std::size_t k = 1; k <= quiet.Count(); ++k) {
    for (const Answer answer : {Answer::Abort, Answer::Retry, Answer::Ignore}) {
      FaultyFiles files(bench.posix);
      files.Fail({.at = k, .number = ErrorNumber::PermissionDenied});
      bench.screen.script.Expect("load.error", answer);
      const LoadResult result = loadFrom(files);
      const Strings names = bench.Names();
      EXPECT_TRUE(std::includes(all.rbegin(), all.rend(), names.rbegin(), names.rend()));
      EXPECT_TRUE(answer != Answer::Retry || names == all) << k;
      EXPECT_TRUE(answer != Answer::Abort || result == LoadResult::NotFound) << k;
      EXPECT_TRUE(answer != Answer::Ignore || (result == LoadResult::Loaded) == !names.empty()) << k;
      EXPECT_FALSE(bench.guards.ReadingBusy || bench.guards.TreeClickBlocked) << k;
    }
  }
}

TEST(LoadHideout, AsksInOneFixedFormAtAFileThatIsTooShort) {
  CarrierBench bench(20);
  bench.screen.script.Expect("load.error", Answer::Abort);
  EXPECT_EQ(bench.Load(), LoadResult::NotFound);
  const Question& question = bench.screen.script.Asked().at(0);
  EXPECT_EQ(question.text,
            "Error: 63\r\n" + bench.carrier.native() +
                " is too short or its hidden part is damaged: an entry would begin before the file");
  EXPECT_EQ(question.title, "Tarnel");
  EXPECT_EQ(question.preset, Answer::Abort);
}

TEST(LoadHideout, NeverShowsAWrongRowWhateverBitIsFlippedAndWhereverItIsCut) {
  CarrierBench bench(100);
  bench.Hide({"a.txt", "first"}).Hide({"b.txt", "second"}, theirs).Hide({"c.txt", "third"});
  bench.screen.script.Always("load.error", Answer::Ignore);
  const auto rows = [&bench] {
    bench.catalogue.RemoveCarrier(bench.carrier);
    bench.Load();
    Strings texts;
    for (const MirrorRow& row : bench.catalogue.Rows())
      texts.push_back(std::string(row.record) + " at " + std::to_string(row.start.value) + ", " +
                      std::to_string(row.size));
    return texts;
  };
  const Strings intact = rows();
  ASSERT_EQ(intact.size(), 2u);
  const auto expectNoOther = [&] {
    for (const std::string& row : rows())
      EXPECT_TRUE(row == intact.at(0) || row == intact.at(1)) << row;
  };
  for (Length position = 101; position <= bench.Size(); ++position) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      bench.FlipBit(position, bit);
      expectNoOther();
      bench.FlipBit(position, bit);
    }
  }
  bench.Append("x");
  EXPECT_EQ(rows(), Strings{}) << "a single byte behind the entries hides them";
  for (Length size = bench.Size() - 2; size >= 0; --size) {
    bench.CutTo(size);
    expectNoOther();
  }
}

TEST(OpenLocked, TakesTheFileThatTheNameMeansInTheEnd) {
  CarrierBench bench(10);
  const Path next = bench.folder.Put("next", "new bytes");
  FaultyFiles files(bench.posix);
  bool replaced = false;
  files.before = [&](const Operation& operation) {
    if (operation.name == "File.Lock" && !std::exchange(replaced, true))
      std::filesystem::rename(next, bench.carrier);
  };
  EXPECT_EQ(ReadFileSlice(*OpenLocked(bench.carrier, files), {1}, 100), "new bytes");
}

TEST(Companions, AreSeenEvenAsDanglingLinks) {
  CarrierBench bench(10);
  std::filesystem::create_symlink("nowhere", bench.folder / "carrier.bin.bak");
  EXPECT_EQ(LeftoversBeside(bench.carrier, bench.posix), std::vector{bench.folder / "carrier.bin.bak"});
}

}  // namespace tarnel::test
