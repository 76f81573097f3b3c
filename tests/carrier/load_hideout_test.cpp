#include "carrier/load_hideout.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "carrier/companions.h"
#include "carrier/tags.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/support/faulty_files.h"

namespace tarnel::test {

namespace {

using Reload = LoadRequest::Reload;
using Fit = LoadRequest::Fit;

const Under mine{"secret"}, theirs{"other"};

/// mine and theirs in turn, three files each; the newest is one of theirs.
void Interleave(CarrierBench& bench) {
  for (const char* number : {"1", "2", "3"}) {
    bench.Hide({.name = std::string("mine") + number, .title = std::string("Title ") + number}, mine);
    bench.Hide({std::string("theirs") + number}, theirs);
  }
}

const Strings mineNewestFirst{"mine3", "mine2", "mine1"}, theirsNewestFirst{"theirs3", "theirs2", "theirs1"};

std::string OtherVersion(const Hidden& hidden, std::size_t payload) {
  std::string record(CarrierBench::RecordOf(hidden, payload));
  return record.replace(record.find("?CompVers=<701>"), 15, "?CompVers=<800>");
}

bool GuardsAreClear(const ReadingGuards& guards) {
  return !guards.ReadingBusy && !guards.TreeClickBlocked;
}

}  // namespace

TEST(LoadHideout, ListsTheEntriesOfOneKeyNewestFirst) {
  CarrierBench bench(1000);
  Interleave(bench);
  ASSERT_EQ(bench.Load(mine), LoadResult::Loaded);
  EXPECT_EQ(bench.Names(), mineNewestFirst);
  EXPECT_EQ(bench.screen.script.Transcript().back(), "loaded Title 3 3")
      << "the newest entry names the hideout";
  EXPECT_EQ(bench.current.CurrentCarrierPath, bench.carrier);
  EXPECT_EQ(bench.current.CurrentCarrierName, "carrier.bin");
  EXPECT_EQ(bench.current.CurrentHideoutTitle, "Title 3");
  EXPECT_TRUE(bench.current.CurrentPassword == Secret("secret"));
  for (const MirrorRow& row : bench.catalogue.Rows())
    EXPECT_EQ(bench.ContentOf(row), "some content");
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
  EXPECT_EQ(bench.ContentOf(bench.catalogue.Rows()[0]), "hello");
}

TEST(LoadHideout, YieldsBeforeEachEntryAndShowsProgressFromTheFirstFileOn) {
  CarrierBench bench(1000);
  bench.Hide({"a"}, mine);
  const Length first = bench.Size();
  bench.Hide({"b"}, theirs);
  const Length size = bench.Size();
  bench.Load(mine);
  const auto reading = [size](Length trailer) {
    return "reading " + std::to_string(size - trailer) + " of " + std::to_string(size);
  };
  EXPECT_EQ(bench.screen.script.Transcript(),
            (Strings{"yield", "yield", "yield", reading(921), "loaded Title 1"}));
  bench.screen.script.ForgetTranscript();
  bench.Load(theirs);
  EXPECT_EQ(bench.screen.script.Transcript(),
            (Strings{"yield", "yield", reading(first - 79), "yield", reading(921), "loaded Title 1"}));
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
    CarrierBench bench(1000);
    Interleave(bench);
    ASSERT_EQ(bench.Load(c.open), LoadResult::Loaded);
    const TreeNode* const before = bench.catalogue.FindRoot(bench.carrier);
    if (c.answer) bench.screen.script.Expect("load.reload", *c.answer);
    bench.guards.TreeClickBlocked = true;
    EXPECT_EQ(bench.Load(c.wanted, c.reload), c.result);
    EXPECT_EQ(bench.Names(), c.names);
    EXPECT_EQ(bench.catalogue.Roots().size(), 1u);
    EXPECT_TRUE(c.result == LoadResult::Loaded || bench.catalogue.FindRoot(bench.carrier) == before);
    EXPECT_TRUE(GuardsAreClear(bench.guards));
  }
}

TEST(LoadHideout, StopsAtANewestEntryThatDoesNotFitWhereOnlyThatCounts) {
  CarrierBench bench(1000);
  Interleave(bench);
  EXPECT_EQ(bench.Load(mine, Reload::Forced, Fit::NewestEntry), LoadResult::NotFound);
  EXPECT_EQ(bench.Load(theirs, Reload::Forced, Fit::NewestEntry), LoadResult::Loaded);
  EXPECT_EQ(bench.Names(), theirsNewestFirst) << "behind the first fit, entries of others are passed over";
}

