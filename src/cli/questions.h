#pragma once

#include <cstddef>
#include <string>

#include "base/dialogue.h"

namespace tarnel {

/// What the command line asks of its own accord, each with Yes and No, and No preset.

/// "cli.new": no hideout opens with the password, and a new one would be made.
Question NewHideoutQuestion();

/// "cli.destroy": `count` originals would be overwritten and deleted.
Question DestroyOriginalsQuestion(std::size_t count);

/// "cli.recover": what `plan` says in whole sentences would be done.
Question RecoverQuestion(const std::string& plan);

}  // namespace tarnel
