#pragma once

#include "app/program_lock.h"
#include "base/dialogue.h"
#include "base/files.h"

namespace tarnel {

/// All that the main window, its settings and its lock say in boxes, and the look at the carrier that comes
/// before a flow.

Question AlreadyRunningMessage();  ///< "main.already-running"
Question OverwriteCopyQuestion();  ///< "main.save-as"
Question FaultMessage(
    const Error& error);                ///< "main.fault": a command ended by an error; the program goes on
Question LockMessage(LockInput input);  ///< "lock.empty" or "lock.wrong"
Question ProtectionPasswordMessage();   ///< "config.no-password"

Question CarrierErrorQuestion(const Error& error);     ///< "carrier.error": the carrier can't be looked at
Question CarrierChangedQuestion(const Path& carrier);  ///< "carrier.changed": Yes reads the carrier again
Question CarrierEmptiedMessage(
    const Path& carrier);  ///< "carrier.emptied": it was read, and the hideout's password opens nothing in it

/// What the command "New" ends with once a file is chosen.
Error NewCarrierFault();

}  // namespace tarnel
