#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <functional>
#include <set>

#include "carrier/tags.h"
#include "retrieval/run_update.h"
#include "tests/retrieval/retrieval_bench.h"
#include "tests/support/held_key.h"
#include "tests/support/surroundings.h"

namespace tarnel::test {
namespace {

/// One of the three rewriters on a write-protected carrier of two interleaved hideouts.
struct Rewriter {
  const char* name;
  std::function<RewriteEnding(RetrievalBench&)> run;
  Under underAfter;
  Strings contentsAfter;
  mode_t modeAfterAbort;
  std::set<mode_t> modesAfterCancel;  ///< inside a copy and between copies
};

const std::string kBig = Pattern(33000, 7);

RewriteEnding UpdateB(RetrievalBench& bench) {
  const UpdateRequest request{.parcel = ParcelOf(bench.catalogue.Rows().at(bench.RowNamed("b"))),
                              .previewFile = bench.folder.Put("edited", kBig)};
  const UpdateResult result = RunUpdate(request, bench.faulty, bench.rewriteScreen);
  EXPECT_EQ(result.parcel.ViewTail == request.parcel.ViewTail, result.ending != RewriteEnding::Done);
  return result.ending;
}

class Rewrite : public testing::TestWithParam<Rewriter> {
 protected:
  /// Thousands of carriers are written through to the medium: one that is memory does that at once.
  static void SetUpTestSuite() {
    if (::access("/dev/shm", W_OK) == 0) inMemory.emplace("TMPDIR", "/dev/shm");
  }
  static void TearDownTestSuite() { inMemory.reset(); }

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
    WriteAll(bench->carrier, before, 0444);
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

