#include "app/commands.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "app/program_lock.h"
#include "app/refresh.h"

namespace tarnel {
namespace {

TEST(Refresh, DisablesWhatTheStateForbids) {
  const std::string starts = "Menu_New_Carrier Menu_Open_Carrier Menu_Add Menu_Find_Carrier ";
  const std::string nodes = "manu_close menu_carrierproperties Manu_Saveas menu_mailcarrierfile ";
  const std::string rows =
      "Menu_Extract Menu_Remove Menu_Password menu_properties Menu_SelectAll Mnu_InvertSelection ";
  const std::string view = "Menu_Preview ";
  const struct {
    RefreshInput input;
    std::string disabled;
  } cases[] = {
      {{}, nodes + rows + view},
      {{.ReadingBusy = true}, starts + nodes + rows + view},
      {{.ReadingBusy = true,
        .hasNodes = true,
        .hasRows = true,
        .listHasAttention = true,
        .isFileRowSelected = true},
       starts + rows + view},
      {{.hasNodes = true}, rows + view},
      {{.hasNodes = true, .hasRows = true, .isFileRowSelected = true}, view},
      {{.hasNodes = true, .hasRows = true, .listHasAttention = true}, view},
      {{.hasNodes = true, .hasRows = true, .listHasAttention = true, .isFileRowSelected = true}, ""},
  };
  for (const auto& [input, disabled] : cases) {
    const RefreshResult result = Refresh(input);
    for (const Command& command : Commands())
      EXPECT_EQ(result.IsEnabled(command.id), disabled.find(std::string(command.item) + " ") == disabled.npos)
          << command.item << " where these are disabled: " << disabled;
    EXPECT_EQ(result.isInfoPanelOn, input.hasNodes) << disabled;
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
