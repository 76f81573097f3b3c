#include "search/search_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "carrier/record.h"
#include "search/carrier_types.h"
#include "tests/support/faulty_files.h"
#include "tests/support/scripted_dialogue.h"
#include "tests/support/temp_folder.h"

namespace tarnel {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using OddFiles = SearchRequest::OddFiles;
using Depth = ProbeRequest::Depth;
using test::Operation;

const Secret kOurs("ours");
const Secret kTheirs("theirs");

class SearchTest : public ::testing::Test, public SearchScreen {
 public:
  SearchTest() { request.password = kOurs; }

  Answer Ask(const Question& question) override { return script.AnswerTo(question); }
  void Yield() override { script.PassYield(); }
  bool CancelRequested() const override { return script.isCancelled; }
  void ShowFolder(const Path& at) override {
    script.Note(SearchingText(at.lexically_relative(folder.Where())));
  }
  void ShowFound(const SearchRow& row) override { script.Note("found " + row.name); }

  /// Puts a carrier whose newest entry belongs to `password`.
  SearchTest& Carrier(const std::string& name, const Secret& password = kOurs,
                      Algorithm algorithm = Algorithm::Rijndael256) {
    folder.Put(name, test::Pattern(300) + Entry(password, algorithm));
    return *this;
  }

  SearchTest& AndBehindIt(const std::string& name, const Secret& password) {
    test::WriteAll(folder / name, test::ReadAll(folder / name) + Entry(password, Algorithm::Rijndael256));
    return *this;
  }

  static std::string Entry(const Secret& password, Algorithm algorithm) {
    RecordFields fields;
    fields.name = "a.txt";
    fields.title = "Holidays";
    const WipedText record = BuildRecord(fields, RecordWriter::Hide);
    const std::string payload = "payload";
    std::string secondKey;
    return payload + SealEntry({record.data(), record.size()}, static_cast<Length>(payload.size()), algorithm,
                               password, secondKey);
  }

  SearchSummary Run(const std::string& below = {}) {
    return SearchFolder(below.empty() ? folder.Where() : folder / below, request, results, reading, *this);
  }

  /// Paths of all results below the folder, in their order.
  std::vector<std::string> Found() const {
    std::vector<std::string> paths;
    for (const SearchRow& row : results.Rows())
      paths.push_back(row.carrier.lexically_relative(folder.Where()));
    return paths;
  }

  /// What the screen was told, without the yields.
  std::vector<std::string> Shown() const {
    std::vector<std::string> lines;
    for (const std::string& line : script.Transcript())
      if (line != "yield") lines.push_back(line);
    return lines;
  }

