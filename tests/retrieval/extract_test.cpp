#include <gtest/gtest.h>
#include <sys/stat.h>

#include "retrieval/run_extract.h"
#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {
namespace {

mode_t ModeOf(const Path& path) {
  struct stat data {};
  EXPECT_EQ(::lstat(path.c_str(), &data), 0) << path;
  return data.st_mode & 07777;
}

/// Record text with a hostile or odd value put in by hand.
std::string RecordWith(const std::string& name, const std::string& folder, std::size_t payload) {
  std::string record(CarrierBench::RecordOf({"NAME", "harm", "FOLDER"}, payload));
  record.replace(record.find("FOLDER"), 6, folder);
  record.replace(record.find("NAME"), 4, name);
  return record;
}

class Extract : public testing::Test {
 protected:
  Strings Out() const {
    Strings names = bench.folder.Names();
    std::erase_if(names, [](const std::string& name) { return !name.starts_with("out/"); });
    for (std::string& name : names)
      name = name.substr(4);
    return names;
  }
  std::string Content(const std::string& name) const { return ReadAll(bench.target / name); }
  Script& script() { return bench.extractScreen.script; }

  RetrievalBench bench{100};
};

}  // namespace

TEST_F(Extract, BringsBackBytesNamesFoldersAndCompressedFiles) {
  const std::string odd = "l\xc3\xa4ngs > \xff\n|?";
  bench.Hide({"empty", ""}).Hide({"exact", Pattern(30000), "a\\b"}).Hide({odd, Pattern(70001)});
  bench.Compressed({"text", SampleText(200000), "a"}).Hide({"foreign", "no"}, kOther);
  bench.Load();
  const ExtractResult result = bench.Extract(bench.All());
  EXPECT_EQ(result.ending, ExtractEnding::Done);
  EXPECT_EQ(result.extracted, 4u);
  EXPECT_EQ(Out(), (Strings{"a", "a/b", "a/b/exact", "a/text", "empty", odd}));
  EXPECT_EQ(Content("empty"), "");
  EXPECT_EQ(Content("a/b/exact"), Pattern(30000));
  EXPECT_EQ(Content(odd), Pattern(70001));
  EXPECT_EQ(Content("a/text"), SampleText(200000));
}

TEST_F(Extract, ShowsEachFileAndYieldsBehindEachFullBlock) {
  bench.Hide({"b", Pattern(30000 - 32)}).Hide({"a", Pattern(15000)});
  bench.Load();
  ASSERT_EQ(bench.Extract(bench.All()).extracted, 2u);
  EXPECT_EQ(script().Transcript(),
            (Strings{"[1/2] a 15032 to a", "0 of 15032", "yield", "15000 of 15032", "yield", "15032 of 15032",
                     "15032 of 15032", "yield", "[2/2] b 30000 to b", "0 of 30000", "yield", "15000 of 30000",
                     "yield", "30000 of 30000", "yield", "30000 of 30000", "yield"}));
}

TEST_F(Extract, SaysNothingWhenNothingIsChosen) {
  bench.Hide({"a"}).Load();
  ExtractRequest request = bench.All();
  request.all = false;
  EXPECT_EQ(bench.Extract(request).ending, ExtractEnding::NothingChosen);
  EXPECT_FALSE(std::filesystem::exists(bench.target));
}

TEST_F(Extract, SetsReadOnlyAndTheKeptModeNeverBeyondPermissions) {
  struct Case {
    std::string attributes, mode;
    mode_t expected;
  };
  for (const Case& c : std::vector<Case>{{"32", "", 0644},
                                         {"33", "", 0444},
                                         {"34", "", 0644},
                                         {"33", "600", 0600},
                                         {"32", "4755", 0755},
                                         {"32", "0", 0},
                                         {"32", "9", 0644},
                                         {"32", "7x", 0644},
                                         {"1e300", "", 0644},
                                         {"-1", "", 0644}}) {
    RetrievalBench one(100);
    const std::string payload = CarrierBench::Encrypt("x", {});
    std::string record(CarrierBench::RecordOf({.name = "a", .content = "x", .mode = c.mode}, payload.size()));
    record.replace(record.find("?Attr=<32"), 9, "?Attr=<" + c.attributes);
    one.HideRecord(record, payload).Load();
    ASSERT_EQ(one.Extract(one.All()).extracted, 1u);
    EXPECT_EQ(ModeOf(one.target / "a"), c.expected) << c.attributes << " " << c.mode;
  }
}

