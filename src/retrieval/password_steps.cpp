#include "retrieval/password_steps.h"

namespace tarnel {

PasswordControls ControlsOf(PasswordStep step) {
  switch (step) {
    case PasswordStep::Asking:
      return {.fields = true, .Cmd_Ok = true, .Cmd_Cancel = true};
    case PasswordStep::Running:
      return {.Cmd_Cancel = true, .isProgressShown = true};
    case PasswordStep::Reading:
      break;
  }
  return {.isProgressShown = true};
}

PasswordInput InputOf(PasswordFault fault) {
  switch (fault) {
    case PasswordFault::OldDiffers:
      return PasswordInput::txt_oldpass;
    case PasswordFault::NewIsEmpty:
      return PasswordInput::txt_newpass;
    case PasswordFault::ConfirmationDiffers:
      break;
  }
  return PasswordInput::txt_confirm;
}

}  // namespace tarnel
