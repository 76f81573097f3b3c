#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace tarnel {

enum class CommandId {
  New,
  Open,
  Close,
  CarrierProperties,
  SaveAs,
  MailCarrier,
  Comments,
  Search,
  Quit,
  Hide,
  Extract,
  Delete,
  View,
  Password,
  SelectAll,
  InvertSelection,
  FileProperties,
  Configuration,
  SortByName,
  SortBySize,
  SortByType,
  SortByDate,
  Lock,
  ShowStatus,
  Folders,
  Contents,
  QuickStart,
  Info,
};
inline constexpr std::size_t kCommandCount = static_cast<std::size_t>(CommandId::Info) + 1;

/// How often a locked program asks for its password before the command runs.
enum class Gate { None, Once, TwiceFromMenu };

enum class Visibility { Shown, Hidden };
enum class Checkable { No, Yes };

/// Shortcuts by their meaning; the platform says which keys they are.
enum class Shortcut { None, Open, Close, Quit, SelectAll, Delete, Help };

/// One command of the main window: all that toolbar, menus, gate and refresh need to know of it.
struct Command {
  CommandId id;
  const char* item;           ///< name of the menu item
  const char* caption;        ///< of the menu item, "&" before its access key
  const char* key = nullptr;  ///< toolbar key, null without a button
  const char* toolTip = nullptr;
  const char* icon = nullptr;  ///< file name in share/icons without its suffix
  Gate gate = Gate::None;
  Shortcut shortcut = Shortcut::None;
  Visibility visibility = Visibility::Shown;
  Checkable checkable = Checkable::No;
};

/// Every command, in the order of CommandId.
const std::vector<Command>& Commands();
const Command& CommandOf(CommandId id);

/// What a double click on a file row runs by the word of the setting "Mouse_Event"; nothing for "None" and
/// unknown words.
std::optional<CommandId> DoubleClickCommand(std::string_view mouseEvent);

/// The buttons of the toolbar from left to right.
const std::vector<CommandId>& ToolbarCommands();

struct MenuEntry {
  enum class Kind { Item, Separator, Submenu } kind = Kind::Separator;
  CommandId command = CommandId::New;    ///< of an Item
  const struct Menu* submenu = nullptr;  ///< of a Submenu
};

struct Menu {
  const char* name;
  const char* caption;
  Visibility visibility;
  std::vector<MenuEntry> entries;
};

/// The menus of the menu bar from left to right.
const std::vector<const Menu*>& MenuBar();

}  // namespace tarnel
