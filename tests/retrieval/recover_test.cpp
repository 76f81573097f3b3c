#include "retrieval/recover.h"

#include <gmock/gmock.h>

#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {
namespace {

using Relation = CarrierCopy::Relation;

class Recover : public testing::Test {
 protected:
  Recover() { bench.Hide({"a", "aaa"}, twofish); }

  RecoverPlan Plan() { return PlanRecovery(bench.carrier, Secret("secret"), bench.files, screen); }
  static Strings Entries(const RecoverPlan& plan) {
    Strings entries;
    for (const CarrierCopy& copy : plan.copies)
      entries.push_back(copy.path.extension().string() + " " + std::to_string(copy.entries) + "-" +
                        std::to_string(copy.damaged));
    return entries;
  }

  const Under twofish{"secret", Algorithm::Twofish};
  RetrievalBench bench{100};
  Path backup = bench.folder / "carrier.bin.bak";
  Scripted<> screen;
};

}  // namespace

TEST_F(Recover, ProposesTheBackupOfACarrierTornInAHide) {
  std::filesystem::copy_file(bench.carrier, backup);
  bench.Append(Pattern(5000));  // a payload without its record
  const RecoverPlan plan = Plan();
  EXPECT_EQ(Entries(plan), (Strings{".bin 0-0", ".bak 1-0"}));
  EXPECT_EQ(plan.copies[1].algorithm, Algorithm::Twofish);
  EXPECT_EQ(plan.copies[1].relation, Relation::Front);
  ASSERT_EQ(plan.best, 1u);

  const std::string torn = ReadAll(bench.carrier);
  EXPECT_EQ(ApplyRecovery(plan, 1, bench.files), std::vector<Path>{bench.folder / "carrier.bin.old"});
  EXPECT_EQ(bench.ContentsUnder(twofish), Strings{"a=aaa"});
  EXPECT_EQ(ReadAll(bench.folder / "carrier.bin.old"), torn);
  EXPECT_EQ(bench.folder.Names(), (Strings{"carrier.bin", "carrier.bin.old"}));
}

TEST_F(Recover, ProposesTheBackupWhereAHoleInTheCarrierHidesItsEntries) {
  std::filesystem::copy_file(bench.carrier, backup);
  bench.Append(std::string(5000, '\0')).Hide({"b", "bbb"}, twofish).Hide({"c", "ccc"}, twofish);
  const RecoverPlan plan = Plan();
  EXPECT_EQ(Entries(plan), (Strings{".bin 2-0", ".bak 1-0"}));
  EXPECT_EQ(plan.best, 1u);
}

TEST_F(Recover, ProposesTheCopyWithFewerDamagedEntriesAmongEqualOnes) {
  std::filesystem::copy_file(bench.carrier, backup);
  bench.Hide({"b", "bbb"}, twofish).FlipBit(static_cast<Length>(std::filesystem::file_size(backup)) + 1, 0);
  const RecoverPlan plan = Plan();
  EXPECT_EQ(Entries(plan), (Strings{".bin 2-1", ".bak 1-0"}));
  EXPECT_EQ(plan.best, 1u);
}

TEST_F(Recover, ProposesTheCarrierWhereItIsNoWorse) {
  std::filesystem::copy_file(bench.carrier, backup);
  WriteAll(bench.temporary, ReadAll(bench.carrier).substr(0, 150));
  RecoverPlan plan = Plan();
  EXPECT_EQ(Entries(plan), (Strings{".bin 1-0", ".bak 1-0", ".tmp 0-0"}));
  EXPECT_EQ(plan.copies[1].relation, Relation::Identical);
  EXPECT_EQ(plan.copies[2].relation, Relation::Front);
  EXPECT_EQ(plan.best, 0u);
  bench.folder.Put("carrier.bin.old", "taken");
  EXPECT_EQ(ApplyRecovery(plan, 0, bench.files),
            (std::vector<Path>{bench.folder / "carrier.bin.old2", bench.folder / "carrier.bin.old3"}));
  EXPECT_EQ(ReadAll(bench.folder / "carrier.bin.old"), "taken");
}

