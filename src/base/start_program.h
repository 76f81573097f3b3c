#pragma once

#include <string>
#include <vector>

namespace tarnel {

/// Starts a program with its arguments, byte for byte, found in PATH where its name has no "/". It is no
/// child of this process, has a session of its own and outlives it. False if it could not be started.
bool StartProgram(const std::vector<std::string>& commandLine);

}  // namespace tarnel
