#pragma once

#include <string>

namespace tarnel {

/// The files of share/ that are made from the tables of verbs, options and exit codes.

/// `page` with what stands in for @SYNOPSIS@, @VERBS@, @OPTIONS@ and @EXIT_CODES@, each alone on its line.
std::string ManualPage(const std::string& page);
std::string BashCompletion();
std::string ZshCompletion();
std::string FishCompletion();

}  // namespace tarnel
