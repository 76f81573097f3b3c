#include <gtest/gtest.h>

#include <functional>

#include "retrieval/delete_list.h"
#include "retrieval/run_extract.h"
#include "retrieval/work_list.h"
#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {
namespace {

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

  void HideTwo() { bench.Hide({"b", Pattern(70000), "x"}).Compressed({"a", SampleText(20000)}).Load(); }
  /// How many of the two have come out; each that is there must be whole.
  std::size_t WholeFiles() const {
    std::size_t count = 0;
    for (const auto& [name, content] :
         {std::pair{"x/b", Pattern(70000)}, std::pair{"a", SampleText(20000)}}) {
      if (!std::filesystem::exists(bench.target / name)) continue;
      EXPECT_EQ(Content(name), content);
      ++count;
    }
    return count;
  }
  auto PartsLeft() const {
    const Strings names = Out();
    return std::count_if(names.begin(), names.end(),
                         [](const auto& name) { return name.ends_with(".part"); });
  }

  RetrievalBench bench{100};
};

}  // namespace

TEST_F(Extract, ShowsEachFileAndYieldsBehindEachFullBlock) {
  bench.Hide({"b", Pattern(30000 - 32)}).Hide({"a", Pattern(15000)});
  bench.Load();
  ASSERT_EQ(bench.Extract(bench.All()).extracted, 2u);
  Strings shown = script().Transcript();
  shown.resize(std::min<std::size_t>(19, shown.size()));  // more yields may follow, until the medium is done
  EXPECT_EQ(shown, (Strings{"[1/2] a 15032", "to a", "0 of 15032", "yield", "15000 of 15032", "yield",
                            "15032 of 15032", "15032 of 15032", "yield", "[2/2] b 30000", "to b",
                            "0 of 30000", "yield", "15000 of 30000", "yield", "30000 of 30000", "yield",
                            "30000 of 30000", "yield"}));
}

TEST_F(Extract, SetsReadOnlyAndTheKeptModeNeverBeyondPermissions) {
  const struct {
    const char *attributes, *mode;
    mode_t expected;
  } cases[] = {{"32", "", 0644},    {"33", "", 0444},     {"34", "", 0644},
               {"33", "600", 0600}, {"32", "4755", 0755}, {"32", "0", 0},
               {"32", "9", 0644},   {"32", "7x", 0644},   {"32", "7777777777777777777777", 0644},
               {"1e300", "", 0644}, {"-1", "", 0644}};
  for (const auto& c : cases) {
    RetrievalBench one(100);
    one.HideRecord(
        std::string("?Fnm=<a>?Cmpr=<0>?CompVers=<701>?Attr=<") + c.attributes + ">?Mode=<" + c.mode + ">",
        CarrierBench::Encrypt("x", {}));
    one.Load();
    ASSERT_EQ(one.Extract(one.All()).extracted, 1u);
    EXPECT_EQ(one.posix.Stat(one.target / "a")->mode, c.expected) << c.attributes << " " << c.mode;
  }
}

