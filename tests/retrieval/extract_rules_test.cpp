#include "retrieval/extract_rules.h"

#include <gtest/gtest.h>

#include "retrieval/questions.h"
#include "tests/retrieval/retrieval_bench.h"

namespace tarnel::test {
namespace {

TEST(ExtractRules, AskForAWholePathAndShowFoldersOnly) {
  TempFolder temp;
  temp.Put("docs/a", "x");
  PosixFiles files;
  const struct {
    Path entered;
    bool canExtract;
    bool isShown;
  } cases[] = {{"", false, false},          {"MyComputer", false, false}, {"docs", false, false},
               {temp / "docs", true, true}, {temp / "docs/", true, true}, {temp / "docs/a", true, false},
               {temp / "none", true, false}};
  for (const auto& [entered, canExtract, isShown] : cases) {
    SCOPED_TRACE(entered);
    EXPECT_EQ(CanExtractTo(entered), canExtract);
    EXPECT_EQ(FolderToShow(entered, files).has_value(), isShown);
  }
}

TEST(ExtractRules, RefuseATargetThatTakesNoFilesAndLeaveNothingThere) {
  TempFolder temp;
  temp.Put("docs/a", "x");
  PosixFiles posix;
  const auto names = [&] { return posix.List(temp.Where()).size() + posix.List(temp / "docs").size(); };
  const std::size_t before = names();
  for (const char* good : {"docs", "docs/", "new", "new/"})
    EXPECT_NO_THROW(MustTakeFiles(temp / good, posix)) << good;
  for (const char* bad : {"docs/a", "none/new", "docs/a/new"})
    EXPECT_THROW(MustTakeFiles(temp / bad, posix), Error) << bad;
  FaultyFiles files(posix);
  files.Fail({.number = ErrorNumber::PermissionDenied,
              .counts = [](const Operation& operation) { return operation.name == "Folder.CreateNew"; }});
  EXPECT_THROW(MustTakeFiles(temp / "docs", files), Error);
  EXPECT_EQ(names(), before);
}

TEST(ExtractRules, AskWhereTheFilesNeedMoreThanThereIs) {
  RetrievalBench bench;
  bench.Hide({"a", std::string(600, 'x')}).Hide({"b", std::string(500, 'x')}).Load();
  const double required = PlainBytes(bench.All(), bench.catalogue);
  EXPECT_EQ(required, 1100);
  bench.files.LimitSpace(1100);
  EXPECT_FALSE(SpaceQuestion(bench.target, required, bench.files));
  bench.files.LimitSpace(1099);
  const auto question = SpaceQuestion(bench.target, required, bench.files);
  ASSERT_TRUE(question);
  EXPECT_EQ(question->preset, Answer::No);
  EXPECT_NE(question->text.find("Required: 1100 bytes"), std::string::npos);
}

TEST(ExtractRules, ReportWhatDidNotComeOutAndNothingElse) {
  ExtractResult result;
  result.extracted = 3;
  EXPECT_FALSE(questions::ExtractReport(result));
  result.keptExisting = {"/t/k"};
  EXPECT_EQ(questions::ExtractReport(result)->icon, Icon::Information);
  result.damaged = {"d"};
  result.leftOut = {"l"};
  const auto report = questions::ExtractReport(result);
  EXPECT_EQ(report->icon, Icon::Critical);
  EXPECT_EQ(report->list, (Strings{"damaged: d", "left out: l", "existing file kept: /t/k"}));
}

}  // namespace
}  // namespace tarnel::test
