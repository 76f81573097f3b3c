#include "search/search_folder.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "search/carrier_types.h"
#include "tests/carrier/carrier_bench.h"
#include "tests/support/faulty_files.h"
#include "tests/support/held_key.h"

namespace tarnel::test {
namespace {

using OddFiles = SearchRequest::OddFiles;

/// The items of the list of types that accept a file of this extension.
std::vector<std::size_t> IndicesThatAccept(std::string_view extension) {
  std::vector<std::size_t> indices;
  for (std::size_t i = 0; i < CarrierTypes().size(); ++i)
    if (TypeAccepts(CarrierTypes()[i], extension)) indices.push_back(i);
  return indices;
}

class SearchTest : public testing::Test, public CarrierBench {
 public:
  struct Screen : Scripted<SearchScreen> {
    void ShowFolder(const Path& at) override { script.Note(SearchingText(at.filename())); }
    void ShowFound(const SearchRow& row) override { script.Note("found " + row.name); }
  };

  SearchTest() {
    HeldKey("secret");
    request.folder = folder.Where();
    request.password = Secret("secret");
  }

  /// Puts a carrier whose newest entry belongs to `under`.
  SearchTest& Carrier(const std::string& name, const Under& under = {}) {
    carrier = folder.Put(name, Pattern(300));
    Hide({"a.txt"}, under);
    return *this;
  }
  SearchSummary Run() { return SearchFolder(request, results, searching, person); }
  /// Paths of what one search finds in an empty list.
  Strings Found() {
    results = {};
    Run();
    return Listed();
  }
  Strings Listed() const {
    Strings paths;
    for (const SearchRow& row : results.Rows())
      paths.push_back(row.carrier.lexically_relative(folder.Where()));
    return paths;
  }