TEST_F(Extract, PutsAFileWhereTargetAndFolderNamesSay) {
  const struct {
    const char* target;
    bool useFolderNames, subfolderExists;
    const char* where;
  } cases[] = {{"out", true, false, "out/Pics/a"},
               {"out/", true, false, "out/Pics/a"},
               {"out", false, true, "out/a"},
               {"out/", false, true, "out/Pics/a"},  // an existing one is used
               {"out/", false, false, "out/a"}};
  for (const auto& c : cases) {
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

TEST_F(Extract, MakesOneLevelOfTheTargetOnlyAndNoneWhereNothingIsChosen) {
  bench.Hide({"a"}).Load();
  ExtractRequest request = bench.All();
  request.all = false;
  EXPECT_EQ(bench.Extract(request).ending, ExtractEnding::NothingChosen);
  request.all = true;
  request.target = bench.target / "y";
  script().Expect("extract.error", Answer::Abort);
  EXPECT_EQ(bench.Extract(request).ending, ExtractEnding::Aborted);
  EXPECT_FALSE(std::filesystem::exists(bench.target));
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
  EXPECT_EQ(result.keptExisting, std::vector<Path>{bench.target / "z"});
  EXPECT_EQ(result.extracted, 3u);
  EXPECT_EQ(Content("z") + Content("a") + Content("b") + Content("c"), "oldnewnewnew");
  EXPECT_EQ(script().Asked().at(0).text, "The file: " + (bench.target / "z").string() +
                                             " is already existing!\r\n\r\nDo you want to overwrite?");
}

TEST_F(Extract, NeverReplacesTheCarrierItselfNorAFolder) {
  bench.Hide({"carrier.bin", "x"}).Hide({"link.bin", "x"}).Hide({"folder", "x"});
  const std::string before = ReadAll(bench.carrier);
  std::filesystem::create_symlink(bench.carrier, bench.folder / "link.bin");
  bench.folder.Put("folder/inside", "");
  bench.carrier = bench.folder / "link.bin";
  bench.Load();
  ExtractRequest request = bench.All();
  request.target = bench.folder.Where();
  script().Always("extract.error", Answer::Ignore);
  EXPECT_EQ(bench.Extract(request).leftOut, (Strings{"folder", "link.bin", "carrier.bin"}));
  EXPECT_EQ(script().Asked().at(0).cause.value().Number(), ErrorNumber::PathFileAccess);
  EXPECT_EQ(ReadAll(bench.folder / "carrier.bin"), before);
  EXPECT_TRUE(std::filesystem::is_symlink(bench.carrier));
}

TEST_F(Extract, PutsAllOnTheMediumBeforeItIsDone) {
  bench.Hide({"a"}).Hide({"b"});
  bench.Load();
  EXPECT_EQ(bench.Extract(bench.All()).extracted, 2u);
  EXPECT_EQ(bench.files.Record().back().name, "Files.SyncFileSystem");
}

TEST_F(Extract, NeverWritesOutsideTheTargetWhateverTheRecordSays) {
  using namespace std::string_literals;
  std::vector<std::pair<std::string, std::string>> places;  // name and folder
  for (const std::string& name : {".."s, "."s, "../x"s, "/tmp/x"s, "a/b"s, "x/../../y"s, "/"s, "//"s, "./x"s,
                                  "link/x"s, "a\0b"s, "\0"s, std::string(256, 'n')})
    places.emplace_back(name, "");
  for (const std::string& folder : {".."s,
                                    "."s,
                                    "..\\.."s,
                                    "a\\..\\..\\b"s,
                                    "/etc"s,
                                    "a\\/etc"s,
                                    "link"s,
                                    "link\\a"s,
                                    "\\\\a"s,
                                    "a\\\\b"s,
                                    "../.."s,
                                    "a\\../.."s,
                                    "a\\.\\"s,
                                    "a\\.."s,
                                    "\\.."s,
                                    "...\\.."s,
                                    "keep"s,
                                    "keep\\a"s,
                                    "a/../b"s,
                                    "a\\"s,
                                    "a\0b"s,
                                    "..\0"s,
                                    std::string(4096, 'f')})
    places.emplace_back("ok", folder);
  bench.folder.Put("outside/keep", "");
  bench.folder.Put("out/keep", "");
  std::filesystem::create_directory_symlink(bench.folder / "outside", bench.target / "link");
  for (const auto& [name, folder] : places) {
    WriteAll(bench.carrier, Pattern(100));
    bench.HideRecord("?Fnm=<" + name + ">?Fldnm=<" + folder + ">?Cmpr=<0>?CompVers=<701>",
                     CarrierBench::Encrypt("harm", {}));
    ASSERT_EQ(bench.Load(), LoadResult::Loaded) << name;
    script().Expect("extract.name", Answer::Ignore);
    EXPECT_EQ(bench.Extract(bench.All()).leftOut.size(), 1u) << folder << " " << name;
    EXPECT_EQ(Last(script().Asked()).cause.value().Number(), ErrorNumber::BadFileName)
        << folder << " " << name;
  }
  EXPECT_EQ(bench.folder.Names(),
            (Strings{"carrier.bin", "out", "out/keep", "out/link", "outside", "outside/keep"}));
}

TEST_F(Extract, PutsOddNamesWhereTheyStand) {
  std::string deep, deepPath;
  for (int i = 0; i < 300; ++i) {
    deep += i == 0 ? "d" : "\\d";
    deepPath += "d/";
  }
  const std::string full(255, 'n');
  const struct {
    std::string name, folder, path;
  } cases[] = {{full, "", full},
               {"x", deep, deepPath + "x"},
               {"x", "\x81\x31S\x9d", "\\/x"},  // an escaped backslash is one folder
               {"..\\..\\x", "", "..\\..\\x"},  // one name: here the backslash separates nothing
               {"...", "....", "..../..."},
               {".. ", " ", " /.. "},
               {"\n\x1b[2J", "b.", "b./\n\x1b[2J"}};
  for (const auto& c : cases) {
    WriteAll(bench.carrier, Pattern(100));
    bench.HideRecord("?Fnm=<" + c.name + ">?Fldnm=<" + c.folder + ">?Cmpr=<0>?CompVers=<701>",
                     CarrierBench::Encrypt("odd", {}));
    bench.Load();
    bench.Extract(bench.All());
    EXPECT_EQ(Content(c.path), "odd") << c.path;
  }
}

TEST_F(Extract, StaysInsideWhenAFolderOrAFileIsSwappedForALinkMeanwhile) {
  bench.Hide({"a", "secret", "Pics"}).Load();
  const Path outside = bench.folder / "outside";
  const Path victim = bench.folder.Put("victim", "mine");
  std::filesystem::create_directory(outside);
  const std::function<void()> harms[] = {
      [&] {
        std::filesystem::rename(bench.target / "Pics", bench.folder / "moved");
        std::filesystem::create_directory_symlink(outside, bench.target / "Pics");
      },
      [&] {
        if (!std::filesystem::exists(bench.target / "Pics/a"))
          std::filesystem::create_symlink(victim, bench.target / "Pics/a");
      }};
  ASSERT_EQ(bench.Extract(bench.All()).extracted, 1u);
  const std::size_t operations = bench.files.Count();
  script().Always("extract.error", Answer::Abort).Always("extract.name", Answer::Abort);
  script().Always("extract.overwrite", Answer::Yes);
  for (const auto& harm : harms)
    for (std::size_t k = 1; k <= operations; ++k) {
      std::filesystem::remove_all(bench.target);
      std::filesystem::remove_all(bench.folder / "moved");
      std::filesystem::create_directories(bench.target / "Pics");
      FaultyFiles files(bench.posix);
      files.before = [&](const Operation&) {
        if (files.Count() == k) harm();
      };
      bench.ExtractThrough(files, bench.extractScreen);
      EXPECT_TRUE(std::filesystem::is_empty(outside)) << "at operation " << k;
      EXPECT_EQ(ReadAll(victim), "mine") << "at operation " << k;
    }
}

TEST_F(Extract, SaysWhatIsDamagedAndGoesOnOrEnds) {
  bench.Hide({"b", "fine"}).Hide({"a", "bad"}).Load();
  bench.FlipBit(bench.catalogue.Rows().at(0).start.value + 20, 3);
  script().Expect("extract.damaged", Answer::Ignore);
  ExtractResult result = bench.Extract(bench.All());
  EXPECT_EQ(result.damaged, Strings{"a"});
  EXPECT_EQ(Out(), Strings{"b"});
  EXPECT_EQ(script().Asked().at(0).text,
            "Error: 57\n\rcannot extract a: its contents are damaged or were altered");
  script().Expect("extract.damaged", Answer::Abort);
  result = bench.Extract(bench.All());
  EXPECT_EQ(result.ending, ExtractEnding::Aborted);
  EXPECT_EQ(result.damaged, Strings{"a"});
}

TEST_F(Extract, LeavesOnlyWholeFilesWhereverItIsCancelled) {
  HideTwo();
  bench.Extract(bench.All());
  const std::size_t yields = script().Yields();
  ASSERT_GE(yields, 6u);
  for (std::size_t n = 0; n <= yields; ++n) {
    std::filesystem::remove_all(bench.target);
    ExtractScript screen;
    screen.script.CancelAtYield(n);
    const ExtractResult result = bench.ExtractThrough(bench.files, screen);
    EXPECT_EQ(WholeFiles(), result.extracted) << n;
    EXPECT_EQ(PartsLeft(), 0) << n;
    EXPECT_EQ(result.ending == ExtractEnding::Cancelled, result.extracted < 2);
  }
}

TEST_F(Extract, LeavesOnlyWholeFilesWhateverFails) {
  HideTwo();
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
        screen.script.Always("extract.error", answer)
            .Always("extract.name", answer)
            .Always("extract.overwrite", Answer::Yes);
        const ExtractResult result = bench.ExtractThrough(files, screen);
        EXPECT_TRUE(answer != Answer::Retry || result.extracted == 2u) << k;
        EXPECT_EQ(WholeFiles(), result.extracted) << k;
        EXPECT_TRUE(times == Times::FromThenOn || PartsLeft() == 0) << k;
      }
}

TEST(RelativeFolder, IsWhatLiesBelowTheSelectedNode) {
  const struct {
    std::string nodeItemFolder, nodePath, folder, relative;
  } cases[] = {{"*RootFolder*", "", "Pics\\2024", "Pics\\2024"},
               {"*RootFolder*", "", "", ""},
               {"*RootFolder*", "", "\\docs\\old", "docs\\old"},  // of a base without a closing separator
               {"*RootFolder*", "", "\\\\docs", "\\docs"},
               {"Pics\\2024", "Pics", "Pics\\2024", "2024"},  // a node may carry a deeper folder than its own
               {"Pics", "Pics", "Pics", ""},
               {"Pics", "Pics", "Pi", ""},
               {"Pics", "Pics", "Documents\\old", "ents\\old"},  // another branch loses as many and one
               {"Pics", "Pics", "Music\\old", "old"},
               {"Pic", "Pic", "Docs\\x\\y", "x\\y"},  // cut before a separator: joining drops it
               {"Pics2", "Pics2", "Pics", ""}};
  for (const auto& c : cases) {
    ExtractRequest request;
    request.nodeItemFolder = c.nodeItemFolder;
    request.nodePath = c.nodePath;
    EXPECT_EQ(RelativeFolder(request, c.folder), c.relative) << c.folder << " below " << c.nodePath;
  }
}

TEST(FolderParts, AreThePlatformsNames) {
  EXPECT_EQ(FolderParts(""), Strings{});
  const std::string odd = "a\\b>c\n\xff";
  EXPECT_EQ(FolderParts(ToStored(odd, TextKind::PathComponent) + "\\b c\\..."), (Strings{odd, "b c", "..."}));
}

class WorkList : public testing::Test {
 protected:
  using Rows = std::vector<std::size_t>;

  WorkList() {
    bench.Hide({"p", "x", "Pics"}).Hide({"q", "x", "Pics2\\a"}).Hide({"r", "x", ""}).Hide({"s", "x", "Pics"});
    bench.Load();  // the newest is row 0
  }
  Rows Chosen(std::vector<ExtractChoice> choices) const {
    ExtractRequest request = bench.All();
    request.all = false;
    request.choices = std::move(choices);
    return ExtractWorkList(request, bench.catalogue);
  }
  static ExtractChoice Folder(std::string itemFolder) {
    return {.kind = ExtractChoice::Kind::Folder, .itemFolder = std::move(itemFolder)};
  }
  static ExtractChoice File(std::size_t row) { return {.row = row, .itemFolder = {}}; }

  RetrievalBench bench{100};
};

TEST_F(WorkList, FollowsTheRowsOrTheChoices) {
  EXPECT_EQ(ExtractWorkList(bench.All(), bench.catalogue), (Rows{0, 1, 2, 3}));
  EXPECT_EQ(Chosen({File(3), File(1)}), (Rows{3, 1}));
  EXPECT_EQ(Chosen({Folder("Pics")}), (Rows{0, 2, 3})) << "neighbours whose name begins alike too";
  EXPECT_EQ(Chosen({Folder("Pics2"), File(2)}), (Rows{2, 2}));
  bench.carrier = bench.folder / "other.bin";
  EXPECT_EQ(ExtractWorkList(bench.All(), bench.catalogue), Rows{});
}

TEST_F(WorkList, OfADeletionShrinksUntilItRunsAndClosesTheFormOnlyByUnchecking) {
  DeleteList list({Folder("Pics"), File(1)}, bench.catalogue, bench.carrier);
  EXPECT_EQ(list.MirrorRows(), (Rows{0, 2, 3, 1}));
  EXPECT_EQ(list.Rows().at(1).size, "0 KB");
  EXPECT_EQ(list.Rows().at(1).folder, "Pics2\\a");
  EXPECT_EQ(list.Uncheck(1), DeleteList::Unchecked::Removed);
  list.RemoveSelected({0, 1});
  EXPECT_EQ(list.MirrorRows(), Rows{1});
  DeleteList running = list;
  EXPECT_EQ(list.Uncheck(0), DeleteList::Unchecked::RemovedLast);
  running.BeginRunning();
  running.RemoveSelected({0});
  EXPECT_EQ(running.Uncheck(0), DeleteList::Unchecked::StaysChecked);
}

}  // namespace tarnel::test
