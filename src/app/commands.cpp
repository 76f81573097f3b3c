#include "app/commands.h"

namespace tarnel {

namespace {

using Kind = MenuEntry::Kind;

MenuEntry Item(CommandId command) {
  return {.kind = Kind::Item, .command = command};
}

MenuEntry Separator() {
  return {};
}

MenuEntry Submenu(const Menu& menu) {
  return {.kind = Kind::Submenu, .submenu = &menu};
}

std::vector<Command> FileCommands() {
  return {
      {.id = CommandId::New,
       .item = "Menu_New_Carrier",
       .caption = "&Create New Carrier File...",
       .key = "New",
       .toolTip = "Create new carrier file...",
       .icon = "new",
       .visibility = Visibility::Hidden},
      {.id = CommandId::Open,
       .item = "Menu_Open_Carrier",
       .caption = "&Open Carrier File",
       .key = "Open",
       .toolTip = "Open carrier file...",
       .icon = "open",
       .gate = Gate::Once,
       .shortcut = Shortcut::Open},
      {.id = CommandId::Close,
       .item = "manu_close",
       .caption = "C&lose Carrier File",
       .gate = Gate::Once,
       .shortcut = Shortcut::Close},
      {.id = CommandId::CarrierProperties,
       .item = "menu_carrierproperties",
       .caption = "Info",
       .icon = "properties",
       .gate = Gate::Once},
      {.id = CommandId::SaveAs,
       .item = "Manu_Saveas",
       .caption = "Save as TNL File",
       .visibility = Visibility::Hidden},
      {.id = CommandId::MailCarrier,
       .item = "menu_mailcarrierfile",
       .caption = "Mail Carrier File",
       .gate = Gate::Once,
       .visibility = Visibility::Hidden},
      {.id = CommandId::Comments,
       .item = "mnu_carrier_info",
       .caption = "Comments",
       .visibility = Visibility::Hidden},
      {.id = CommandId::Search,
       .item = "Menu_Find_Carrier",
       .caption = "Search...",
       .key = "Search",
       .toolTip = "Search for carrier files...",
       .icon = "search",
       .gate = Gate::TwiceFromMenu},
      {.id = CommandId::Quit,
       .item = "Menu_Quit",
       .caption = "&Exit",
       .gate = Gate::Once,
       .shortcut = Shortcut::Quit},
  };
}

std::vector<Command> ActionCommands() {
  return {
      {.id = CommandId::Hide,
       .item = "Menu_Add",
       .caption = "Hide...",
       .key = "Hide",
       .toolTip = "Hide files...",
       .icon = "hide",
       .gate = Gate::Once},
      {.id = CommandId::Extract,
       .item = "Menu_Extract",
       .caption = "Extract...",
       .key = "Extract",
       .toolTip = "Extract hidden files...",
       .icon = "extract",
       .gate = Gate::Once},
      {.id = CommandId::Delete,
       .item = "Menu_Remove",
       .caption = "Delete...",
       .key = "Delete",
       .toolTip = "Delete hidden files...",
       .icon = "delete",
       .gate = Gate::Once,
       .shortcut = Shortcut::Delete},
      {.id = CommandId::View,
       .item = "Menu_Preview",
       .caption = "Preview/Edit...",
       .key = "View",
       .toolTip = "View hidden files...",
       .icon = "view",
       .gate = Gate::Once},
      {.id = CommandId::Password,
       .item = "Menu_Password",
       .caption = "Change Password...",
       .gate = Gate::Once},
      {.id = CommandId::SelectAll,
       .item = "Menu_SelectAll",
       .caption = "Select All",
       .shortcut = Shortcut::SelectAll},
      {.id = CommandId::InvertSelection, .item = "Mnu_InvertSelection", .caption = "Invert Selection"},
      {.id = CommandId::FileProperties,
       .item = "menu_properties",
       .caption = "File Properties",
       .visibility = Visibility::Hidden},
  };
}

std::vector<Command> OptionCommands() {
  return {
      {.id = CommandId::Configuration,
       .item = "Menu_Configuration",
       .caption = "Configuration...",
       .key = "Configuration",
       .toolTip = "Configuration",
       .icon = "configuration",
       .gate = Gate::Once},
      {.id = CommandId::SortByName, .item = "Menu_SortbyName", .caption = "by Name"},
      {.id = CommandId::SortBySize, .item = "Menu_SortbySize", .caption = "by Size"},
      {.id = CommandId::SortByType, .item = "Menu_SortbyType", .caption = "by Type"},
      {.id = CommandId::SortByDate, .item = "Menu_SortbyDate", .caption = "by Date"},
      {.id = CommandId::Lock, .item = "menu_lock", .caption = "Lock..."},
      {.id = CommandId::ShowStatus,
       .item = "mnu_ShowStatus",
       .caption = "Visible",
       .checkable = Checkable::Yes},
      {.id = CommandId::Folders,
       .item = "Menu_Folders",
       .caption = "View Folders",
       .key = "Folders",
       .toolTip = "View Folders",
       .icon = "folders",
       .checkable = Checkable::Yes},
  };
}

std::vector<Command> HelpCommands() {
  return {
      {.id = CommandId::Contents,
       .item = "Menu_Contents",
       .caption = " Contents",
       .shortcut = Shortcut::Help},
      {.id = CommandId::QuickStart,
       .item = "Menu_Quickstart",
       .caption = " Quick Start - Step by Step Instructions"},
      {.id = CommandId::Info, .item = "Menu_Info", .caption = " &Info", .icon = "info"},
  };
}

std::vector<Command> AllCommands() {
  std::vector<Command> all;
  for (const auto& part : {FileCommands(), ActionCommands(), OptionCommands(), HelpCommands()}) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

}  // namespace

const std::vector<Command>& Commands() {
  static const std::vector<Command> commands = AllCommands();
  return commands;
}

const Command& CommandOf(CommandId id) {
  return Commands()[static_cast<std::size_t>(id)];
}

std::optional<CommandId> DoubleClickCommand(std::string_view mouseEvent) {
  if (mouseEvent == "Extract") return CommandId::Extract;
  if (mouseEvent == "Delete") return CommandId::Delete;
  if (mouseEvent == "View") return CommandId::View;
  return std::nullopt;
}

const std::vector<CommandId>& ToolbarCommands() {
  static const std::vector<CommandId> buttons = {
      CommandId::New,    CommandId::Open, CommandId::Search,  CommandId::Hide,         CommandId::Extract,
      CommandId::Delete, CommandId::View, CommandId::Folders, CommandId::Configuration};
  return buttons;
}

const std::vector<const Menu*>& MenuBar() {
  static const Menu sort = {"Menu_Sort",
                            "Sort",
                            Visibility::Hidden,
                            {Item(CommandId::SortByName), Item(CommandId::SortBySize),
                             Item(CommandId::SortByType), Item(CommandId::SortByDate)}};
  static const Menu statusBar = {
      "mnuStatusbar", "Status Bar", Visibility::Shown, {Item(CommandId::ShowStatus)}};
  static const Menu file = {
      "Menu_File",
      "&File",
      Visibility::Shown,
      {Item(CommandId::New), Item(CommandId::Open), Item(CommandId::Close), Separator(),
       Item(CommandId::CarrierProperties), Item(CommandId::SaveAs), Item(CommandId::MailCarrier),
       Item(CommandId::Comments), Separator(), Item(CommandId::Search), Separator(), Item(CommandId::Quit)}};
  static const Menu actions = {
      "Menu_Actions",
      "&Actions",
      Visibility::Shown,
      {Item(CommandId::Hide), Item(CommandId::Extract), Item(CommandId::Delete), Item(CommandId::View),
       Separator(), Item(CommandId::Password), Separator(), Item(CommandId::SelectAll),
       Item(CommandId::InvertSelection), Item(CommandId::FileProperties)}};
  static const Menu options = {"Menu_Options",
                               "&Options",
                               Visibility::Shown,
                               {Item(CommandId::Configuration), Submenu(sort), Item(CommandId::Lock),
                                Separator(), Submenu(statusBar), Item(CommandId::Folders)}};
  static const Menu question = {
      "Menu_Question",
      "&Help",
      Visibility::Shown,
      {Item(CommandId::Contents), Item(CommandId::QuickStart), Separator(), Item(CommandId::Info)}};
  static const std::vector<const Menu*> bar = {&file, &actions, &options, &question};
  return bar;
}

}  // namespace tarnel
