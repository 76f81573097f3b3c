#pragma once

#include <bitset>

#include "app/commands.h"

namespace tarnel {

/// What the main window's commands depend on.
struct RefreshInput {
  bool ReadingBusy = false;
  bool hasNodes = false;
  bool hasRows = false;            ///< of the visible file list
  bool listHasAttention = false;   ///< the file list is the view that last had it
  bool isFileRowSelected = false;  ///< the list's selected row is really selected, and no folder
};

struct RefreshResult {
  std::bitset<kCommandCount> enabled;
  bool isInfoPanelOn = false;  ///< enabled and with its picture

  bool IsEnabled(CommandId id) const { return enabled.test(static_cast<std::size_t>(id)); }
};

/// What can be used in this state. Depends on nothing else: not on the lock, not on what was before.
RefreshResult Refresh(const RefreshInput& input);

}  // namespace tarnel