TEST_F(Recover, CountsDamagedEntriesAgainstACopy) {
  bench.Hide({"b", "bbb"}, twofish);
  std::filesystem::copy_file(bench.carrier, backup);
  bench.FlipBit(101 + 17, 1);
  const RecoverPlan plan = Plan();
  EXPECT_EQ(Entries(plan), (Strings{".bin 2-1", ".bak 2-0"}));
  EXPECT_EQ(plan.copies[1].relation, Relation::Different);
  EXPECT_EQ(plan.best, 1u);
}

TEST_F(Recover, ProposesNothingUnderAWrongPassword) {
  const RecoverPlan plan = PlanRecovery(bench.carrier, Secret("other"), bench.files, screen);
  EXPECT_EQ(plan.best, std::nullopt);
}

TEST_F(Recover, BringsACarrierBackThatHasGone) {
  std::filesystem::rename(bench.carrier, bench.temporary);
  const RecoverPlan plan = Plan();
  ASSERT_EQ(plan.best, 0u);
  EXPECT_TRUE(ApplyRecovery(plan, 0, bench.files).empty());
  EXPECT_EQ(bench.ContentsUnder(twofish), Strings{"a=aaa"});
}

TEST_F(Recover, GivesATemporaryCarrierTheModeOfTheCarrier) {
  WriteAll(bench.temporary, ReadAll(bench.carrier), 0600);
  ApplyRecovery(Plan(), 1, bench.files);
  EXPECT_EQ(bench.posix.Stat(bench.carrier)->mode, 0644u);
}

TEST_F(Recover, LosesNoCopyWhateverFails) {
  const std::string carrier = ReadAll(bench.carrier);
  bench.folder.Put("carrier.bin.bak", "backup");
  WriteAll(bench.temporary, "temporary");
  const auto contents = [&] {
    Strings all;
    for (const std::string& name : bench.folder.Names())
      all.push_back(ReadAll(bench.folder / name));
    return all;
  };
  for (std::size_t k = 1;; ++k) {
    const RecoverPlan plan = PlanRecovery(bench.carrier, Secret("secret"), bench.posix, screen);
    const auto chosen = std::find_if(plan.copies.begin(), plan.copies.end(),
                                     [](const CarrierCopy& copy) { return copy.path.extension() == ".bak"; });
    FaultyFiles files(bench.posix);
    files.Fail({.at = k});
    bool isDone = true;
    try {
      ApplyRecovery(plan, static_cast<std::size_t>(chosen - plan.copies.begin()), files);
    } catch (const Error&) {
      isDone = false;
    }
    EXPECT_THAT(contents(), testing::UnorderedElementsAre("backup", "temporary", carrier)) << k;
    if (isDone) break;
    ASSERT_LT(k, 40u);
    std::filesystem::create_directory(bench.folder / "all");
    for (const std::string& name : bench.folder.Names()) {  // as it was before, for the next round
      if (name == "all") continue;
      const std::string text = ReadAll(bench.folder / name);
      std::filesystem::rename(bench.folder / name, bench.folder / "all" /
                                                       (text == carrier    ? "carrier.bin"
                                                        : text == "backup" ? "carrier.bin.bak"
                                                                           : "carrier.bin.tmp"));
    }
    for (const std::string name : {"carrier.bin", "carrier.bin.bak", "carrier.bin.tmp"})
      std::filesystem::rename(bench.folder / "all" / name, bench.folder / name);
    std::filesystem::remove(bench.folder / "all");
  }
  EXPECT_EQ(ReadAll(bench.carrier), "backup");
}

TEST_F(Recover, AdvisesByNameInOneLine) {
  const std::string advice = LeftoverAdvice("/x/a\nb.bak");
  EXPECT_EQ(advice.find('\n'), std::string::npos);
  EXPECT_NE(advice.find("a\\nb.bak"), std::string::npos);
}

}  // namespace tarnel::test