TEST(LoadHideout, ShutsTheGateAtAnotherFormatVersion) {
  for (const bool olderFits : {false, true}) {
    CarrierBench bench(1000);
    const std::string payload = CarrierBench::Encrypt("x", mine);
    bench.HideRecord(OtherVersion({"new.txt"}, payload.size()), payload, mine);
    if (olderFits) bench.Hide({"a.txt"}, mine);
    bench.screen.script.Expect("load.version", Answer::Ok);
    EXPECT_EQ(bench.Load(mine), olderFits ? LoadResult::Loaded : LoadResult::NotFound);
    EXPECT_EQ(bench.Names(), olderFits ? Strings{"a.txt"} : Strings{});
    ASSERT_EQ(bench.screen.script.Asked().size(), 1u);
    EXPECT_EQ(bench.screen.script.Asked()[0].text,
              "This carrier file was created with version: 800. This format is not compatible with current "
              "version.");
  }
}

TEST(LoadHideout, AbortedAtAnyYieldClosesWhatItHadBegunToRead) {
  for (std::size_t n = 1; n <= 8; ++n) {
    CarrierBench bench(1000);
    Interleave(bench);
    bench.Load(theirs);
    bench.screen.script.ForgetTranscript();
    const std::size_t already = bench.screen.script.Yields();
    bench.screen.script.onYield = [&](std::size_t yield) {
      bench.guards.AbortReadingFlag = yield >= already + n;
    };
    const LoadResult result = bench.Load(mine);
    if (n == 8) {  // seven passes are all there are
      EXPECT_EQ(result, LoadResult::Loaded);
    } else if (n <= 2) {  // the first entry that fits is the second
      EXPECT_EQ(result, LoadResult::NotFound);
      EXPECT_EQ(bench.Names(), theirsNewestFirst);
    } else {
      EXPECT_EQ(result, LoadResult::Aborted) << n;
      EXPECT_EQ(bench.Names(), Strings{});
      EXPECT_TRUE(bench.catalogue.Roots().empty());
    }
    EXPECT_EQ(bench.screen.script.Transcript().back(), n == 8 ? "loaded Title 3 3" : "gone");
    EXPECT_TRUE(GuardsAreClear(bench.guards));
  }
}

TEST(LoadHideout, IsTurnedAwayWhileAnotherReads) {
  CarrierBench bench(1000);
  bench.Hide({"a"});
  bench.guards.ReadingBusy = true;
  EXPECT_EQ(bench.Load(), LoadResult::NotFound);
  EXPECT_TRUE(bench.guards.ReadingBusy) << "it is the other's";
  EXPECT_EQ(bench.screen.script.Yields(), 0u);
}

TEST(LoadHideout, AnswersErrorsAtEveryFileOperation) {
  CarrierBench quietBench(1000);
  Interleave(quietBench);
  quietBench.Hide({"very long", std::string(6000, 'x'), std::string(6000, 'f')}, mine);
  FaultyFiles quiet(quietBench.posix);
  Reading quietReading{quiet, quietBench.catalogue, quietBench.types, quietBench.guards, quietBench.current};
  ASSERT_EQ(LoadHideout(quietBench.RequestFor(mine), quietReading, quietBench.screen), LoadResult::Loaded);
  const Strings all = quietBench.Names();
  for (std::size_t k = 1; k <= quiet.Count(); ++k) {
    for (const Answer answer : {Answer::Abort, Answer::Retry, Answer::Ignore}) {
      quietBench.catalogue.RemoveCarrier(quietBench.carrier);
      FaultyFiles files(quietBench.posix);
      files.Fail({.at = k, .number = ErrorNumber::PermissionDenied});
      Reading reading{files, quietBench.catalogue, quietBench.types, quietBench.guards, quietBench.current};
      quietBench.screen.script.Expect("load.error", answer);
      const LoadResult result = LoadHideout(quietBench.RequestFor(mine), reading, quietBench.screen);
      const Strings names = quietBench.Names();
      EXPECT_TRUE(std::includes(all.rbegin(), all.rend(), names.rbegin(), names.rend()));
      EXPECT_TRUE(answer != Answer::Retry || names == all) << k;
      EXPECT_TRUE(answer != Answer::Abort || result == LoadResult::NotFound) << k;
      EXPECT_TRUE(answer != Answer::Ignore || (result == LoadResult::Loaded) == !names.empty()) << k;
      EXPECT_TRUE(GuardsAreClear(quietBench.guards)) << k;
    }
  }
}

TEST(LoadHideout, AsksInOneFixedFormAtAFileThatIsTooShort) {
  CarrierBench bench(20);
  bench.screen.script.Expect("load.error", Answer::Abort);
  EXPECT_EQ(bench.Load(), LoadResult::NotFound);
  const Question& question = bench.screen.script.Asked()[0];
  EXPECT_EQ(question.text.substr(0, 12), "Error: 63\r\n/");
  EXPECT_EQ(question.title, "Tarnel");
  EXPECT_EQ(question.preset, Answer::Abort);
}

