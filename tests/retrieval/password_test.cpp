#include <gtest/gtest.h>
#include <sys/stat.h>

#include "carrier/tags.h"
#include "retrieval/run_password.h"
#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {
namespace {

class Password : public testing::Test {
 protected:
  Script& script() { return bench.rewriteScreen.script; }

  RetrievalBench bench{100};
};

const Under kNew{"new"};

}  // namespace

TEST_F(Password, ChecksOldThenNewThenConfirmation) {
  struct Case {
    std::string old, now, confirmation;
    PasswordFault fault;
    std::string text;
  };
  bench.Hide({"a"}).Load();
  for (const Case& c : std::vector<Case>{
           {"Secret", "", "x", PasswordFault::OldDiffers, "The old password is not valid!"},
           {"secret", "", "x", PasswordFault::NewIsEmpty, "Please enter a new password!"},
           {"secret", "new", "New", PasswordFault::ConfirmationDiffers, "The confirmation is not valid!"}}) {
    script().Always("password.old", Answer::Ok).Always("password.empty", Answer::Ok);
    script().Always("password.confirmation", Answer::Ok);
    const PasswordResult result = RunPassword(
        {.oldPassword = Secret(c.old), .newPassword = Secret(c.now), .confirmation = Secret(c.confirmation)},
        bench.faulty, bench.rewriteScreen);
    EXPECT_EQ(result.refused, c.fault);
    EXPECT_EQ(script().Asked().back().text, c.text);
  }
  EXPECT_EQ(bench.files.Count(), 0u);
}

TEST_F(Password, OpensEveryEntryInItsOldPlaceAndLeavesOthersByteForByte) {
  bench.Hide({"a", Pattern(40000)}).Hide({"x", "his"}, kOther).Compressed({"b", SampleText(20000)});
  bench.Hide({"y", "his too"}, kOther).Load();
  bench.ContentsUnder(kOther);
  const std::string foreignTail = bench.catalogue.Rows()[0].tail;
  bench.ContentsUnder({});
  const std::string dateBefore(bench.catalogue.Rows()[0].Field(tag::kDate));

  const PasswordResult result = bench.ChangePassword("secret", "new");
  EXPECT_EQ(result.ending, RewriteEnding::Done);
  EXPECT_EQ(result.changed, 2u);
  EXPECT_EQ(bench.current.CurrentPassword, Secret("new"));
  EXPECT_EQ(bench.Names(), (Strings{"b", "a"}));
  EXPECT_EQ(bench.ContentOf(bench.catalogue.Rows()[1]), Pattern(40000));
  EXPECT_EQ(bench.catalogue.Rows()[0].Field(tag::kDate), dateBefore);
  EXPECT_EQ(bench.Extract(bench.All()).extracted, 2u);
  EXPECT_EQ(ReadAll(bench.target / "b"), SampleText(20000));
  EXPECT_EQ(ReadAll(bench.carrier).substr(0, 100), Pattern(100));
  EXPECT_EQ(bench.ContentsUnder(kOther), (Strings{"x=his", "y=his too"}));
  EXPECT_EQ(bench.catalogue.Rows()[0].tail, foreignTail);
  EXPECT_EQ(bench.ContentsUnder({}), Strings{});
}

TEST_F(Password, MarksTheRecordAsRewrittenAndCarriesTheModeAlong) {
  bench.Hide({.name = "a", .mode = "755"}).Load();
  bench.ChangePassword("secret", "new");
  const std::string record(bench.catalogue.Rows()[0].record);
  EXPECT_NE(record.find("?CompVers=<701>?CompVers=<701>"), std::string::npos) << record;
  EXPECT_EQ(GetTag(record, tag::kMode), "755");
}

TEST_F(Password, RewritesAllEvenIfTheNewPasswordIsTheOldOne) {
  bench.Hide({"a", "x"}).Load();
  const std::string before = ReadAll(bench.carrier);
  EXPECT_EQ(bench.ChangePassword("secret", "secret").changed, 1u);
  EXPECT_NE(ReadAll(bench.carrier), before);
  EXPECT_EQ(bench.Contents(), Strings{"a=x"});
}

TEST_F(Password, LeavesAllAsItWasOverADamagedPayloadUnlessTold) {
  bench.Hide({"a", "aaaa"}).Hide({"b", "fine"}).Load();
  bench.FlipBit(101 + 16, 0);
  const std::string before = ReadAll(bench.carrier);
  script().Expect("password.error", Answer::Retry).Expect("password.error", Answer::Abort);
  EXPECT_EQ(bench.ChangePassword("secret", "new").ending, RewriteEnding::Aborted);
  EXPECT_EQ(ReadAll(bench.carrier), before);
  EXPECT_EQ(bench.folder.Names(), Strings{"carrier.bin"});
  EXPECT_EQ(script().Asked()[0].text, "Error: 57\n\rcannot re-encrypt a: it is damaged or was altered");

  script().Expect("password.error", Answer::Ignore);
  EXPECT_EQ(bench.ChangePassword("secret", "new").ending, RewriteEnding::Done);
  EXPECT_EQ(bench.Contents(), (Strings{"a=`aaa", "b=fine"}));
}

TEST_F(Password, LosesTheReadOnlyFlagWhenCancelledInsideACopy) {
  bench.Hide({"a", Pattern(40000)}).Load();
  ASSERT_EQ(::chmod(bench.carrier.c_str(), 0444), 0);
  script().CancelAtYield(0);
  EXPECT_EQ(bench.ChangePassword("secret", "secret").ending, RewriteEnding::Cancelled);
  EXPECT_EQ(bench.posix.Stat(bench.carrier)->mode, 0644u);
}

TEST_F(Password, TakesTheHideoutAwayIfTheReloadFindsNothing) {
  bench.Hide({"a"}).Load();
  bench.rewriteScreen.script.onYield = [&](std::size_t) { bench.guards.ReadingBusy = true; };
  EXPECT_EQ(bench.ChangePassword("secret", "secret").ending, RewriteEnding::Done);
  EXPECT_EQ(bench.catalogue.FindRoot(bench.carrier), nullptr);
  EXPECT_TRUE(bench.catalogue.Rows().empty());
  EXPECT_EQ(script().Transcript().back(), "emptied");
}

}  // namespace tarnel::test
