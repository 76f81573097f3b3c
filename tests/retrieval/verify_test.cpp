#include "retrieval/verify.h"

#include <gtest/gtest.h>

#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {
namespace {

class VerifyScript : public Scripted<VerifyScreen> {
 public:
  void ShowProgress(Length value, Length maximum) override { EXPECT_LE(value, maximum); }
};

class Verify : public testing::Test {
 protected:
  VerifyResult Run() {
    HideoutKey key;
    key.carrier = bench.carrier;
    key.password = Secret("secret");
    return RunVerify(bench.carrier, key, bench.files, screen);
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

  RetrievalBench bench{100};
  VerifyScript screen;
};

}  // namespace

TEST_F(Verify, FindsAllIntactAndPassesOthersOver) {
  bench.Hide({"a", ""}).Hide({"foreign"}, kOther).Compressed({"b", SampleText(40000)});
  bench.Hide({"c", Pattern(30000)});
  EXPECT_EQ(Verdicts(), (Strings{"c", "b", "a"}));
}

TEST_F(Verify, TellsDamagedContentsFromADamagedRecord) {
  bench.Hide({"a", Pattern(50)}).Hide({"b"}).Hide({"c"}).Load();
  bench.FlipBit(bench.catalogue.Rows()[2].start.value + 30, 0);
  const MirrorRow& middle = bench.catalogue.Rows()[1];
  bench.FlipBit(middle.start.value + middle.size + 60, 0);
  EXPECT_EQ(Verdicts(),
            (Strings{"c", ": its record is damaged", "a: its contents are damaged or were altered"}));
}

TEST_F(Verify, ComparesTheSizeInTheRecord) {
  const std::string payload = CarrierBench::Encrypt("four", {});
  std::string record(CarrierBench::RecordOf({"a", "four"}, payload.size()));
  record.replace(record.find("?Fls=<4"), 7, "?Fls=<5");
  bench.HideRecord(record, payload);
  EXPECT_EQ(Verdicts(), Strings{"a: its record says another size than the 4 bytes that it has"});
}

TEST_F(Verify, ReportsWhatLiesBeforeATrailerThatLeadsNowhere) {
  bench.HideRecord("?Fnm=<a>", "")
      .Append(SealEntry("?Fnm=<lost>", 9999, Algorithm::Twofish, Secret("other"), bench.secondKey));
  bench.Hide({"b"});
  const Strings verdicts = Verdicts();
  ASSERT_EQ(verdicts.size(), 2u);
  EXPECT_EQ(verdicts[0], "b");
  EXPECT_TRUE(verdicts[1].starts_with(": ")) << verdicts[1];
}

TEST_F(Verify, TakesABodyOfSeventyNineBytesForWhatItIs) {
  RetrievalBench odd(79);
  odd.Hide({"a"});
  HideoutKey key;
  key.password = Secret("secret");
  EXPECT_EQ(RunVerify(odd.carrier, key, odd.files, screen).entries.size(), 1u);
}

TEST_F(Verify, NamesWhatLiesBesideTheCarrier) {
  bench.Hide({"a"});
  bench.folder.Put("carrier.bin.bak", "");
  bench.folder.Put("carrier.bin.tmp", "");
  EXPECT_EQ(Run().leftovers, (std::vector<Path>{bench.folder / "carrier.bin.bak", bench.temporary}));
}

TEST_F(Verify, EndsAtTheNextBlockOnceCancelled) {
  bench.Hide({"a", Pattern(60000)});
  screen.script.CancelAtYield(2);
  EXPECT_TRUE(Run().cancelled);
  EXPECT_LE(screen.script.Yields(), 2u);
}

}  // namespace tarnel::test
