#include "app/commands.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "app/program_lock.h"
#include "app/refresh.h"

namespace tarnel {
namespace {

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
  const struct {
    const char* name;
    RefreshInput input;
    std::set<std::string> enabled;
  } cases[] = {
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
  for (const auto& [name, input, enabled] : cases) {
    const RefreshResult result = Refresh(input);
    std::set<std::string> items;
    for (const Command& command : Commands())
      if (result.IsEnabled(command.id)) items.insert(command.item);
    EXPECT_EQ(items, enabled) << name;
    EXPECT_EQ(result.isInfoPanelOn, input.hasNodes) << name;
  }
}

void AddItems(const Menu& menu, std::multiset<CommandId>& items) {
  for (const MenuEntry& entry : menu.entries) {
    if (entry.kind == MenuEntry::Kind::Submenu) AddItems(*entry.submenu, items);
    if (entry.kind == MenuEntry::Kind::Item) items.insert(entry.command);
  }
}

TEST(Commands, StandInTheMenusOnceEachAndShareNoShortcutAndNoName) {
  std::multiset<CommandId> items;
  for (const Menu* menu : MenuBar())
    AddItems(*menu, items);
  std::set<Shortcut> shortcuts;
  std::set<std::string> names;
  for (const Command& command : Commands()) {
    EXPECT_EQ(items.count(command.id), 1U) << command.item;
    EXPECT_TRUE(names.insert(command.item).second) << command.item;
    EXPECT_TRUE(command.shortcut == Shortcut::None || shortcuts.insert(command.shortcut).second)
        << command.item;
  }
  EXPECT_EQ(shortcuts.size(), 6U);
}

TEST(Commands, AreGatedWhereTheyTouchAHideout) {
  std::set<std::string> gated;
  for (const Command& command : Commands())
    if (command.gate != Gate::None) gated.insert(command.item);
  EXPECT_EQ(gated, (std::set<std::string>{"Menu_Open_Carrier", "Menu_Add", "Menu_Extract", "Menu_Remove",
                                          "Menu_Find_Carrier", "Menu_Preview", "Menu_Configuration",
                                          "manu_close", "menu_carrierproperties", "Menu_Password",
                                          "menu_mailcarrierfile", "Menu_Quit"}));
}

TEST(ProgramLock, TakesOnlyTheWholeLastPasswordInItsCase) {
  ProgramLock lock;
  EXPECT_EQ(lock.Lock(Secret()), LockInput::Empty);
  EXPECT_FALSE(lock.ProgramLocked());
  lock.Lock(Secret("old"));
  lock.Unlock();
  EXPECT_FALSE(lock.ProgramLocked());
  EXPECT_EQ(lock.Lock(Secret("Open")), LockInput::Accepted);
  for (const char* wrong : {"open", "Ope", "Opena", " Open", "old"})
    EXPECT_EQ(lock.Check(Secret(wrong)), LockInput::Wrong) << wrong;
  EXPECT_EQ(lock.Check(Secret()), LockInput::Empty);
  EXPECT_EQ(lock.Check(Secret("Open")), LockInput::Accepted);
  EXPECT_TRUE(lock.ProgramLocked()) << "a right password lifts nothing by itself";
}

}  // namespace
}  // namespace tarnel
