#pragma once

#include <string>
#include <vector>

#include "base/files.h"
#include "cli/password_source.h"
#include "cli/terminal.h"

namespace tarnel {

/// The whole program but for what a process has only once: arguments (program name not included) in, exit
/// code out. No exception leaves it. What went wrong was said on standard error, and the code isn't 0 then;
/// that holds for standard output too, which is finished here.
int RunCli(const std::vector<std::string>& arguments, Terminal& terminal, Files& files,
           const Variables& variables);

}  // namespace tarnel
