#include <gmock/gmock.h>

#include "carrier/leftovers.h"
#include "retrieval/recover.h"
#include "retrieval/verify.h"
#include "tests/retrieval/retrieval_bench.h"
#include "tests/support/held_key.h"

namespace tarnel::test {
namespace {

struct VerifyBench : RetrievalBench {
  class Screen : public Scripted<VerifyScreen> {
    void ShowProgress(Length value, Length maximum) override { EXPECT_LE(value, maximum); }
  } person;

  explicit VerifyBench(std::size_t bodySize = 100) : RetrievalBench(bodySize) {}

  VerifyResult Run() { return RunVerify({.carrier = carrier, .password = HeldKey("secret")}, files, person); }
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

struct RecoverBench : RetrievalBench {
  RecoverBench() : RetrievalBench(100) { Hide({"a", "aaa"}, twofish); }

  RecoverPlan Plan() { return PlanRecovery(carrier, HeldKey("secret"), files, person); }

  const Under twofish{"secret", Algorithm::Twofish};
  Path backup = folder / "carrier.bin.bak";
  Scripted<> person;
};

/// Suffix, entries, damaged ones and the relation to the carrier of each copy.
Strings CopiesOf(const RecoverPlan& plan) {
  const char* const relations[] = {" itself", " identical", " front", " different"};
  Strings copies;
  for (const CarrierCopy& copy : plan.copies)
    copies.push_back(copy.path.extension().string() + " " + std::to_string(copy.entries) + "-" +
                     std::to_string(copy.damaged) + relations[static_cast<std::size_t>(copy.relation)]);
  return copies;
}

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
  bench.HideRecord("?Fnm=<d>?Fls=<7>?Cmpr=<6>?CompVers=<701>", CarrierBench::Encrypt("", {}));
  for (const std::string level : {"?Cmpr=<6>", "?Cmpr=<00>", ""})
    bench.HideRecord("?Fnm=<e>?CompVers=<701>" + level, CarrierBench::Encrypt("no stream at all", {}));
  bench.HideRecord("?Fnm=<f>?Cmpr=<0>?CompVers=<701>?Seal=<" + std::string(32, '0') + ">", payload);
  bench.Load();
  bench.FlipBit(bench.catalogue.Rows().at(6).start.value + 30, 0);
  const MirrorRow& middle = bench.catalogue.Rows().at(5);
  bench.FlipBit(middle.start.value + middle.size + 60, 1);
  const std::string contents = "e: its contents are damaged or were altered";
  EXPECT_EQ(bench.Verdicts(),
            (Strings{"f: its contents are not those that its record names", contents, contents, contents,
                     "d: its record says another size than the 0 bytes that it has",
                     "c: its record says another size than its contents have", ": its record is damaged",
                     "a: its contents are damaged or were altered"}));
}

TEST(Verify, ReportsWhatLiesBeforeATrailerThatLeadsNowhere) {
  VerifyBench bench;
  bench.HideRecord("?Fnm=<a>", "")
      .Append(SealEntry("?Fnm=<lost>", 9999, Algorithm::Twofish, HeldKey("other"), bench.secondKey));
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
    EXPECT_EQ(bench.Run().ending, VerifyEnding::Cancelled);
    EXPECT_LE(bench.person.script.Yields(), 2u);
  }
}

TEST(Recover, ProposesTheCopyWithTheMostWholeEntriesAndThenTheFewestDamagedOnes) {
  const struct {
    std::function<void(RecoverBench&)> harm;
    Strings copies;
    std::size_t best;
  } cases[] = {
      // A payload without its record.
      {[](RecoverBench& b) { b.Append(Pattern(5000)); }, {".bin 0-0 itself", ".bak 1-0 front"}, 1},
      // A hole that hides what lies before it.
      {[](RecoverBench& b) {
         b.Append(std::string(5000, '\0')).Hide({"b", "bbb"}, b.twofish).Hide({"c", "ccc"}, b.twofish);
       },
       {".bin 2-0 itself", ".bak 1-0 front"},
       1},
      {[](RecoverBench& b) {
         const Length end = b.Size();
         b.Hide({"b", "bbb"}, b.twofish).FlipBit(end + 1, 0);
       },
       {".bin 2-1 itself", ".bak 1-0 front"},
       1},
      {[](RecoverBench& b) { b.FlipBit(101 + 17, 1); }, {".bin 1-1 itself", ".bak 1-0 different"}, 1},
      {[](RecoverBench& b) { WriteAll(b.temporary, ReadAll(b.carrier).substr(0, 150)); },
       {".bin 1-0 itself", ".bak 1-0 identical", ".tmp 0-0 front"},
       0},
      {[](RecoverBench& b) { std::filesystem::remove(b.carrier); }, {".bak 1-0 itself"}, 0},
  };
  for (const auto& c : cases) {
    RecoverBench bench;
    std::filesystem::copy_file(bench.carrier, bench.backup);
    c.harm(bench);
    const RecoverPlan plan = bench.Plan();
    EXPECT_EQ(CopiesOf(plan), c.copies);
    ASSERT_EQ(plan.best, c.best);
    EXPECT_EQ(plan.copies.at(c.best).algorithm, Algorithm::Twofish);
    ApplyRecovery(plan, c.best, bench.files);
    EXPECT_EQ(bench.ContentsUnder(bench.twofish), Strings{"a=aaa"});
    EXPECT_FALSE(std::filesystem::exists(bench.backup));
  }
}

TEST(Recover, EndsByCancelWhileItSeeksEntriesAndWhileItReadsThem) {
  for (const auto& [password, yields] : {std::pair("other", 0U), std::pair("secret", 1U)}) {
    RecoverBench bench;
    bench.person.script.CancelAtYield(yields);
    EXPECT_TRUE(PlanRecovery(bench.carrier, HeldKey(password), bench.files, bench.person).cancelled);
  }
}

TEST(Recover, ProposesNothingUnderAWrongPassword) {
  RecoverBench bench;
  EXPECT_EQ(PlanRecovery(bench.carrier, HeldKey("other"), bench.files, bench.person).best, std::nullopt);
}

TEST(Recover, LosesNoCopyWhateverFailsAndGivesATemporaryCarrierTheModeOfTheCarrier) {
  const Strings names = {"carrier.bin", "carrier.bin.old", "carrier.bin.old2", "carrier.bin.old3"};
  for (std::size_t k = 1, failed = k; failed == k; ++k) {
    RecoverBench bench;
    const std::string carrier = ReadAll(bench.carrier);
    WriteAll(bench.backup, "backup");
    WriteAll(bench.temporary, "temporary", 0600);
    bench.folder.Put("carrier.bin.old", "taken");
    FaultyFiles files(bench.posix);
    files.Fail({.at = k});
    try {
      EXPECT_EQ(ApplyRecovery(bench.Plan(), 2, files).at(1), bench.folder / names[3]);
      EXPECT_EQ(bench.folder.Names(), names);
      EXPECT_EQ(ReadAll(bench.carrier), "temporary");
      EXPECT_EQ(bench.posix.Stat(bench.carrier)->mode, 0644u);
    } catch (const Error&) {
      ++failed;
    }
    Strings contents;
    for (const std::string& name : bench.folder.Names())
      contents.push_back(ReadAll(bench.folder / name));
    EXPECT_THAT(contents, testing::UnorderedElementsAre("backup", "temporary", "taken", carrier)) << k;
  }
}

TEST(Recover, SyncsTheCopyBeforeItTakesItsPlaceAndTheFolderBehindIt) {
  RecoverBench bench;
  std::filesystem::copy_file(bench.carrier, bench.backup);
  const RecoverPlan plan = bench.Plan();
  FaultyFiles files(bench.posix);
  ApplyRecovery(plan, 1, files);
  std::string calls;
  for (const Operation& operation : files.Record())
    if ((operation.path == bench.backup && operation.name != "File.Close") ||
        operation.name == "Files.SyncFolder")
      calls += " " + operation.name;
  EXPECT_TRUE(calls.ends_with(" File.Sync Files.Rename Files.SyncFolder")) << calls;
}

TEST(Recover, AdvisesByNameInOneLine) {
  const std::string advice = LeftoverAdvice("/x/a\nb.bak");
  EXPECT_EQ(advice.find('\n'), std::string::npos);
  EXPECT_NE(advice.find("a\\nb.bak"), std::string::npos);
}

}  // namespace tarnel::test
