#include <gtest/gtest.h>

#include <optional>
#include <tuple>

#include "tests/hiding/hide_bench.h"

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
    const Contents hidden = Found();
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
