#include "app/forms/command_actions.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include "formkit/icons.h"
#include "formkit/layouts.h"
#include "formkit/text.h"

namespace tarnel {

namespace {

constexpr int kButtonSize = 32;

QKeySequence KeysOf(Shortcut shortcut) {
  switch (shortcut) {
    case Shortcut::None:
      return {};
    case Shortcut::Open:
      return QKeySequence::Open;
    case Shortcut::Close:
      return Qt::CTRL | Qt::Key_W;
    case Shortcut::Quit:
      return Qt::CTRL | Qt::Key_Q;
    case Shortcut::SelectAll:
      return QKeySequence::SelectAll;
    case Shortcut::Delete:
      return QKeySequence::Delete;
    case Shortcut::Help:
      return QKeySequence::HelpContents;
  }
  return {};
}

}  // namespace

CommandActions::CommandActions(QMainWindow& window) : QObject(&window), m_window(window) {
  MakeToolbar();
  for (const Menu* menu : MenuBar()) {
    FillMenu(*Named(m_window.menuBar()->addMenu(Translated(menu->caption)), menu->name), *menu);
  }
}

void CommandActions::MakeToolbar() {
  QToolBar* const toolbar = Named(m_window.addToolBar(tr("Commands")), "Buttons");
  toolbar->setMovable(false);
  toolbar->setIconSize(QSize(kButtonSize, kButtonSize));
  toolbar->setToolButtonStyle(Qt::ToolButtonIconOnly);
  toolbar->toggleViewAction()->setVisible(false);
  for (const CommandId id : ToolbarCommands()) {
    const Command& command = CommandOf(id);
    QAction* const button = Named(toolbar->addAction(OwnIcon(command.icon), QString()), command.key);
    button->setText(Translated(command.toolTip));
    button->setToolTip(Translated(command.toolTip));
    button->setCheckable(command.checkable == Checkable::Yes);
    Connect(button, id, CommandSource::Toolbar);
    m_buttons[static_cast<std::size_t>(id)] = button;
  }
}

void CommandActions::FillMenu(QMenu& menu, const Menu& table) {
  menu.menuAction()->setVisible(table.visibility == Visibility::Shown);
  for (const MenuEntry& entry : table.entries) {
    switch (entry.kind) {
      case MenuEntry::Kind::Item:
        m_items[static_cast<std::size_t>(entry.command)] = MakeItem(CommandOf(entry.command), menu);
        break;
      case MenuEntry::Kind::Separator:
        menu.addSeparator();
        break;
      case MenuEntry::Kind::Submenu:
        FillMenu(*Named(menu.addMenu(Translated(entry.submenu->caption)), entry.submenu->name),
                 *entry.submenu);
        break;
    }
  }
}

QAction* CommandActions::MakeItem(const Command& command, QMenu& menu) {
  QAction* const item = Named(menu.addAction(Translated(command.caption)), command.item);
  if (command.icon != nullptr && command.checkable == Checkable::No) item->setIcon(OwnIcon(command.icon));
  item->setVisible(command.visibility == Visibility::Shown);
  item->setCheckable(command.checkable == Checkable::Yes);
  item->setChecked(command.checkable == Checkable::Yes);
  item->setShortcut(KeysOf(command.shortcut));
  // The Delete key is the file list's alone; the menu only shows it.
  if (command.shortcut == Shortcut::Delete) item->setShortcutContext(Qt::WidgetShortcut);
  Connect(item, command.id, CommandSource::Menu);
  return item;
}

void CommandActions::Connect(QAction* action, CommandId id, CommandSource source) {
  connect(action, &QAction::triggered, this, [this, id, source] { emit Triggered(id, source); });
}

QMenu* CommandActions::MenuOf(const char* name) const {
  return m_window.menuBar()->findChild<QMenu*>(QLatin1String(name));
}

void CommandActions::Apply(const RefreshResult& refresh) {
  for (const Command& command : Commands()) {
    const bool isEnabled = refresh.IsEnabled(command.id);
    ItemOf(command.id)->setEnabled(isEnabled);
    if (QAction* const button = ButtonOf(command.id)) button->setEnabled(isEnabled);
  }
}

void CommandActions::SetChecked(CommandId id, bool isChecked) {
  ItemOf(id)->setChecked(isChecked);
  if (QAction* const button = ButtonOf(id)) button->setChecked(isChecked);
}

}  // namespace tarnel
