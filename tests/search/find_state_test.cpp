#include "search/find_state.h"

#include <gtest/gtest.h>

#include <set>

namespace tarnel::test {
namespace {

using Stage = FindState::Stage;

const FindState::Places kPlaces = {
    .computer = "MyComputer", .desktop = "/h/Desktop", .documents = "/h/docs/"};

FindState At(const Path& path) {
  FindState state(kPlaces);
  state.Select(path);
  return state;
}

}  // namespace

TEST(FindState, OnlyFoldersAreSearchedAndThoseWithANameShowIt) {
  const struct {
    const char* path;
    const char* shown;
    bool canSearch;
  } cases[] = {{"", "", false},
               {"MyComputer", "My Computer", false},
               {"/h/Desktop/", "Desktop", true},
               {"/h/docs", "My Documents", true},
               {"/h/Desktop/a/", "/h/Desktop/a/", true},
               {"/", "/", true}};
  for (const auto& [path, shown, canSearch] : cases) {
    EXPECT_EQ(At(path).Txt_SearchIn(), shown);
    EXPECT_EQ(At(path).CanPress(false).Cmd_Search, canSearch) << path;
  }
  FindState homeless({.computer = "MyComputer", .desktop = {}, .documents = {}});
  EXPECT_EQ(homeless.Txt_SearchIn(), "");
}

TEST(FindState, EachStageSaysWhatCanBePressed) {
  FindState state = At("/a/");
  const FindState::Enabled idle{.Cmd_Search = true, .Cmd_Cancel = true, .menu_open = false};
  EXPECT_EQ(state.CanPress(false), idle);
  state.Cancel();
  EXPECT_EQ(state.CurrentStage(), Stage::Idle);
  state.Begin();
  EXPECT_EQ(state.CanPress(true), (FindState::Enabled{.Cmd_Cancel = true, .menu_open = true}));
  state.Select("/b/");
  EXPECT_FALSE(state.CanPress(false).Cmd_Search);
  state.Cancel();
  EXPECT_EQ(state.CanPress(true), FindState::Enabled{.menu_open = true});
  state.End(SearchEnding::Cancelled);
  EXPECT_EQ(state.CanPress(false), idle);
}

TEST(FindState, AnEmptyListSaysWhyAndUnreadPlacesCountForOneSearch) {
  FindState state = At("MyComputer");
  std::set<std::string> reasons = {state.EmptyText()};
  const auto isNewReason = [&] { return reasons.insert(state.EmptyText()).second; };
  state.Select("/a/");
  EXPECT_TRUE(isNewReason());
  state.Begin();
  EXPECT_TRUE(isNewReason());
  state.End(SearchEnding::NoPassword);
  EXPECT_FALSE(isNewReason());
  for (const SearchEnding ending : {SearchEnding::Cancelled, SearchEnding::Done}) {
    state.Begin();
    state.End(ending);
    EXPECT_TRUE(isNewReason());
  }
  state.Begin();
  state.CountNotSearched();
  state.CountNotSearched();
  state.End(SearchEnding::Done);
  EXPECT_TRUE(isNewReason());
  EXPECT_EQ(state.NotSearchedText(), "2 could not be read...");
  state.Begin();
  EXPECT_EQ(state.NotSearchedText(), "");
}

}  // namespace tarnel::test
