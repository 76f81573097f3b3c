#include "retrieval/verify.h"

#include <gtest/gtest.h>

#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {
namespace {

struct VerifyBench : RetrievalBench {
  class Screen : public Scripted<VerifyScreen> {
    void ShowProgress(Length value, Length maximum) override { EXPECT_LE(value, maximum); }
  } person;

  explicit VerifyBench(std::size_t bodySize = 100) : RetrievalBench(bodySize) {}

  VerifyResult Run() {
    HideoutKey key;
    key.password = Secret("secret");
    return RunVerify(carrier, key, files, person);
  }
  /// "name" or "name: reason", newest first.
  Strings Verdicts() {
    Strings verdicts;
    for (const VerifiedEntry& entry : Run().entries) {
      EXPECT_EQ(entry.verdict == Verdict::Damaged, !entry.reason.empty());
      verdicts.push_back(entry.name + (entry.reason.empty() ? "" : ": " + entry.reason));
    }
    return verdicts;
  }
};

}  // namespace

TEST(Verify, FindsAllIntactPassesOthersOverAndNamesWhatLiesBeside) {
  for (const std::size_t bodySize : {79U, 100U}) {
    VerifyBench bench(bodySize);
    bench.Hide({"a", ""}).Hide({"foreign"}, kOther).Compressed({"b", SampleText(40000)});
    bench.Hide({"c", Pattern(30000)});
    EXPECT_EQ(bench.Verdicts(), (Strings{"c", "b", "a"}));
    WriteAll(bench.temporary, "");
    EXPECT_EQ(bench.Run().leftovers, std::vector<Path>{bench.temporary});
  }
}

TEST(Verify, TellsDamagedContentsFromADamagedRecordAndAWrongSize) {
  VerifyBench bench;
  const std::string payload = CarrierBench::Encrypt("four", {});
  bench.Hide({"a", Pattern(50)}).Hide({"b"}).HideRecord("?Fnm=<c>?Fls=<5>?Cmpr=<0>?CompVers=<701>", payload);
  bench.Load();
  bench.FlipBit(bench.catalogue.Rows().at(1).start.value + 30, 0);
  const MirrorRow& middle = bench.catalogue.Rows().at(0);
  bench.FlipBit(middle.start.value + middle.size + 60, 1);
  EXPECT_EQ(bench.Verdicts(),
            (Strings{"c: its record says another size than its contents have",
                     ": its record is damaged", "a: its contents are damaged or were altered"}));
}

TEST(Verify, ReportsWhatLiesBeforeATrailerThatLeadsNowhere) {
  VerifyBench bench;
  bench.HideRecord("?Fnm=<a>", "")
      .Append(SealEntry("?Fnm=<lost>", 9999, Algorithm::Twofish, Secret("other"), bench.secondKey));
  bench.Hide({"b"});
  const VerifyResult result = bench.Run();
  ASSERT_EQ(result.entries.size(), 1u);
  EXPECT_EQ(result.entries.at(0).verdict, Verdict::Intact);
  EXPECT_FALSE(result.IsWhole());
  EXPECT_TRUE(result.chain.brokenAt);
}

TEST(Verify, EndsAtTheNextBlockOrEntryOnceCancelled) {
  for (const Strings& later : {Strings{}, Strings{"b", "c", "d"}}) {
    VerifyBench bench;
    bench.Hide({"a", Pattern(60000)});
    for (const std::string& name : later)
      bench.Hide({name});
    bench.person.script.CancelAtYield(2);
    EXPECT_TRUE(bench.Run().cancelled);
    EXPECT_LE(bench.person.script.Yields(), 2u);
  }
}

}  // namespace tarnel::test