  test::TempFolder folder;
  test::Script script;
  PosixFiles posix;
  test::FaultyFiles files{posix};
  Catalogue catalogue;
  FileTypes types{[](const std::string& name) { return "type of " + name; }};
  ReadingGuards guards;
  CurrentHideout current;
  Reading reading{files, catalogue, types, guards, current};
  SearchRequest request;
  SearchResults results;
};

TEST_F(SearchTest, TriesAllAlgorithmsOrJustTheChosenOne) {
  for (const OfferedAlgorithm& offered : OfferedAlgorithms())
    Carrier(std::string(offered.name) + ".png", kOurs, offered.algorithm);
  EXPECT_EQ(Run().found, 7u);
  for (std::size_t i = 1; i < kSearchAlgorithms.size(); ++i) {
    std::string name(kSearchAlgorithms[i]);
    request.algorithm = AlgorithmId(name);
    results = {};
    Run();
    EXPECT_THAT(results.Rows(), SizeIs(1)) << name;
    std::string offered = results.Rows().at(0).carrier.stem();
    EXPECT_EQ(AlgorithmId(offered), *request.algorithm);
    EXPECT_EQ(results.Rows().at(0).algorithm, *request.algorithm);
  }
}

TEST_F(SearchTest, ARowSaysWhatWasFoundWhere) {
  Carrier("in/Sea.PNG");
  request.subfolders = true;
  Run();
  ASSERT_THAT(results.Rows(), SizeIs(1));
  const SearchRow& row = results.Rows()[0];
  EXPECT_EQ(row.carrier, folder / "in/Sea.PNG");
  EXPECT_EQ(row.name, "Sea.PNG");
  EXPECT_EQ(row.title, "Holidays");
  EXPECT_EQ(row.location, folder / "in");
  EXPECT_THAT(row.typeText, ::testing::StartsWith("type of "));
  EXPECT_THAT(Shown(), ElementsAre("Searching... .", "Searching... in", "found Sea.PNG"));
}

TEST_F(SearchTest, AnEmptyPasswordIsRefusedBeforeAnyFileIsLookedAt) {
  Carrier("a.png");
  request.password = Secret();
  script.Expect("search.no-password", Answer::Ok);
  EXPECT_EQ(Run().ending, SearchEnding::NoPassword);
  EXPECT_EQ(files.Count(), 0u);
}

TEST_F(SearchTest, OnlyFilesOfTheChosenTypeAreOpened) {
  Carrier("a.png").Carrier("b.mp").Carrier("c.snd").Carrier("noextension").Carrier("d.txt").Carrier("e.");
  const struct {
    std::size_t type;
    std::vector<std::string> found;
  } cases[] = {{0, {"a.png"}}, {7, {"a.png"}}, {12, {"b.mp"}}, {13, {}}, {16, {"c.snd"}}, {19, {}}};
  for (const auto& [type, found] : cases) {
    request.type = type;
    results = {};
    Run();
    EXPECT_EQ(Found(), found) << type;
  }
  for (const Operation& operation : files.Record())
    EXPECT_FALSE(operation.path.filename() == "noextension" || operation.path.extension() == ".txt");
}

TEST_F(SearchTest, ANewestEntryOfAnotherHideoutHidesOursUnlessTheWholeChainIsWalked) {
  Carrier("ours.png").Carrier("mixed.png").AndBehindIt("mixed.png", kTheirs);
  request.depth = Depth::NewestEntry;
  Run();
  EXPECT_THAT(Found(), ElementsAre("ours.png"));
  request.depth = Depth::WholeChain;
  Run();
  EXPECT_THAT(Found(), ElementsAre("ours.png", "mixed.png"));
}

TEST_F(SearchTest, ASecondSearchAddsToTheListAndSkipsWhatItHolds) {
  Carrier("a.png").Carrier("b/b.png");
  EXPECT_EQ(results.CountText(), "");
  EXPECT_EQ(Run().found, 1u);
  EXPECT_EQ(Run().found, 0u);
  EXPECT_EQ(results.CountText(), "1 File(s) found. ");
  EXPECT_EQ(Run("b").found, 1u);
  EXPECT_EQ(results.CountText(), "2 File(s) found. ");
}

TEST_F(SearchTest, SubfoldersComeOnDemandAndBehindTheFilesOfTheirParent) {
  Carrier("z.png").Carrier("a/y.png").Carrier("a/b/x.png").Carrier("c/w.png");
  Run();
  EXPECT_THAT(Found(), ElementsAre("z.png"));
  request.subfolders = true;
  Run();
  EXPECT_THAT(Found(), ElementsAre("z.png", "a/y.png", "a/b/x.png", "c/w.png"));
}

TEST_F(SearchTest, LinksLeadToOtherFoldersButNeverInCirclesOrToOneFolderTwice) {
  test::TempFolder outside;
  outside.Put("far.png", Entry(kOurs, Algorithm::Twofish));
  Carrier("a/near.png");
  const auto link = [this](const Path& target, const char* name) {
    EXPECT_EQ(symlink(target.c_str(), (folder / name).c_str()), 0);
  };
  link(".", "a/circle");
  link("../a", "a/parent");
  link(folder / "a", "0");
  link(outside.Where(), "1");
  link(outside.Where(), "2");
  link("a/near.png", "file.png");
  link("nowhere", "broken.png");
  link("self.png", "self.png");
  request.subfolders = true;
  const SearchSummary summary = Run();
  EXPECT_THAT(Found(), ElementsAre("file.png", "a/near.png", "1/far.png"));
  EXPECT_EQ(summary.ending, SearchEnding::Done);
}

TEST_F(SearchTest, ACancelAtAnyYieldKeepsWhatWasFoundAndTheNextSearchFindsTheRest) {
  Carrier("a.png").Carrier("b.png", kOurs, Algorithm::Twofish).Carrier("c/c.png").Carrier("c/d.png", kTheirs);
  request.subfolders = true;
  Run();
  const std::vector<std::string> all = Found();
  ASSERT_THAT(all, SizeIs(3));
  script.ForgetTranscript();
  results = {};
  Run();
  const std::size_t yields = static_cast<std::size_t>(std::ranges::count(script.Transcript(), "yield"));
  for (std::size_t n = 1; n <= yields; ++n) {
    script.isCancelled = false;
    results = {};
    std::size_t passed = 0;
    script.onYield = [&](std::size_t) { script.isCancelled = ++passed >= n; };
    const SearchSummary summary = Run();
    const auto found = Found();
    EXPECT_TRUE(std::equal(found.begin(), found.end(), all.begin()));
    EXPECT_EQ(summary.ending, SearchEnding::Cancelled) << n;
    script.onYield = nullptr;
    script.isCancelled = false;
    EXPECT_EQ(Run().ending, SearchEnding::Done);
    EXPECT_EQ(Found(), all) << n;
  }
}

TEST_F(SearchTest, AFileTooShortForAnEntryEndsAllFindingUnlessItIsPassedOver) {
  Carrier("a.png").Carrier("c.png");
  folder.Put("b.png", std::string(79, 'x'));
  request.oddFiles = OddFiles::PassOver;
  EXPECT_EQ(Run().found, 2u);
  results = {};
  request.oddFiles = OddFiles::Probe;
  Run();
  EXPECT_THAT(Found(), ElementsAre("a.png"));
  results = {};
  EXPECT_EQ(Run().found, 0u);
}

TEST_F(SearchTest, WhatCannotBeReadIsNamedAndTheRestIsSearched) {
  Carrier("a/a.png").Carrier("b/b.png").Carrier("c.png").Carrier("d.png");
  files.Fail({.at = 1,
              .number = ErrorNumber::PermissionDenied,
              .times = test::Times::FromThenOn,
              .counts = [this](const Operation& operation) {
                return operation.path == folder / "a" || operation.path == folder / "c.png";
              }});
  request.subfolders = true;
  request.oddFiles = OddFiles::PassOver;
  const SearchSummary summary = Run();
  EXPECT_THAT(Found(), ElementsAre("d.png", "b/b.png"));
  ASSERT_THAT(summary.notSearched, SizeIs(2));
  EXPECT_EQ(summary.notSearched[0].path, folder / "c.png");
  EXPECT_EQ(summary.notSearched[1].path, folder / "a");
  EXPECT_THROW(Run("a"), Error);
}

TEST_F(SearchTest, AbortAtAnUnreadableFileEndsAllFindingUnlessItIsPassedOver) {
  Carrier("a.png").Carrier("b.png");
  request.algorithm = Algorithm::Rijndael256;
  const struct {
    OddFiles oddFiles;
    const char* failing;
    std::size_t asked, found, notSearched;
  } cases[] = {{OddFiles::PassOver, "Files.OpenToRead", 0, 1, 1},
               {OddFiles::PassOver, "File.ReadAt", 1, 1, 0},
               {OddFiles::Probe, "Files.OpenToRead", 1, 0, 0}};
  script.Always("probe.error", Answer::Abort);
  for (const auto& one : cases) {
    files.Fail({.times = test::Times::FromThenOn, .counts = [&](const Operation& operation) {
                  return operation.path.filename() == "a.png" && operation.name == one.failing;
                }});
    const std::size_t askedBefore = script.Asked().size();
    request.oddFiles = one.oddFiles;
    results = {};
    const SearchSummary summary = Run();
    EXPECT_EQ(script.Asked().size() - askedBefore, one.asked);
    EXPECT_EQ(summary.found, one.found);
    EXPECT_THAT(summary.notSearched, SizeIs(one.notSearched));
  }
}

TEST_F(SearchTest, APasswordChangedOnTheWayCountsFromTheNextFileOn) {
  Carrier("a.png").Carrier("b.png").Carrier("c.png", kTheirs);
  files.before = [this](const Operation& operation) {
    if (operation.name == "Files.OpenToRead" && operation.path.filename() == "a.png")
      request.password = kTheirs;
  };
  Run();
  EXPECT_THAT(Found(), ElementsAre("a.png", "c.png"));
}

}  // namespace
}  // namespace tarnel
