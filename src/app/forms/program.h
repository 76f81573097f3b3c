#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/forms/main_commands.h"

namespace tarnel {

/// What the whole program needs from outside.
struct ProgramPorts {
  Files& files;
  Path settings;                     ///< of the settings file
  std::vector<Path> instancePlaces;  ///< see InstanceLock
  WindowPorts window;
  /// Lets events run until the program ends, and gives the exit code.
  std::function<int()> runEvents;
};

/// The program from its start to its end. A second instance says so, and the process ends 50 ms later, though
/// the start goes on meanwhile. What a view of a killed program left is offered for destruction; a carrier of
/// the command line is opened before the main window is seen, and the guide comes after it.
int RunProgram(const Path& carrier, const ProgramPorts& ports);

/// The whole command line is one path, blanks included; empty without one.
Path CommandLinePath(const std::vector<std::string>& arguments);

}  // namespace tarnel
