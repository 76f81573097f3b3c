#include "cli/argument_scan.h"

namespace tarnel {

namespace {

constexpr const char* kCompress = "--compress";
constexpr const char* kDefaultLevel = "6";

bool IsOption(const std::string& argument) {
  return argument.size() > 1 && argument.front() == '-';
}

}  // namespace

ArgumentScan ScanArguments(const std::vector<std::string>& arguments, const std::set<std::string>& valued) {
  ArgumentScan scan;
  bool optionsEnded = false;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (!optionsEnded && argument == "--") {
      optionsEnded = true;
    } else if (optionsEnded || !IsOption(argument)) {
      if (scan.verb.empty()) {
        scan.verb = argument;
      } else {
        scan.positionals.push_back(argument);
      }
    } else {
      const std::size_t equals = argument.find('=');
      const std::string name = argument.substr(0, equals);
      const bool takesValue = valued.contains(name);
      scan.options.push_back(takesValue ? name : argument);
      if (!takesValue) continue;
      if (equals != std::string::npos) {
        scan.options.push_back(argument.substr(equals + 1));
      } else if (name == kCompress) {
        scan.options.emplace_back(kDefaultLevel);
      } else if (i + 1 < arguments.size()) {
        scan.options.push_back(arguments[++i]);
      }
    }
  }
  return scan;
}

}  // namespace tarnel