TEST_F(Extract, PutsAFileWhereTargetAndFolderNamesSay) {
  struct Case {
    std::string target;
    bool useFolderNames, subfolderExists;
    std::string where;
  };
  for (const Case& c : std::vector<Case>{{"out", true, false, "out/Pics/a"},
                                         {"out/", true, false, "out/Pics/a"},
                                         {"out", false, true, "out/a"},
                                         {"out/", false, true, "out/Pics/a"},  // an existing one is used
                                         {"out/", false, false, "out/a"}}) {
    RetrievalBench one(100);
    one.Hide({"a", "x", "Pics"}).Load();
    if (c.subfolderExists) one.folder.Put("out/Pics/there", "");
    ExtractRequest request = one.All();
    request.target = one.folder / c.target;
    request.useFolderNames = c.useFolderNames;
    EXPECT_EQ(one.Extract(request).extracted, 1u);
    EXPECT_EQ(ReadAll(one.folder / c.where), "x") << c.target;
  }
}

TEST_F(Extract, MakesOneLevelOfTheTargetOnly) {
  bench.Hide({"a"}).Load();
  script().Expect("extract.error", Answer::Abort);
  ExtractRequest request = bench.All();
  request.target = bench.folder / "x" / "y";
  EXPECT_EQ(bench.Extract(request).ending, ExtractEnding::Aborted);
  EXPECT_FALSE(std::filesystem::exists(bench.folder / "x"));
}

TEST_F(Extract, AsksBeforeItReplacesAndRemembersOverwriteAll) {
  bench.Hide({"c", "new"}).Hide({"b", "new"}).Hide({"a", "new"}).Hide({"z", "new"}).Load();
  for (const std::string name : {"z", "a", "b", "c"})
    bench.folder.Put("out/" + name, "old", 0400);
  script()
      .Expect("extract.overwrite", Answer::No)
      .Expect("extract.overwrite", Answer::Yes)
      .Expect("extract.overwrite", Answer::OverwriteAll);
  const ExtractResult result = bench.Extract(bench.All());
  EXPECT_EQ(result.keptExisting, 1u);
  EXPECT_EQ(result.extracted, 3u);
  EXPECT_EQ(Content("z") + Content("a") + Content("b") + Content("c"), "oldnewnewnew");
  EXPECT_EQ(script().Asked()[0].text, "The file: " + (bench.target / "z").string() +
                                          " is already existing!\r\n\r\nDo you want to overwrite?");
}

TEST_F(Extract, MeetsItsOwnFileAgainWhenAnEntryIsChosenTwice) {
  bench.Hide({"a", "x"}).Load();
  ExtractRequest request = bench.All();
  request.all = false;
  request.choices = {{.itemFolder = {}}, {.itemFolder = {}}};
  script().Expect("extract.overwrite", Answer::No);
  EXPECT_EQ(bench.Extract(request).extracted, 1u);
}

TEST_F(Extract, ReplacesALinkInsteadOfFollowingIt) {
  bench.Hide({"a", "new"}).Load();
  const Path victim = bench.folder.Put("victim", "mine");
  std::filesystem::create_directory(bench.target);
  std::filesystem::create_symlink(victim, bench.target / "a");
  script().Expect("extract.overwrite", Answer::Yes);
  EXPECT_EQ(bench.Extract(bench.All()).extracted, 1u);
  EXPECT_EQ(ReadAll(victim), "mine");
  EXPECT_EQ(std::filesystem::symlink_status(bench.target / "a").type(), std::filesystem::file_type::regular);
}

TEST_F(Extract, RefusesAFolderInTheFilesPlace) {
  bench.Hide({"a", "new"}).Load();
  bench.folder.Put("out/a/inside", "");
  script().Expect("extract.error", Answer::Ignore);
  EXPECT_EQ(bench.Extract(bench.All()).leftOut, Strings{"a"});
  EXPECT_EQ(script().Asked()[0].cause->Number(), ErrorNumber::PathFileAccess);
}

