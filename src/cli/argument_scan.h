#pragma once

#include <set>
#include <string>
#include <vector>

namespace tarnel {

/// Arguments taken apart before the parser sees them. The parser would read some file names ("[a,b]", "%%")
/// as lists and knows options only behind their verb.
struct ArgumentScan {
  std::string verb;                      ///< the first argument that is no option; empty if there is none
  std::vector<std::string> options;      ///< names and values, each value an argument of its own
  std::vector<std::string> positionals;  ///< what else stands there, in order and byte for byte
};

/// `valued` holds the options that take a value, "--" included. "--compress" without "=" gets the default
/// level.
ArgumentScan ScanArguments(const std::vector<std::string>& arguments, const std::set<std::string>& valued);

}  // namespace tarnel
