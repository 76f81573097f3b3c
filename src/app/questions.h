#pragma once

#include "app/program_lock.h"
#include "base/dialogue.h"

namespace tarnel {

/// All that the main window, its settings and its lock say in boxes.

Question AlreadyRunningMessage();  ///< "main.already-running"
Question OverwriteCopyQuestion();  ///< "main.save-as"
Question FaultMessage(
    const Error& error);                ///< "main.fault": a command ended by an error; the program goes on
Question LockMessage(LockInput input);  ///< "lock.empty" or "lock.wrong"
Question ProtectionPasswordMessage();   ///< "config.no-password"

/// What the command "New" ends with once a file is chosen.
Error NewCarrierFault();

}  // namespace tarnel
