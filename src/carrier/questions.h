#pragma once

#include <string_view>
#include <vector>

#include "base/dialogue.h"
#include "carrier/open_hideout.h"

namespace tarnel {

/// What those who answer by rule know questions by.
namespace question_id {
inline constexpr const char* kLoadError = "load.error";
inline constexpr const char* kReload = "load.reload";
}  // namespace question_id

/// All that reading, opening and creating a hideout says in boxes, and the one question about
/// what an interrupted run has left.

Question LoadErrorQuestion(const Error& error);   ///< "load.error"
Question ProbeErrorQuestion(const Error& error);  ///< "probe.error"

/// "load.reload": the carrier is open already.
Question ReloadQuestion();

/// "load.version": an entry fits, but another format version wrote it. `version` is stored text.
Question VersionMessage(std::string_view version);

/// "load.damage": what reading has found wrong with the carrier. `faults` isn't empty.
Question DamageMessage(const ChainFaults& faults);

/// "open.no-password"
Question NoPasswordMessage();

/// "open.denied": all tries have failed. Yes leads to a new hideout.
Question AccessDeniedQuestion();

/// "create.no-password", "create.no-title", "create.confirmation" and "create.no-carrier".
Question NewHideoutMessage(NewHideoutFault fault);

/// "carrier.leftovers": whether these may be replaced. Yes or No, with No preset.
Question LeftoversQuestion(const std::vector<Path>& leftovers);

}  // namespace tarnel
