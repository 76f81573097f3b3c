#include <gtest/gtest.h>

#include <optional>
#include <tuple>

#include "tests/hiding/hide_bench.h"

namespace tarnel::test {

namespace {

const std::string contentOfA = Pattern(kCopyBlock + 100);
const std::string twoWrites = Pattern(17 * kCopyBlock);
const std::string contentOfB = SampleText(40);

/// Two files into a write-protected carrier that holds one already; the originals are to be destroyed.
class Sweep : public testing::TestWithParam<std::tuple<Answer, Times>> {
 protected:
  struct Run {
    Run() {
      bench.With({"old"}).Row("a.txt", contentOfA).Row("b.txt", contentOfB);
      ::chmod(bench.carrier.c_str(), 0440);
      bench.Remember();
      bench.request.compress = true;
      bench.request.originals = Originals::Destroy;
    }

    /// Retry wears out after a few tries, for a fault that stays.
    void AnswerAllWith(Answer answer) {
      for (const char* id : {"hide.error", "load.error", "destroy.error", "remove.error"})
        bench.hideScreen.script.Always(id, answer);
      bench.hideScreen.script.Always("hide.no-space",
                                     answer == Answer::Retry ? Answer::Retry : Answer::Cancel);
      bench.hideScreen.script.onAsk = [this](const Question&) {
        if (++asked == 4) AnswerAllWith(Answer::Abort);
      };
    }

    HideBench bench;
    FaultyFiles files{bench.posix};
    int asked = 0;
  };

  static bool OriginalStands(HideBench& bench, const std::string& name, const std::string& content) {
    return std::filesystem::exists(bench.Source(name)) && ReadAll(bench.Source(name)) == content;
  }

  /// What must hold whatever fails: the old carrier, or a whole one, or the old one as backup; and no
  /// original has gone whose entry can't be read.
  static void ExpectNothingLost(HideBench& bench, const std::optional<HideResult>& result) {
    Contents hidden = bench.Found();
    const bool oldEntryReads = hidden.contains("old");
    EXPECT_TRUE(oldEntryReads || bench.BackupIsOld());
    for (const auto& [name, content] : {std::pair{"a.txt", contentOfA}, std::pair{"b.txt", contentOfB}}) {
      const auto entry = hidden.find(name);
      const bool reads = entry != hidden.end() && entry->second == content;
      EXPECT_TRUE(reads || OriginalStands(bench, name, content)) << name;
      EXPECT_TRUE(entry == hidden.end() || reads) << name;
    }
    if (!result) {
      EXPECT_EQ(ReadAll(bench.carrier), bench.oldBytes);
      return;
    }
    if (result->backup.empty())
      EXPECT_TRUE(oldEntryReads && hidden.size() == 1 + result->hidden);
    else
      EXPECT_TRUE(bench.BackupIsOld());
    EXPECT_TRUE(result->ending == HideEnding::Aborted || hidden.size() == 1 + result->hidden);
  }
};

}  // namespace

TEST_P(Sweep, FailingAnyFileOperationLosesNothing) {
  const auto [answer, times] = GetParam();
  Run quiet;
  ASSERT_EQ(quiet.bench.RunHideOn(quiet.files).ending, HideEnding::Done);
  for (std::size_t k = 1; k <= quiet.files.Count(); ++k) {
    SCOPED_TRACE("operation " + std::to_string(k) + ", " + quiet.files.Record()[k - 1].name + " " +
                 quiet.files.Record()[k - 1].path.filename().native());
    Run run;
    run.files.Fail({.at = k, .times = times, .writes = Writes::FirstHalf});
    run.AnswerAllWith(answer);
    std::optional<HideResult> result;
    try {
      result = run.bench.RunHideOn(run.files);
    } catch (const Error&) {
    }
    ExpectNothingLost(run.bench, result);
    if (answer == Answer::Retry && times == Times::Once && result) {
      EXPECT_EQ(result->ending, HideEnding::Done);
      EXPECT_EQ(result->hidden, 2U);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, Sweep,
                         testing::Combine(testing::Values(Answer::Abort, Answer::Retry, Answer::Ignore),
                                          testing::Values(Times::Once, Times::FromThenOn)));

TEST(HideSweep, FailingAnyOperationOfARestoreKeepsTheBackupUntilTheCarrierIsGood) {
  const auto arrange = [](HideBench& bench) {
    bench.With({"old"}).Row("a.txt", twoWrites);
    bench.Remember();
    bench.hideScreen.script.onYield = [&bench](std::size_t) {
      if (bench.Size() > static_cast<Length>(bench.oldBytes.size()))
        bench.hideScreen.script.isCancelled = true;
    };
  };
  HideBench quiet;
  arrange(quiet);
  FaultyFiles counting(quiet.posix);
  ASSERT_EQ(quiet.RunHideOn(counting).ending, HideEnding::Cancelled);
  for (const Answer answer : {Answer::Abort, Answer::Retry, Answer::Ignore}) {
    for (std::size_t k = 1; k <= counting.Count(); ++k) {
      HideBench bench;
      arrange(bench);
      FaultyFiles files(bench.posix);
      files.Fail({.at = k});
      bench.hideScreen.script.Always("hide.error", answer).Always("load.error", Answer::Abort);
      try {
        const HideResult result = bench.RunHideOn(files);
        EXPECT_EQ(bench.BackupIsOld(), !result.backup.empty()) << k;
        EXPECT_TRUE(answer != Answer::Retry || result.ending == HideEnding::Cancelled) << k;
      } catch (const Error&) {
      }
      EXPECT_TRUE(bench.IsOld() || bench.BackupIsOld()) << "operation " << k;
    }
  }
}

TEST(HideSweep, AFullDiskAtAnyByteLeavesWholeEntriesOrTheOldState) {
  for (Length budget = 0;; budget += 13) {
    HideBench bench(200);
    bench.Row("a.txt", contentOfB).Row("b.txt", contentOfB + contentOfB);
    bench.request.originals = Originals::Destroy;
    bench.request.compress = budget % 2 == 0;
    FaultyFiles files(bench.posix);
    files.LimitSpace(budget);
    bench.hideScreen.script.Always("hide.no-space", Answer::Cancel).Always("hide.error", Answer::Abort);
    bench.hideScreen.script.Always("destroy.error", Answer::Ignore);  // overwriting takes space
    const HideResult result = bench.RunHideOn(files);
    if (result.ending == HideEnding::Done) break;
    EXPECT_FALSE(bench.BackupExists()) << budget;
    EXPECT_EQ(bench.Found().size(), result.hidden) << budget;
    EXPECT_EQ(ReadAll(bench.Source("a.txt")), contentOfB);
    EXPECT_TRUE(result.ending == HideEnding::NoSpace || bench.IsOld()) << budget;
    ASSERT_LT(budget, 5000);
  }
}

}  // namespace tarnel::test