TEST_F(Extract, NeverReplacesTheCarrierItself) {
  bench.Hide({"carrier.bin", "x"}).Hide({"link.bin", "x"}).Load();
  const std::string before = ReadAll(bench.carrier);
  std::filesystem::create_symlink(bench.carrier, bench.folder / "link.bin");
  ExtractRequest request = bench.All();
  request.target = bench.folder.Where();
  request.carrier = bench.folder / "link.bin";
  bench.catalogue.RemoveCarrier(bench.carrier);
  bench.carrier = request.carrier;
  bench.Load();
  request.overwriteAll = true;
  script().Always("extract.error", Answer::Ignore);
  EXPECT_EQ(bench.Extract(request).leftOut, (Strings{"link.bin", "carrier.bin"}));
  EXPECT_EQ(ReadAll(bench.folder / "carrier.bin"), before);
  EXPECT_TRUE(std::filesystem::is_symlink(request.carrier));
}

TEST_F(Extract, NeverWritesOutsideTheTargetWhateverTheRecordSays) {
  std::vector<std::pair<std::string, std::string>> places;  // name and folder
  for (const char* name : {"..", ".", "../x", "/tmp/x", "a/b", "x/../../y", "/", "//", "./x", "link/x"})
    places.emplace_back(name, "");
  for (const char* folder : {"..",    ".",       "\\",      "..\\..", "a\\..\\..\\b", "/etc",     "a\\/etc",
                             "link",  "link\\a", "\\\\a",   "a\\\\b", "../..",        "a\\../..", "a\\.\\",
                             "a\\..", "\\..",    "...\\..", "keep",   "keep\\a",      "a/../b"})
    places.emplace_back("ok", folder);
  bench.folder.Put("outside/keep", "");
  bench.folder.Put("out/keep", "");
  std::filesystem::create_directory_symlink(bench.folder / "outside", bench.target / "link");
  for (const auto& [name, folder] : places) {
    const std::string payload = CarrierBench::Encrypt("harm", {});
    WriteAll(bench.carrier, Pattern(100));
    bench.HideRecord(RecordWith(name, folder, payload.size()), payload);
    ASSERT_EQ(bench.Load(), LoadResult::Loaded) << name;
    for (const bool isNested : {false, true}) {
      ExtractRequest request = bench.All();
      request.target = isNested ? bench.target / "" : bench.target;
      script().Expect("extract.error", Answer::Ignore);
      EXPECT_EQ(bench.Extract(request).leftOut.size(), 1u) << folder << " " << name;
      EXPECT_EQ(script().Asked().back().cause->Number(), ErrorNumber::BadFileName) << folder << " " << name;
    }
  }
  EXPECT_EQ(bench.folder.Names(),
            (Strings{"carrier.bin", "out", "out/keep", "out/link", "outside", "outside/keep"}));
}

TEST_F(Extract, StaysInsideWhenAFolderIsSwappedForALinkMeanwhile) {
  bench.Hide({"a", "secret", "Pics"}).Load();
  const Path outside = bench.folder / "outside";
  std::filesystem::create_directory(outside);
  ASSERT_EQ(bench.Extract(bench.All()).extracted, 1u);
  const std::size_t operations = bench.files.Count();
  for (std::size_t k = 1; k <= operations; ++k) {
    std::filesystem::remove_all(bench.target);
    std::filesystem::remove_all(bench.folder / "moved");
    std::filesystem::create_directories(bench.target / "Pics");
    RetrievalBench& b = bench;
    FaultyFiles files(b.posix);
    files.before = [&](const Operation&) {
      if (files.Count() != k) return;
      std::filesystem::rename(b.target / "Pics", b.folder / "moved");
      std::filesystem::create_directory_symlink(outside, b.target / "Pics");
    };
    script().Always("extract.error", Answer::Abort);
    RunExtract(b.All(), b.catalogue, files, b.extractScreen);
    EXPECT_TRUE(std::filesystem::is_empty(outside)) << "at operation " << k;
  }
}

TEST_F(Extract, NeverGivesWrongBytesWhateverBitIsFlipped) {
  bench.Hide({"a", "stored"}).Compressed({"b", SampleText(60)}).Load();
  const std::string whole = ReadAll(bench.carrier);
  std::filesystem::create_directory(bench.target);
  script().Always("extract.damaged", Answer::Ignore);
  for (const MirrorRow& row : bench.catalogue.Rows())
    for (Length at = row.start.value - 1; at < row.start.value - 1 + row.size; ++at) {
      WriteAll(bench.carrier, WithFlippedBit(whole, static_cast<std::size_t>(at * 8 + at % 8)));
      const ExtractResult result = bench.Extract(bench.All());
      ASSERT_EQ(result.damaged, Strings{std::string(row.Name())});
      ASSERT_EQ(Out().size(), 1u);
      std::filesystem::remove(bench.target / Out()[0]);
    }
}

