#include <gtest/gtest.h>

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

}  // namespace

TEST_F(Password, ChecksOldThenNewThenConfirmation) {
  const struct {
    std::string old, now;
    PasswordFault fault;
    const char *id, *text;
  } cases[] = {{"Secret", "", PasswordFault::OldDiffers, "password.old", "The old password is not valid!"},
               {"secret", "", PasswordFault::NewIsEmpty, "password.empty", "Please enter a new password!"},
               {"secret", "new", PasswordFault::ConfirmationDiffers, "password.confirmation",
                "The confirmation is not valid!"}};
  bench.Hide({"a"}).Load();
  for (const auto& c : cases) {
    script().Expect(c.id, Answer::Ok);
    const PasswordResult result = RunPassword(
        {.oldPassword = Secret(c.old), .newPassword = Secret(c.now), .confirmation = Secret("New")},
        bench.faulty, bench.rewriteScreen);
    EXPECT_EQ(result.refused, c.fault);
    EXPECT_EQ(Last(script().Asked()).text, c.text);
  }
  EXPECT_EQ(bench.files.Count(), 0u);
}

TEST_F(Password, OpensEveryEntryInItsOldPlaceAndLeavesOthersByteForByte) {
  bench.Hide({.name = "a", .content = Pattern(40000), .mode = "755"}).Hide({"x", "his"}, kOther);
  bench.Compressed({"b", SampleText(20000)}).Load(kOther);
  const std::string foreignTail = bench.catalogue.Rows().at(0).tail;
  bench.ContentsUnder({});
  EXPECT_EQ(bench.ChangePassword("secret", "new").changed, 2u);
  EXPECT_EQ(bench.current.CurrentPassword, Secret("new"));
  EXPECT_EQ(bench.Names(), (Strings{"b", "a"}));
  const MirrorRow& row = bench.catalogue.Rows().at(1);
  EXPECT_EQ(row.Field(tag::kDate), "11/22/26 10:00:00");
  EXPECT_EQ(row.Field(tag::kMode), "755");
  EXPECT_EQ(row.Field(tag::kStoredSize), std::to_string(row.size));
  EXPECT_NE(row.record.find("?CompVers=<701>?CompVers=<701>"), WipedText::npos);
  EXPECT_EQ(bench.Extract(bench.All()).extracted, 2u);
  EXPECT_EQ(ReadAll(bench.target / "a"), Pattern(40000));
  EXPECT_EQ(ReadAll(bench.target / "b"), SampleText(20000));
  EXPECT_EQ(bench.ContentsUnder(kOther), Strings{"x=his"});
  EXPECT_EQ(bench.catalogue.Rows().at(0).tail, foreignTail);
  EXPECT_EQ(bench.ContentsUnder({}), Strings{});
}

TEST_F(Password, LeavesAllAsItWasOverADamagedPayloadUnlessTold) {
  bench.Hide({"a", "aaaa"}).Hide({"b", "fine"}).Load();
  bench.FlipBit(101 + 16, 0);
  const std::string before = ReadAll(bench.carrier);
  script().Expect("password.error", Answer::Retry).Expect("password.error", Answer::Abort);
  EXPECT_EQ(bench.ChangePassword("secret", "new").ending, RewriteEnding::Aborted);
  EXPECT_EQ(ReadAll(bench.carrier), before);
  EXPECT_EQ(bench.folder.Names(), Strings{"carrier.bin"});
  EXPECT_EQ(script().Asked().at(0).text,
            "Error: 57\n\rcannot re-encrypt a: its contents are damaged or were altered");

  script().Expect("password.error", Answer::Ignore);
  EXPECT_EQ(bench.ChangePassword("secret", "new").ending, RewriteEnding::Done);
  EXPECT_EQ(bench.Contents(), (Strings{"a=(damaged)", "b=fine"}));
}

TEST_F(Password, TakesTheHideoutAwayIfTheReloadFindsNothing) {
  bench.Hide({"a"}).Load();
  bench.rewriteScreen.script.onYield = [&](std::size_t) { bench.guards.ReadingBusy = true; };
  EXPECT_EQ(bench.ChangePassword("secret", "secret").ending, RewriteEnding::Done);
  EXPECT_EQ(bench.catalogue.FindRoot(bench.carrier), nullptr);
  EXPECT_TRUE(bench.catalogue.Rows().empty());
  EXPECT_EQ(Last(script().Transcript()), "emptied");
}

}  // namespace tarnel::test
