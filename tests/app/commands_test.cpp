#include "app/commands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "app/program_lock.h"
#include "app/refresh.h"

namespace tarnel {
namespace {

std::set<std::string> EnabledItems(const RefreshInput& input) {
  const RefreshResult result = Refresh(input);
  std::set<std::string> items;
  for (const Command& command : Commands()) {
    if (result.IsEnabled(command.id)) items.insert(command.item);
  }
  return items;
}

std::set<std::string> operator+(std::set<std::string> a, const std::set<std::string>& b) {
  a.insert(b.begin(), b.end());
  return a;
}

const std::set<std::string> kAlways = {
    "mnu_carrier_info", "Menu_Quit",       "Menu_Configuration", "Menu_SortbyName", "Menu_SortbySize",
    "Menu_SortbyType",  "Menu_SortbyDate", "menu_lock",          "mnu_ShowStatus",  "Menu_Folders",
    "Menu_Contents",    "Menu_Quickstart", "Menu_Info"};
const std::set<std::string> kIdle = {"Menu_New_Carrier", "Menu_Open_Carrier", "Menu_Find_Carrier",
                                     "Menu_Add"};
const std::set<std::string> kNodes = {"manu_close", "Manu_Saveas", "menu_carrierproperties",
                                      "menu_mailcarrierfile"};
const std::set<std::string> kRows = {"Menu_Extract",        "Menu_Remove",   "Menu_SelectAll",
                                     "Mnu_InvertSelection", "Menu_Password", "menu_properties"};

TEST(Refresh, EnablesWhatTheStateAllows) {
  struct Case {
    const char* name;
    RefreshInput input;
    std::set<std::string> enabled;
  };
  const Case cases[] = {
      {"nothing open", {}, kAlways + kIdle},
      {"reading, nothing open", {.ReadingBusy = true}, kAlways},
      {"reading beside open hideouts",
       {.ReadingBusy = true,
        .hasNodes = true,
        .hasRows = true,
        .listHasAttention = true,
        .isFileRowSelected = true},
       kAlways + kNodes},
      {"an empty hideout", {.hasNodes = true}, kAlways + kIdle + kNodes},
      {"rows", {.hasNodes = true, .hasRows = true}, kAlways + kIdle + kNodes + kRows},
      {"a file row selected while the tree has the attention",
       {.hasNodes = true, .hasRows = true, .isFileRowSelected = true},
       kAlways + kIdle + kNodes + kRows},
      {"a folder row selected",
       {.hasNodes = true, .hasRows = true, .listHasAttention = true},
       kAlways + kIdle + kNodes + kRows},
      {"a file row selected",
       {.hasNodes = true, .hasRows = true, .listHasAttention = true, .isFileRowSelected = true},
       kAlways + kIdle + kNodes + kRows + std::set<std::string>{"Menu_Preview"}},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(EnabledItems(each.input), each.enabled) << each.name;
    EXPECT_EQ(Refresh(each.input).isInfoPanelOn, each.input.hasNodes) << each.name;
  }
}

TEST(Commands, StandInTheOrderOfTheirIds) {
  ASSERT_EQ(Commands().size(), kCommandCount);
  for (std::size_t i = 0; i < kCommandCount; ++i) {
    EXPECT_EQ(static_cast<std::size_t>(Commands()[i].id), i) << Commands()[i].item;
  }
}

TEST(Commands, HaveButtonsInTheOrderOfTheToolbarEachWithKeyTipAndIcon) {
  std::string keys;
  for (const CommandId id : ToolbarCommands()) {
    const Command& command = CommandOf(id);
    ASSERT_TRUE(command.key && command.toolTip && command.icon) << command.item;
    keys += std::string(command.key) + " ";
  }
  EXPECT_EQ(keys, "New Open Search Hide Extract Delete View Folders Configuration ");
}

TEST(Commands, ShareNoShortcutAndNoName) {
  std::map<Shortcut, int> shortcuts;
  std::set<std::string> names;
  for (const Command& command : Commands()) {
    if (command.shortcut != Shortcut::None) {
      EXPECT_EQ(++shortcuts[command.shortcut], 1) << command.item;
    }
    EXPECT_TRUE(names.insert(command.item).second) << command.item;
  }
  for (const Shortcut needed :
       {Shortcut::Open, Shortcut::Quit, Shortcut::SelectAll, Shortcut::Delete, Shortcut::Help}) {
    EXPECT_EQ(shortcuts.count(needed), 1U);
  }
}

void CountItems(const Menu& menu, std::map<CommandId, int>& seen, std::multiset<char>& accessKeys) {
  for (const MenuEntry& entry : menu.entries) {
    if (entry.kind == MenuEntry::Kind::Submenu) CountItems(*entry.submenu, seen, accessKeys);
    if (entry.kind != MenuEntry::Kind::Item) continue;
    ++seen[entry.command];
    const std::string caption = CommandOf(entry.command).caption;
    const std::size_t mark = caption.find('&');
    if (mark != std::string::npos) accessKeys.insert(static_cast<char>(std::tolower(caption.at(mark + 1))));
  }
}

TEST(Commands, StandInTheMenusOnceEachWithoutSharedAccessKeys) {
  std::map<CommandId, int> seen;
  for (const Menu* menu : MenuBar()) {
    std::multiset<char> accessKeys;
    CountItems(*menu, seen, accessKeys);
    EXPECT_EQ(std::set<char>(accessKeys.begin(), accessKeys.end()).size(), accessKeys.size()) << menu->name;
  }
  EXPECT_EQ(seen.size(), kCommandCount);
  for (const auto& [id, count] : seen) {
    EXPECT_EQ(count, 1) << CommandOf(id).item;
  }
}

TEST(Commands, AreGatedWhereTheyTouchAHideout) {
  std::set<std::string> gated;
  for (const Command& command : Commands()) {
    if (command.gate != Gate::None) gated.insert(command.item);
  }
  EXPECT_EQ(gated, (std::set<std::string>{"Menu_Open_Carrier", "Menu_Add", "Menu_Extract", "Menu_Remove",
                                          "Menu_Find_Carrier", "Menu_Preview", "Menu_Configuration",
                                          "manu_close", "menu_carrierproperties", "Menu_Password",
                                          "menu_mailcarrierfile", "Menu_Quit"}));
  EXPECT_EQ(CommandOf(CommandId::Search).gate, Gate::TwiceFromMenu);
}

TEST(ProgramLock, TakesOnlyTheWholePasswordInItsCase) {
  ProgramLock lock;
  EXPECT_EQ(lock.Lock(Secret()), LockInput::Empty);
  EXPECT_FALSE(lock.ProgramLocked());
  EXPECT_EQ(lock.Lock(Secret("Open")), LockInput::Accepted);
  for (const char* wrong : {"open", "Ope", "Opena", " Open"}) {
    EXPECT_EQ(lock.Check(Secret(wrong)), LockInput::Wrong) << wrong;
  }
  EXPECT_EQ(lock.Check(Secret()), LockInput::Empty);
  EXPECT_EQ(lock.Check(Secret("Open")), LockInput::Accepted);
  EXPECT_TRUE(lock.ProgramLocked()) << "a right password lifts nothing by itself";
}

TEST(ProgramLock, ForgetsTheOldPasswordAtTheNextLock) {
  ProgramLock lock;
  lock.Lock(Secret("old"));
  lock.Unlock();
  EXPECT_FALSE(lock.ProgramLocked());
  lock.Lock(Secret("new"));
  EXPECT_EQ(lock.Check(Secret("old")), LockInput::Wrong);
}

TEST(ProgramLock, PromptsAsTheLastTurnToTheLockLeftIt) {
  ProgramLock lock;
  EXPECT_EQ(lock.Prompt(), UnlockPrompt::Continue);
  lock.StartUnlocking();
  EXPECT_EQ(lock.Prompt(), UnlockPrompt::Unlock);
  lock.StartLocking();
  EXPECT_EQ(lock.Prompt(), UnlockPrompt::Continue);
}

}  // namespace
}  // namespace tarnel