TEST_F(Extract, NeverGivesWrongBytesWhereverTheCarrierIsCut) {
  bench.Hide({"a", Pattern(100)}).Load();
  const std::string whole = ReadAll(bench.carrier);
  const std::size_t payloadEnd = 100 + 132;
  script().Always("extract.error", Answer::Ignore);
  for (std::size_t length = 0; length < payloadEnd; ++length) {
    WriteAll(bench.carrier, whole.substr(0, length));
    ASSERT_EQ(bench.Extract(bench.All()).leftOut, Strings{"a"});
  }
  EXPECT_TRUE(Out().empty());
}

TEST_F(Extract, SaysWhatIsDamagedAndGoesOnOrEnds) {
  bench.Hide({"b", "fine"}).Hide({"a", "bad"}).Load();
  bench.FlipBit(bench.catalogue.Rows()[0].start.value + 20, 3);
  script().Expect("extract.damaged", Answer::Ignore);
  ExtractResult result = bench.Extract(bench.All());
  EXPECT_EQ(result.damaged, Strings{"a"});
  EXPECT_EQ(Out(), Strings{"b"});
  EXPECT_EQ(script().Asked()[0].text, "Error: 57\n\rcannot extract a: it is damaged or was altered");
  script().Expect("extract.damaged", Answer::Abort);
  result = bench.Extract(bench.All());
  EXPECT_EQ(result.ending, ExtractEnding::Aborted);
  EXPECT_EQ(result.damaged, Strings{"a"});
}

TEST_F(Extract, LeavesOnlyWholeFilesWhereverItIsCancelled) {
  bench.Hide({"b", Pattern(40000)}).Hide({"a", Pattern(20000)}).Load();
  bench.Extract(bench.All());
  const std::size_t yields = script().Yields();
  ASSERT_GE(yields, 6u);
  for (std::size_t n = 0; n <= yields; ++n) {
    std::filesystem::remove_all(bench.target);
    ExtractScript screen;
    screen.script.CancelAtYield(n);
    const ExtractResult result = RunExtract(bench.All(), bench.catalogue, bench.files, screen);
    EXPECT_EQ(Out().size(), result.extracted);
    EXPECT_EQ(result.ending == ExtractEnding::Cancelled, result.extracted < 2);
    for (const std::string& name : Out())
      EXPECT_EQ(Content(name), Pattern(name == "a" ? 20000 : 40000));
  }
}

TEST_F(Extract, LeavesOnlyWholeFilesWhateverFails) {
  bench.Hide({"b", Pattern(70000), "x"}).Compressed({"a", SampleText(20000)}).Load();
  bench.Extract(bench.All());
  const std::size_t operations = bench.files.Count();
  for (std::size_t k = 1; k <= operations; ++k)
    for (const Answer answer : {Answer::Abort, Answer::Retry, Answer::Ignore})
      for (const Times times : {Times::Once, Times::FromThenOn}) {
        if (answer == Answer::Retry && times == Times::FromThenOn) continue;
        std::filesystem::remove_all(bench.target);
        FaultyFiles files(bench.posix);
        files.Fail({.at = k, .number = ErrorNumber::DiskFull, .times = times, .writes = Writes::FirstHalf});
        ExtractScript screen;
        screen.script.Always("extract.error", answer).Always("extract.overwrite", Answer::Yes);
        const ExtractResult result = RunExtract(bench.All(), bench.catalogue, files, screen);
        EXPECT_TRUE(answer != Answer::Retry || result.extracted == 2u) << k;
        for (const std::string& name : Out())
          EXPECT_TRUE(times == Times::FromThenOn || !name.ends_with(".part")) << k;
        std::size_t whole = 0;
        for (const auto& [name, content] :
             {std::pair{"x/b", Pattern(70000)}, std::pair{"a", SampleText(20000)}})
          if (std::filesystem::exists(bench.target / name)) {
            EXPECT_EQ(Content(name), content) << k;
            ++whole;
          }
        EXPECT_EQ(whole, result.extracted) << k;
      }
}

}  // namespace tarnel::test