  static inline std::optional<Variable> inMemory;
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
        const mode_t mode = bench->posix.Stat(bench->carrier)->mode;
        const bool isInside = answer == Answer::Abort && quiet->files.Record()[k - 1].name == "File.WriteAt";
        EXPECT_TRUE(!isInside || mode == GetParam().modeAfterAbort) << mode;
        if (ending == RewriteEnding::Done) ++done;
        if (ending == RewriteEnding::NotReplaced) {
          EXPECT_TRUE(times == Times::FromThenOn || mode == 0444) << mode;
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
  std::size_t lastWrite = 0;
  quiet->files.before = [&](const Operation& operation) {
    if (operation.name == "File.WriteAt") lastWrite = quiet->rewriteScreen.script.Yields();
  };
  ASSERT_EQ(Run(*quiet), RewriteEnding::Done);
  const std::size_t yields = quiet->rewriteScreen.script.Yields();
  std::set<mode_t> modes;
  for (std::size_t n = 0; n <= yields; ++n) {
    const auto bench = Bench();
    bench->rewriteScreen.script.CancelAtYield(n);
    const RewriteEnding ending = Run(*bench);
    ExpectOldOrNew(*bench, ending);
    EXPECT_TRUE(n > lastWrite || ending == RewriteEnding::Cancelled) << n;
    if (ending == RewriteEnding::Cancelled) modes.insert(bench->posix.Stat(bench->carrier)->mode);
    EXPECT_FALSE(std::filesystem::exists(bench->temporary));
  }
  EXPECT_EQ(modes, GetParam().modesAfterCancel);
}

TEST_P(Rewrite, WritesTheNewCarrierThroughAndLocksItBeforeItTakesThePlaceOfTheOldOne) {
  const auto bench = Bench();
  bench->files.before = [&](const Operation& operation) {
    EXPECT_TRUE(std::filesystem::exists(bench->carrier)) << operation.name;
    const bool isPart = operation.name == "File.WriteAt" && operation.path == bench->temporary;
    EXPECT_TRUE(!isPart || bench->posix.Stat(bench->temporary)->mode == 0600) << "a part is nobody else's";
  };
  bench->files.locksAreMandatory = true;
  EXPECT_EQ(Run(*bench), RewriteEnding::Done);
  std::string last;
  for (const Operation& operation : bench->files.Record())
    for (const std::string name :
         {"File.WriteAt", "File.Sync", "File.Lock", "Files.Rename", "Files.SyncFolder"})
      if (operation.name == name) last += " " + name;
  EXPECT_TRUE(last.ends_with(" File.WriteAt File.Sync File.Lock Files.Rename Files.SyncFolder")) << last;
}

TEST_P(Rewrite, KeepsTheModeOfACarrierAndALinkToIt) {
  for (const mode_t mode : {0400u, 0444u, 0600u, 0755u}) {
    const auto bench = Bench();
    const Path real = bench->folder / "real.bin";
    std::filesystem::rename(bench->carrier, real);
    std::filesystem::create_symlink(real, bench->carrier);
    ::chmod(real.c_str(), mode);
    bench->folder.Put("edited", kBig);
    const OrdinaryUser user;
    EXPECT_EQ(Run(*bench), RewriteEnding::Done);
    ExpectOldOrNew(*bench, RewriteEnding::Done);
    EXPECT_TRUE(std::filesystem::is_symlink(bench->carrier));
    EXPECT_EQ(bench->posix.Stat(real, Files::Links::DontFollow)->mode, mode);
  }
}

TEST_P(Rewrite, RefusesACarrierThatChangedSinceItWasReadOrIsLocked) {
  const auto bench = Bench();
  const std::string longer = std::string(before).insert(50, "x");
  for (const std::string& bytes : {before, longer, std::string(), Pattern(50)}) {
    WriteAll(bench->carrier, bytes);
    const auto held = bytes == before ? OpenLocked(bench->carrier, bench->posix) : nullptr;
    EXPECT_THROW(GetParam().run(*bench), Error);
    EXPECT_EQ(ReadAll(bench->carrier), bytes);
    EXPECT_FALSE(std::filesystem::exists(bench->temporary));
  }
}

TEST_P(Rewrite, RefusesWhereAFileOfTheUserLies) {
  const auto bench = Bench();
  WriteAll(bench->temporary, "precious");
  try {
    GetParam().run(*bench);
    ADD_FAILURE() << "replaced the user's file";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::FileExists);
    EXPECT_EQ(error.Path(), bench->temporary);
  }
  EXPECT_EQ(ReadAll(bench->temporary), "precious");
  EXPECT_EQ(ReadAll(bench->carrier), before);
}

TEST_P(Rewrite, SaysThatTheNewCarrierLiesThereEvenIfTheOldOneStaysWritable) {
  const auto bench = Bench();
  bool isOver = false;
  bench->files.Fail({.times = Times::FromThenOn, .counts = [&](const Operation& operation) {
                       isOver |= operation.name == "Files.Rename";
                       return operation.name == "Files.Rename" ||
                              (isOver && operation.name == "File.SetMode");
                     }});
  bench->rewriteScreen.script.Always(std::string(GetParam().name) + ".error", Answer::Abort);
  EXPECT_EQ(Run(*bench), RewriteEnding::NotReplaced);
  EXPECT_TRUE(std::filesystem::exists(bench->temporary));
  std::string said;
  for (const Question& question : bench->rewriteScreen.script.Asked())
    if (question.id.ends_with(".not-replaced")) said = question.text;
  const std::string use = std::string(GetParam().name) == "update" ? "use: " : "use the temp file: ";
  EXPECT_EQ(said, "Error! Carrier file could not be created! Please " + use + bench->temporary.string() +
                      " as a carrier file.");
}

TEST_P(Rewrite, WorksWhereTheFileSystemKeepsNoModes) {
  const auto bench = Bench();
  WriteAll(bench->carrier, before, 0600);
  bench->files.Fail({.number = ErrorNumber::PermissionDenied,
                     .code = EPERM,
                     .times = Times::FromThenOn,
                     .counts = [](const Operation& operation) { return operation.name == "File.SetMode"; }});
  EXPECT_EQ(Run(*bench), RewriteEnding::Done);
}

INSTANTIATE_TEST_SUITE_P(
    Each, Rewrite,
    testing::Values(Rewriter{"delete",
                             [](RetrievalBench& bench) { return bench.Delete({"a"}).ending; },
                             {},
                             {"b=two"},
                             0444,
                             {0444, 0644}},
                    Rewriter{"update", UpdateB, {}, {"a=" + Pattern(16000), "b=" + kBig}, 0644, {0444}},
                    Rewriter{
                        "password",
                        [](RetrievalBench& bench) { return bench.ChangePassword("secret", "new").ending; },
                        {"new"},
                        {"a=" + Pattern(16000), "b=two"},
                        0444,
                        {0444, 0644}}),
    [](const auto& instance) { return std::string(instance.param.name); });

TEST(Delete, TakesOutJustTheChosenEntriesAndReloads) {
  RetrievalBench bench(100);
  bench.Hide({"a", Pattern(40000)}).Hide({"x", "his"}, kOther).Hide({"b", "two"}).Hide({"c", "three"}).Load();
  std::string expected = ReadAll(bench.carrier);
  for (const std::string name : {"c", "a"}) {  // from behind, so that positions hold
    const MirrorRow& row = bench.catalogue.Rows().at(bench.RowNamed(name));
    expected.erase(static_cast<std::size_t>(row.start.value - 1),
                   static_cast<std::size_t>(row.End() - row.start));
  }
  const DeleteResult result = bench.Delete({"c", "a", "c"});
  EXPECT_EQ(result.ending, RewriteEnding::Done);
  EXPECT_EQ(result.deleted, 2u);
  EXPECT_EQ(ReadAll(bench.carrier), expected);
  EXPECT_EQ(bench.Contents(), Strings{"b=two"});
  EXPECT_EQ(Last(bench.rewriteScreen.script.Transcript()), "loaded 1");
  EXPECT_EQ(bench.ContentsUnder(kOther), Strings{"x=his"});
  EXPECT_EQ(bench.folder.Names(), Strings{"carrier.bin"});
}

TEST(Delete, OfTheLastEntryKeepsTheRootAndTheOtherHideoutAndReplacesALeftoverThatMayGo) {
  RetrievalBench bench(0);
  bench.Hide({"a", "x", "folder"}).Hide({"x", "his"}, kOther).Load();
  WriteAll(bench.temporary, "left over");
  RunDelete({.rows = {0}, .leftover = Leftover::Replace}, bench.faulty, bench.rewriteScreen);
  EXPECT_TRUE(bench.catalogue.Rows().empty());
  ASSERT_NE(bench.catalogue.FindRoot(bench.carrier), nullptr);
  EXPECT_TRUE(bench.catalogue.FindRoot(bench.carrier)->children.empty());
  EXPECT_EQ(Last(bench.rewriteScreen.script.Transcript()), "emptied");
  EXPECT_EQ(bench.ContentsUnder(kOther), Strings{"x=his"});
}

class Password : public testing::Test {
 protected:
  Script& script() { return bench.rewriteScreen.script; }