TEST(LoadHideout, DistrustsATrailerThatContradictsItsRecord) {
  CarrierBench bench(1000);
  const std::string payload = CarrierBench::Encrypt("x", mine);
  bench.Hide({"older"}, mine);
  bench.HideRecord(CarrierBench::RecordOf({"a"}, payload.size() + 1), payload, mine);
  bench.screen.script.Expect("load.error", Answer::Ignore);
  EXPECT_EQ(bench.Load(mine), LoadResult::Loaded);
  EXPECT_EQ(bench.Names(), Strings{"older"});
}

TEST(LoadHideout, ReadsACarrierThatTheCallerHoldsLocked) {
  CarrierBench bench(1000);
  bench.Hide({"a"});
  const auto held = OpenLocked(bench.carrier, bench.posix);
  EXPECT_EQ(bench.Load(), LoadResult::Loaded);
  EXPECT_THROW(OpenLocked(bench.carrier, bench.posix), Error);
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
  const auto file = OpenLocked(bench.carrier, files);
  EXPECT_EQ(ReadFileSlice(*file, {1}, 100), "new bytes");
}

TEST(Companions, AreNamedAfterTheWholeFileName) {
  CarrierBench bench(10);
  EXPECT_EQ(LeftoversBeside(bench.carrier, bench.posix), std::vector<Path>{});
  bench.folder.Put("carrier.bin.tmp", "");
  std::filesystem::create_symlink("nowhere", bench.folder / "carrier.bin.bak");
  EXPECT_EQ(LeftoversBeside(bench.carrier, bench.posix),
            (std::vector<Path>{bench.folder / "carrier.bin.bak", bench.folder / "carrier.bin.tmp"}));
}

namespace {

ProbeResult Probe(CarrierBench& bench, const Under& under,
                  ProbeRequest::Depth depth = ProbeRequest::Depth::WholeChain) {
  const ProbeRequest request{.carrier = bench.carrier,
                             .password = Secret(under.password),
                             .algorithm = under.algorithm,
                             .depth = depth};
  return ProbeCarrier(request, bench.reading, bench.screen);
}

}  // namespace

TEST(ProbeCarrier, FindsTheNewestFitAndItsTitleWithoutAModel) {
  CarrierBench bench(1000);
  Interleave(bench);
  EXPECT_EQ(Probe(bench, mine).title, "Title 3");
  EXPECT_TRUE(Probe(bench, theirs, ProbeRequest::Depth::NewestEntry).found);
  EXPECT_FALSE(Probe(bench, mine, ProbeRequest::Depth::NewestEntry).found);
  EXPECT_FALSE(Probe(bench, {"wrong"}).found);
  EXPECT_TRUE(bench.catalogue.Roots().empty());
  EXPECT_FALSE(bench.guards.SearchBusy);
  const std::string payload = CarrierBench::Encrypt("x", mine);
  bench.HideRecord(OtherVersion({"v.txt"}, payload.size()), payload, mine);
  EXPECT_TRUE(Probe(bench, mine, ProbeRequest::Depth::NewestEntry).found) << "the version is not looked at";
}

TEST(ProbeCarrier, FindsNothingEverAgainAfterAFileThatIsTooShort) {
  CarrierBench bench(1000);
  bench.Hide({"a"});
  const std::string good = ReadAll(bench.carrier);
  WriteAll(bench.carrier, Pattern(79));
  bench.guards.ReadingBusy = bench.guards.TreeClickBlocked = true;
  EXPECT_FALSE(Probe(bench, mine).found);
  EXPECT_TRUE(GuardsAreClear(bench.guards));
  WriteAll(bench.carrier, good);
  EXPECT_FALSE(Probe(bench, mine).found);
  bench.guards.SearchBusy = false;
  EXPECT_TRUE(Probe(bench, mine).found);
}

TEST(ProbeCarrier, StopsAtSearchAbortAndLeavesThatFlagSet) {
  CarrierBench bench(1000);
  Interleave(bench);
  bench.screen.script.onYield = [&](std::size_t yield) { bench.guards.SearchAbort = yield == 2; };
  EXPECT_FALSE(Probe(bench, mine).found);
  EXPECT_TRUE(bench.guards.SearchAbort);
  EXPECT_FALSE(bench.guards.SearchBusy);
}

TEST(ProbeCarrier, AsksAtOtherErrors) {
  const struct {
    Answer answer;
    bool staysBusy;
  } cases[] = {{Answer::Abort, true}, {Answer::Ignore, false}};
  for (const auto& c : cases) {
    CarrierBench bench(1000);
    std::filesystem::remove(bench.carrier);
    bench.screen.script.Expect("probe.error", c.answer);
    EXPECT_FALSE(Probe(bench, mine).found);
    EXPECT_EQ(bench.guards.SearchBusy, c.staysBusy);
  }
}

}  // namespace tarnel::test
