#pragma once

#include <QObject>
#include <array>

#include "app/refresh.h"

class QAction;
class QMainWindow;
class QMenu;

namespace tarnel {

enum class CommandSource { Menu, Toolbar };

/// The toolbar and the menus of the main window, made from the command table.
class CommandActions : public QObject {
  Q_OBJECT

 public:
  explicit CommandActions(QMainWindow& window);

  void Apply(const RefreshResult& refresh);
  QAction* ItemOf(CommandId id) const { return m_items[static_cast<std::size_t>(id)]; }
  /// Null for a command without a button.
  QAction* ButtonOf(CommandId id) const { return m_buttons[static_cast<std::size_t>(id)]; }
  QMenu* MenuOf(const char* name) const;

  /// Both the menu item and the button.
  void SetChecked(CommandId id, bool isChecked);

 signals:
  void Triggered(CommandId id, CommandSource source);

 private:
  void MakeToolbar();
  void FillMenu(QMenu& menu, const Menu& table);
  QAction* MakeItem(const Command& command, QMenu& menu);
  void Connect(QAction* action, CommandId id, CommandSource source);

  QMainWindow& m_window;
  std::array<QAction*, kCommandCount> m_items = {};
  std::array<QAction*, kCommandCount> m_buttons = {};
};

}  // namespace tarnel
