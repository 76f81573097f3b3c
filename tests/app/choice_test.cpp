#include "app/choice.h"

#include <gtest/gtest.h>

#include "tests/app/session_bench.h"

namespace tarnel::test {
namespace {

/// Files by their place in the catalogue, folders by their path.
std::string Text(const Choice& choice) {
  std::string text;
  for (const ExtractChoice& row : choice.rows)
    text += (row.kind == ExtractChoice::Kind::File ? std::to_string(row.row) : row.itemFolder) + " ";
  return text;
}

TEST(Choice, FollowsTheViewInAttentionAndTheSelection) {
  const struct {
    const char* folder;
    Attention attention;
    Session::RowSelection selection;
    const char* rows;
    const char* nodePath;
    int file;
  } cases[] = {
      {"", Attention::DirView, {{1}, 1}, "docs 0 1 ", "", 0},
      {"", Attention::FileList, {{0, 2}, 2}, "docs 1 ", "", 1},
      {"", Attention::FileList, {{0}, 0}, "docs ", "", -1},
      {"", Attention::FileList, {{}, {}}, "", "", -1},
      {"", Attention::FileList, {{7}, 7}, "", "", -1},  // rows that have gone since
      {"docs", Attention::FileList, {{1}, 1}, "2 ", "docs", 2},
      {"docs", Attention::DirView, {{}, {}}, "docs\\old 2 ", "docs", -1},
  };
  SessionBench bench;
  bench.Open("/a.png").File("x", 1).File("y", 2).File("z", 3, "docs").File("w", 4, "docs\\old");
  for (const auto& [folder, attention, selection, rows, nodePath, file] : cases) {
    SCOPED_TRACE(rows);
    bench.Click("/a.png", folder);
    bench.session.ActiveListHwnd = attention;
    bench.session.rowSelection = selection;
    const Choice choice = ChoiceOf(bench.session);
    EXPECT_EQ(Text(choice), rows);
    EXPECT_EQ(choice.nodePath, nodePath);
    EXPECT_EQ(choice.file ? static_cast<int>(*choice.file) : -1, file);
  }
}

}  // namespace
}  // namespace tarnel::test