  RetrievalBench bench{100};
};

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
        {.oldPassword = HeldKey(c.old), .newPassword = HeldKey(c.now), .confirmation = Secret("New")},
        bench.faulty, bench.rewriteScreen);
    EXPECT_EQ(result.refused, c.fault);
    EXPECT_EQ(Last(script().Asked()).text, c.text);
  }
  EXPECT_EQ(bench.files.Count(), 0u);
}

TEST_F(Password, OpensEveryEntryInItsOldPlaceAndLeavesOthersByteForByte) {
  bench.Hide({.name = "a", .content = Pattern(40000), .mode = "755"}).Hide({"x", "his"}, kOther);
  bench.Compressed({"b", SampleText(20000)}).Load(kOther);
  const EntryTail foreignTail = bench.catalogue.Rows().at(0).tail;
  bench.ContentsUnder({});
  EXPECT_EQ(bench.ChangePassword("secret", "new").changed, 2u);
  EXPECT_EQ(bench.current.CurrentPassword, HeldKey("new"));
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
  script().Expect("password.damaged", Answer::Retry).Expect("password.damaged", Answer::Abort);
  EXPECT_EQ(bench.ChangePassword("secret", "new").ending, RewriteEnding::Aborted);
  EXPECT_EQ(ReadAll(bench.carrier), before);
  EXPECT_EQ(bench.folder.Names(), Strings{"carrier.bin"});
  EXPECT_EQ(script().Asked().at(0).text,
            "Error: 57\n\rcannot re-encrypt a: its contents are damaged or were altered");

  script().Expect("password.damaged", Answer::Ignore);
  EXPECT_EQ(bench.ChangePassword("secret", "new").ending, RewriteEnding::Done);
  EXPECT_EQ(bench.Contents(), (Strings{"a=(damaged)", "b=fine"}));
}

TEST_F(Password, AsksBeforeItLeavesAnEntryToTheOldPassword) {
  bench.Hide({"a", "aaaa"}).Hide({"b", "fine"});
  bench.FlipBit(101 + 36 + 60, 0);  // in the record
  bench.Load();
  const std::string before = ReadAll(bench.carrier);
  script().Expect("password.left-behind", Answer::Abort).Expect("password.left-behind", Answer::Ignore);
  EXPECT_EQ(bench.ChangePassword("secret", "new").ending, RewriteEnding::Aborted);
  EXPECT_EQ(ReadAll(bench.carrier), before);
  const PasswordResult result = bench.ChangePassword("secret", "new");
  EXPECT_EQ(result.changed, 1U);
  EXPECT_EQ(result.leftBehind.entries.size(), 1U);
}

TEST_F(Password, TakesTheHideoutAwayIfTheReloadFindsNothing) {
  bench.Hide({"a"}).Load();
  bench.rewriteScreen.script.onYield = [&](std::size_t) { bench.guards.ReadingBusy = true; };
  EXPECT_EQ(bench.ChangePassword("secret", "secret").ending, RewriteEnding::Done);
  EXPECT_EQ(bench.catalogue.FindRoot(bench.carrier), nullptr);
  EXPECT_TRUE(bench.catalogue.Rows().empty());
  EXPECT_EQ(Last(script().Transcript()), "emptied");
}

}  // namespace
}  // namespace tarnel::test