  const Under theirs{"theirs"};
  FaultyFiles files{posix};
  Reading searching{files, catalogue, guards, current};
  Screen person;
  Script& script = person.script;
  SearchRequest request;
  SearchResults results;
};

}  // namespace

TEST(CarrierTypes, AnExtensionPassesAtItsGroupsAndAtTheItemsWhoseTextNamesIt) {
  const std::pair<const char*, std::vector<std::size_t>> cases[] = {
      {"pcx", {0, 1, 6}},   {"avi", {0, 9, 10}}, {"mpeg", {0, 9, 12}}, {"mid", {0, 13, 17}},
      {"ocx", {0, 18, 21}}, {"snd", {16}},       {"mp", {12, 14}},     {"m", {11, 12, 14, 17}},
      {"txt", {}},          {"PNG", {}},         {"peg", {}}};
  for (const auto& [extension, indices] : cases)
    EXPECT_EQ(IndicesThatAccept(extension), indices) << extension;
  const std::pair<const char*, const char*> names[] = {
      {"A.JpEg", "jpeg"}, {"a.tar.gz", "gz"},         {"png", ""}, {"a.", ""},
      {".png", "png"},    {"a.\xc4\xd6", "\xc4\xd6"}, {"", ""}};
  for (const auto& [name, extension] : names)
    EXPECT_EQ(LowerExtension(name), extension) << name;
}

TEST_F(SearchTest, TriesAllAlgorithmsOrJustTheChosenOne) {
  for (const OfferedAlgorithm& offered : OfferedAlgorithms())
    Carrier(std::string(offered.name) + ".png", {"secret", offered.algorithm});
  EXPECT_EQ(Run().found, 7u);
  EXPECT_EQ(SearchAlgorithms(), (Strings{"All Algorithms", "BLOWFISH", "CAST5", "DES", "SERPENT-256",
                                         "RIJNDAEL-256", "TRIPLEDES", "TWOFISH"}));
  for (std::size_t i = 1; i < SearchAlgorithms().size(); ++i) {
    std::string name = SearchAlgorithms().at(i);
    request.algorithm = AlgorithmId(name);
    ASSERT_EQ(Found().size(), 1u) << name;
    std::string stem = results.Rows().at(0).carrier.stem();
    EXPECT_EQ(AlgorithmId(stem), *request.algorithm);
    EXPECT_EQ(results.Rows().at(0).algorithm, *request.algorithm);
  }
}

TEST_F(SearchTest, ARowSaysWhatWasFoundWhere) {
  Carrier("in/Sea.PNG");
  request.subfolders = true;
  ASSERT_EQ(Run().found, 1u);
  const SearchRow& row = results.Rows().at(0);
  EXPECT_EQ(row.carrier, folder / "in/Sea.PNG");
  EXPECT_EQ(row.name, "Sea.PNG");
  EXPECT_EQ(row.title, "Title");
  EXPECT_EQ(row.location, folder / "in");
  Strings shown = script.Transcript();
  std::erase(shown, "yield");
  EXPECT_EQ(shown, (Strings{SearchingText(folder.Where().filename()), "Searching... in", "found Sea.PNG"}));
}

TEST_F(SearchTest, AnEmptyPathIsNoFolderAndAnEmptyPasswordIsRefusedBeforeAnyFileIsLookedAt) {
  request.folder.clear();
  EXPECT_EQ(Run().ending, SearchEnding::Done);
  request.folder = folder.Where();
  request.password = Secret();
  script.Expect("search.no-password", Answer::Ok);
  EXPECT_EQ(Run().ending, SearchEnding::NoPassword);
  EXPECT_EQ(files.Count(), 0u);
}

TEST_F(SearchTest, AFaultBehindTheEntryThatFitsHidesNoCarrier) {
  Carrier("a.png", theirs).Hide({"ours", Pattern(20000)});
  std::size_t reads = 0;  // the second of each probe is that of the older entry
  files.Fail({.times = Times::FromThenOn, .counts = [&reads](const Operation& operation) {
                return operation.name == "File.ReadAt" && ++reads % 2 == 0;
              }});
  request.oddFiles = OddFiles::PassOver;
  EXPECT_EQ(Run().notSearched.size(), 0u);
  EXPECT_EQ(Listed(), Strings{"a.png"});
}

TEST_F(SearchTest, OnlyFilesOfTheChosenTypeAreOpened) {
  Carrier("a.png").Carrier("b.jpg").Carrier("png").Carrier("d.txt").Carrier("e.");
  request.type = 7;
  EXPECT_EQ(Found(), Strings{"a.png"});
  for (const Operation& operation : files.Record())
    EXPECT_TRUE(operation.path == folder.Where() || operation.path == folder / "a.png") << operation.path;
}

TEST_F(SearchTest, ANewestEntryOfAnotherHideoutHidesOursUnlessTheWholeChainIsWalked) {
  Carrier("ours.png").Carrier("mixed.png").Hide({"theirs"}, theirs);
  request.depth = ProbeRequest::Depth::NewestEntry;
  EXPECT_EQ(Found(), Strings{"ours.png"});
  request.depth = ProbeRequest::Depth::WholeChain;
  EXPECT_EQ(Found(), (Strings{"mixed.png", "ours.png"}));
}

TEST_F(SearchTest, SubfoldersComeOnDemandBehindTheFilesOfTheirParentAndAddToTheList) {
  Carrier("z.png").Carrier("a/y.png").Carrier("a/b/x.png").Carrier("c/w.png");
  EXPECT_EQ(results.CountText(), "");
  EXPECT_EQ(Found(), Strings{"z.png"});
  EXPECT_EQ(Run().found, 0u);
  EXPECT_EQ(results.CountText(), "1 File(s) found. ");
  request.subfolders = true;
  EXPECT_EQ(Run().found, 3u);
  EXPECT_EQ(Listed(), (Strings{"z.png", "a/y.png", "a/b/x.png", "c/w.png"}));
}

TEST_F(SearchTest, LinksLeadToOtherFoldersButNeverInCirclesOrToOneFolderTwice) {
  TempFolder outside;
  Carrier("a/near.png");
  outside.Put("far.png", ReadAll(carrier));
  const std::pair<const char*, Path> links[] = {{"a/circle", "."},         {"a/parent", "../a"},
                                                {"0", folder / "a"},       {"1", outside.Where()},
                                                {"2", outside.Where()},    {"file.png", "a/near.png"},
                                                {"broken.png", "nowhere"}, {"self.png", "self.png"}};
  for (const auto& [name, target] : links)
    std::filesystem::create_symlink(target, folder / name);
  EXPECT_EQ(Found(), Strings{"file.png"});
  request.subfolders = true;
  EXPECT_EQ(Found(), (Strings{"file.png", "a/near.png", "1/far.png"}));
}

TEST_F(SearchTest, FoldersOfOneNumberOnTwoVolumesAreTwo) {
  struct : PosixFiles {
    std::optional<FileStat> Stat(const Path& path, Links links) override {
      auto stat = PosixFiles::Stat(path, links);
      if (stat && stat->kind == FileKind::Folder) stat->device = std::exchange(stat->inode, 2);
      return stat;
    }
  } roots;
  Carrier("mounted/a.png");
  request.subfolders = true;
  Reading onTwo{roots, catalogue, guards, current};
  EXPECT_EQ(SearchFolder(request, results, onTwo, person).found, 1u);
}

TEST_F(SearchTest, ACancelAtAnyYieldKeepsWhatWasFoundAndTheNextSearchFindsTheRest) {
  Carrier("a.png")
      .Carrier("b.png", {"secret", Algorithm::Twofish})
      .Carrier("c/c.png")
      .Carrier("c/d.png", theirs)
      .Hide({"b"}, theirs)
      .Hide({"c"}, theirs)
      .Hide({"d"}, theirs);
  request.subfolders = true;
  const Strings all = Found();
  ASSERT_EQ(all.size(), 3u);
  for (std::size_t n = 1;; ++n) {
    results = {};
    const std::size_t passed = script.Yields();
    std::size_t left = n;
    script.onYield = [&](std::size_t) { script.isCancelled = --left == 0 || script.isCancelled; };
    const SearchEnding ending = Run().ending;
    if (!script.isCancelled) {  // it has yielded less often than this; how often depends on the disk
      EXPECT_GT(n, 30u);
      break;
    }
    EXPECT_EQ(ending, SearchEnding::Cancelled) << n;
    EXPECT_LE(script.Yields(), passed + n + 1) << "a cancel is seen at the next look";
    const Strings found = Listed();
    EXPECT_TRUE(std::equal(found.begin(), found.end(), all.begin()));
    script.onYield = nullptr;
    script.isCancelled = false;
    EXPECT_EQ(Run().ending, SearchEnding::Done);
    EXPECT_EQ(Listed(), all) << n;
  }
}

TEST_F(SearchTest, WhatCannotBeReadIsNamedAndTheRestIsSearched) {
  Carrier("a/a.png").Carrier("b/b.png").Carrier("c.png").Carrier("d.png");
  files.Fail({.times = Times::FromThenOn, .counts = [this](const Operation& operation) {
                return operation.path == folder / "a" || operation.path == folder / "c.png";
              }});
  request.subfolders = true;
  request.oddFiles = OddFiles::PassOver;
  const SearchSummary summary = Run();
  EXPECT_EQ(Listed(), (Strings{"d.png", "b/b.png"}));
  ASSERT_EQ(summary.notSearched.size(), 2u);
  EXPECT_EQ(summary.notSearched.at(0).path, folder / "c.png");
  EXPECT_EQ(summary.notSearched.at(1).path, folder / "a");
  request.folder = folder / "a";
  EXPECT_THROW(Run(), Error);
}

TEST_F(SearchTest, AnOddFileEndsAllFindingUnlessItIsPassedOver) {
  const struct {
    OddFiles oddFiles;
    const char* failing;  ///< or the file is too short for an entry
    Strings found;
    std::size_t asked, notSearched;
  } cases[] = {{OddFiles::PassOver, "", {"a.png", "c.png"}, 0, 0},
               {OddFiles::PassOver, "Files.OpenToRead", {"a.png", "c.png"}, 0, 1},
               {OddFiles::PassOver, "File.ReadAt", {"a.png", "c.png"}, 0, 1},
               {OddFiles::Probe, "Files.OpenToRead", {"a.png"}, 1, 0},
               {OddFiles::Probe, "", {"a.png"}, 0, 0},
               {OddFiles::Probe, "", {}, 0, 0}};  // nor does the next search find anything
  Carrier("a.png").Carrier("c.png");
  request.algorithm = Algorithm::Rijndael256;
  script.Always("probe.error", Answer::Abort);
  for (const auto& c : cases) {
    folder.Put("b.png", std::string(*c.failing == '\0' ? 79 : 500, 'x'));
    files.Fail({.times = Times::FromThenOn, .counts = [&](const Operation& operation) {
                  return operation.path.filename() == "b.png" && operation.name == c.failing;
                }});
    script.ForgetTranscript();
    request.oddFiles = c.oddFiles;
    if (!c.found.empty()) guards.SearchBusy = false;
    results = {};
    EXPECT_EQ(Run().notSearched.size(), c.notSearched) << c.failing;
    EXPECT_EQ(Listed(), c.found) << c.failing;
    EXPECT_EQ(script.Asked().size(), c.asked);
  }
}

TEST_F(SearchTest, APasswordChangedOnTheWayCountsFromTheNextFileOn) {
  Carrier("a.png").Carrier("b.png").Carrier("c.png", theirs);
  files.before = [this](const Operation& operation) {
    if (operation.name == "Files.OpenToRead" && operation.path.filename() == "a.png")
      request.password = Secret(theirs.password);
  };
  EXPECT_EQ(Found(), (Strings{"a.png", "c.png"}));
}

}  // namespace tarnel::test
