#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>

#include "retrieval/run_update.h"
#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {
namespace {

/// One of the three rewriters on a carrier of two interleaved hideouts.
struct Rewriter {
  const char* name;
  std::function<RewriteEnding(RetrievalBench&)> run;
  Under underAfter;
  Strings contentsAfter;
};

const std::string kBig = Pattern(33000, 7);

void PrintTo(const Rewriter& rewriter, std::ostream* stream) {
  *stream << rewriter.name;
}

RewriteEnding UpdateB(RetrievalBench& bench) {
  PreviewParcel parcel = ParcelOf(bench.catalogue.Rows()[bench.RowNamed("b")]);
  return RunUpdate({.previewFile = bench.folder.Put("edited", kBig)}, parcel, bench.faulty,
                   bench.rewriteScreen)
      .ending;
}

class Rewrite : public testing::TestWithParam<Rewriter> {
 protected:
  /// Thousands of carriers are written through to the medium: one that is memory does that at once.
  static void SetUpTestSuite() {
    if (::access("/dev/shm", W_OK) == 0) ::setenv("TMPDIR", "/dev/shm", 1);
  }
  static void TearDownTestSuite() { ::unsetenv("TMPDIR"); }

  /// A bench with the carrier as it was before, loaded.
  std::unique_ptr<RetrievalBench> Bench() {
    auto bench = std::make_unique<RetrievalBench>(20000);
    if (before.empty()) {
      bench->Hide({"a", Pattern(16000)})
          .Hide({"x", "his"}, kOther)
          .Hide({"b", "two"})
          .Hide({"y", "hers"}, kOther);
      before = ReadAll(bench->carrier);
    }
    WriteAll(bench->carrier, before);
    bench->Load();
    bench->rewriteScreen.script.Always("update.confirm", Answer::Yes).Always("load.error", Answer::Abort);
    for (const std::string name : {"delete", "update", "password"})
      bench->rewriteScreen.script.Always(name + ".not-replaced", Answer::Ok);
    return bench;
  }

  RewriteEnding Run(RetrievalBench& bench) {
    try {
      return GetParam().run(bench);
    } catch (const Error&) {  // refused before anything was done
      EXPECT_EQ(ReadAll(bench.carrier), before);
      return RewriteEnding::Aborted;
    }
  }

  /// The old carrier to the byte, or the new one with both hideouts whole.
  void ExpectOldOrNew(RetrievalBench& bench, RewriteEnding ending) {
    if (ending != RewriteEnding::Done) {
      EXPECT_TRUE(ReadAll(bench.carrier) == before);
      return;
    }
    EXPECT_EQ(bench.ContentsUnder(kOther), (Strings{"x=his", "y=hers"}));
    EXPECT_EQ(bench.ContentsUnder(GetParam().underAfter), GetParam().contentsAfter);
    EXPECT_EQ(ReadAll(bench.carrier).substr(0, 20000), before.substr(0, 20000));
  }

  std::string before;
};

TEST_P(Rewrite, LeavesTheOldCarrierOrTheNewOneWhateverFails) {
  const auto quiet = Bench();
  ASSERT_EQ(Run(*quiet), RewriteEnding::Done);
  ExpectOldOrNew(*quiet, RewriteEnding::Done);
  const std::size_t operations = quiet->files.Count();
  std::size_t done = 0;
  for (std::size_t k = 1; k <= operations; ++k)
    for (const Answer answer : {Answer::Abort, Answer::Retry, Answer::Ignore})
      for (const Times times : {Times::Once, Times::FromThenOn}) {
        if (answer == Answer::Retry && times == Times::FromThenOn) continue;
        SCOPED_TRACE("operation " + std::to_string(k) + " " + quiet->files.Record()[k - 1].name);
        const auto bench = Bench();
        bench->files.Fail({.at = k, .times = times, .writes = Writes::FirstHalf});
        bench->rewriteScreen.script.Always(std::string(GetParam().name) + ".error", answer);
        const RewriteEnding ending = Run(*bench);
        ExpectOldOrNew(*bench, ending);
        if (ending == RewriteEnding::Done) ++done;
        if (ending == RewriteEnding::NotReplaced) {
          std::filesystem::rename(bench->temporary, bench->carrier);
          ExpectOldOrNew(*bench, RewriteEnding::Done);
        }
        const bool mayStay = times == Times::FromThenOn || ending == RewriteEnding::NotReplaced;
        EXPECT_TRUE(mayStay || !std::filesystem::exists(bench->temporary));
      }
  EXPECT_GT(done, operations / 2) << "Retry must get somewhere";
}

TEST_P(Rewrite, LeavesTheOldCarrierWhereverItIsCancelled) {
  const auto quiet = Bench();
  ASSERT_EQ(Run(*quiet), RewriteEnding::Done);
  const std::size_t yields = quiet->rewriteScreen.script.Yields();
  std::size_t cancelled = 0;
  for (std::size_t n = 0; n <= yields; ++n) {
    const auto bench = Bench();
    bench->rewriteScreen.script.CancelAtYield(n);
    const RewriteEnding ending = Run(*bench);
    ExpectOldOrNew(*bench, ending);
    if (ending == RewriteEnding::Cancelled) ++cancelled;
    EXPECT_FALSE(std::filesystem::exists(bench->temporary));
  }
  EXPECT_GE(cancelled, 2u);
}

TEST_P(Rewrite, LeavesTheOldCarrierOnAFullDisk) {
  for (const std::int64_t space : {0, 1, 15000, 20001, 36500, 37000}) {
    const auto bench = Bench();
    bench->folder.Put("edited", kBig);
    bench->files.LimitSpace(space);
    bench->rewriteScreen.script.Always(std::string(GetParam().name) + ".error", Answer::Abort);
    const RewriteEnding ending = Run(*bench);
    ExpectOldOrNew(*bench, ending);
    EXPECT_FALSE(std::filesystem::exists(bench->temporary));
  }
}

TEST_P(Rewrite, NeverLeavesTheCarrierWithoutAFile) {
  const auto bench = Bench();
  bench->files.before = [&](const Operation& operation) {
    EXPECT_TRUE(std::filesystem::exists(bench->carrier)) << operation.name;
  };
  EXPECT_EQ(Run(*bench), RewriteEnding::Done);
}

INSTANTIATE_TEST_SUITE_P(
    Each, Rewrite,
    testing::Values(
        Rewriter{"delete", [](RetrievalBench& bench) { return bench.Delete({"a"}).ending; }, {}, {"b=two"}},
        Rewriter{"update", UpdateB, {}, {"a=" + Pattern(16000), "b=" + kBig}},
        Rewriter{"password",
                 [](RetrievalBench& bench) { return bench.ChangePassword("secret", "new").ending; },
                 {"new"},
                 {"a=" + Pattern(16000), "b=two"}}),
    [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace
}  // namespace tarnel::test
