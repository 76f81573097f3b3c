#pragma once

#include "retrieval/run_password.h"

namespace tarnel {

/// Where a change of password stands; Reading is when the new carrier is in place.
enum class PasswordStep { Asking, Running, Reading };

/// What lives on `FrmPassword` in a step.
struct PasswordControls {
  bool fields = false, Cmd_Ok = false, Cmd_Cancel = false;
  bool isProgressShown = false;

  bool operator==(const PasswordControls&) const = default;
};
PasswordControls ControlsOf(PasswordStep step);

/// The field to put right.
enum class PasswordInput { txt_oldpass, txt_newpass, txt_confirm };
PasswordInput InputOf(PasswordFault fault);

}  // namespace tarnel
